// "plinth.Model" and "plinth.Transaction".
#include <boost/optional.hpp>
#include <memory>
#include <utility>

#include "FoundationClasses.hpp"
#include "ModelErrors.hpp"
#include "corvid/Callable.hpp"
#include "corvid/Invocation.hpp"
#include "corvid/factory/CorvidFactoryClassInfo.hpp"
#include "corvid/factory/StringDataTypes.hpp"
#include "kestrel/Array.hpp"
#include "plinth/ElementDirectory.hpp"
#include "plinth/Query.hpp"
#include "plinth/bridge/Construct.hpp"
#include "plinth/bridge/ElementShapes.hpp"

namespace plinth::bridge {
namespace {

/// A transaction that a script object owns; ended when the script says so, or when it lets go of it. While an inner one
/// is open it can't be ended: what the inner one did would be taken back behind its back.
class ScriptTransaction {
 public:
  explicit ScriptTransaction(Model const& model)
      : m_model(model), m_transaction(model->beginTransaction(false)), m_level(model->level()) {}

  bool isOpen() const noexcept { return m_transaction.has_value() && m_transaction->isOpen(); }
  bool canEnd() const noexcept { return !isOpen() || m_model->level() == m_level; }
  /// These raise TransactionEnded for one that has ended, and TransactionNotInnermost while an inner one is open.
  void commit() {
    requireOpen();
    m_transaction->commit();
    end();
  }
  void rollback() {
    requireOpen();
    requireInnermost();
    end();
  }
  /// Takes back what is uncommitted. Raises TransactionNotInnermost while an inner one is open.
  void close() {
    requireInnermost();
    end();
  }

  /// For a script that has let go of it: ends it now, or when those that are open inside have ended.
  static void abandon(std::unique_ptr<ScriptTransaction> transaction) noexcept {
    transaction->m_next = std::move(abandoned());
    abandoned() = std::move(transaction);
    endAbandoned();
  }
  /// Ends those that wait for nothing any more; to be called when any transaction has ended.
  static void endAbandoned() noexcept {
    // Each end may let another one go.
    for (std::unique_ptr<ScriptTransaction>* place = &abandoned(); *place != nullptr;) {
      if (!(*place)->canEnd()) {
        place = &(*place)->m_next;
        continue;
      }
      std::unique_ptr<ScriptTransaction> const ended = std::exchange(*place, std::move((*place)->m_next));
      place = &abandoned();
    }
  }

 private:
  void requireOpen() const {
    if (!isOpen()) reportException(messages::TransactionEnded());
  }
  void requireInnermost() const {
    if (!canEnd())
      detail::reportCause(messages::TransactionNotInnermost(),
                          "only the innermost open transaction can be ended; end the inner ones first.");
  }
  void end() noexcept {
    m_transaction.reset();
    endAbandoned();
  }
  /// A list without memory of its own, since it grows where nothing may fail; one for each thread, as models are.
  static std::unique_ptr<ScriptTransaction>& abandoned() noexcept {
    thread_local std::unique_ptr<ScriptTransaction> first;
    return first;
  }

  Model m_model;
  boost::optional<Transaction> m_transaction;
  std::uint32_t m_level;
  std::unique_ptr<ScriptTransaction> m_next;
};

constexpr std::string_view TRANSACTION = "plinth.Transaction";

}  // namespace
}  // namespace plinth::bridge

namespace corvid::factory {

template <>
struct SelfTraits<plinth::bridge::ScriptTransaction> : PointerSelf<plinth::bridge::ScriptTransaction> {
  static Identifier className() {
    static Identifier const name = internal::makeInterned(plinth::bridge::TRANSACTION);
    return name;
  }
};

}  // namespace corvid::factory

namespace plinth::bridge {
namespace {

using corvid::CorvidClass;
using corvid::MethodCall;
using corvid::factory::MethodAttributes;
using corvid::factory::basic::BindingRegistry;
using corvid::factory::impl::FunctionMethod;
using corvid::factory::impl::Invoker;
using corvid::internal::makeInterned;

class TransactionWrapper final : public corvid::factory::HandleClassInfo<ScriptTransaction, false> {
 public:
  using HandleClassInfo::HandleClassInfo;

  void initializeClass(CorvidClass* hostClass) override {
    MethodAdder<ScriptTransaction> const methods(*hostClass);
    methods.add("commit", "", {}, [](ScriptTransaction* const& self, MethodCall&) { self->commit(); });
    methods.add("rollback", "", {}, [](ScriptTransaction* const& self, MethodCall&) { self->rollback(); });
    methods.add(corvid::CLOSE_METHOD, "", {}, [](ScriptTransaction* const& self, MethodCall&) { self->close(); });
    methods.read("isOpen", TRUTH, {}, [](ScriptTransaction* const& self, MethodCall& call) {
      call.setOutput(kestrel::createScalar(self->isOpen()));
    });
  }
  void destroyInstance(void* native) const override {
    ScriptTransaction::abandon(std::unique_ptr<ScriptTransaction>(static_cast<ScriptTransaction*>(native)));
  }
  bool isAbstract() const override { return true; }
};

void beginTransaction(Model const& self, MethodCall& call) {
  auto transaction = std::make_unique<ScriptTransaction>(self);
  call.setOutput(BindingRegistry::announceWithoutStoring(transaction.get(), makeInterned(TRANSACTION), nullptr));
  transaction.release();
}

/// Runs a function in a transaction of its own: committed when it returns, taken back when it raises. Its results are
/// the script's alone, and can't undo what has been done.
void runTransaction(Model const& self, MethodCall& call) {
  struct EndsAbandoned {
    ~EndsAbandoned() { ScriptTransaction::endAbandoned(); }
  } const lastOfAll;
  Transaction transaction = self->beginTransaction(false);
  auto results = corvid::Callable::in(call.input(1)).callForScript({});
  transaction.commit();
  if (results.empty()) return;
  call.setOutput(std::move(results.front()));
  for (std::size_t i = 1; i < results.size(); ++i) call.addOutput(std::move(results[i]));
}

void outputElements(Model const& self, MethodCall& call) {
  std::vector<ModelElement> elements;
  if (call.inputCount() > 1) {
    query::AbstractQuery const search(self, readClass(call.input(1)), query::SearchClassMatchMode::WITH_SUBCLASSES);
    elements = search.execute();
  } else {
    for (ModelElementImpl* element : self->directory().all()) elements.push_back(ModelElement(element));
  }
  call.setOutput(corvid::factory::ValueShape<std::vector<ModelElement>>::toHost(elements));
}

void outputFound(Model const& self, MethodCall& call) {
  auto const uuid = detail::requireUuid(call.input(1));
  call.setOutput(announceElement(self->findElement(uuid, FindElementBehavior::IN_MEMORY), makeInterned(ELEMENT)));
}

class ModelWrapper final : public corvid::factory::HandleClassInfo<Model, false> {
 public:
  using HandleClassInfo::HandleClassInfo;

  void initializeClass(CorvidClass* hostClass) override {
    corvid::factory::detail::initStringDataTypes();
    std::string const& name = hostClass->getFullName().text();
    hostClass->addMethod(std::make_unique<FunctionMethod>(hostClass->getName(), MethodAttributes(),
                                                          Invoker::createSignature("", name, {}), &construct));
    MethodAttributes const isStatic(corvid::MethodAttribute::STATIC);
    hostClass->addMethod(
        std::make_unique<FunctionMethod>(makeInterned("create"), isStatic, Invoker::createSignature("", name, {}),
                                         [](MethodCall& call) { call.setOutput(announceModel(Model::create())); }));
    addMethods(*hostClass);
  }
  void destroyInstance(void* native) const override {
    if (BindingRegistry::remove(native)) static_cast<ModelImpl*>(native)->removeRef();
  }
  bool isLive(void const* native) const override { return static_cast<ModelImpl const*>(native)->isLive(); }

 private:
  static void construct(MethodCall& call) {
    Model const model = Model::create();
    corvid::Identifier const name = corvid::factory::SelfTraits<Model>::className();
    if (BindingRegistry::announceForConstructor(model.impl(), name, call.newObject(), true)) model.addRef();
  }
  static void addMethods(CorvidClass& hostClass) {
    MethodAdder<Model> const methods(hostClass);
    methods.add("beginTransaction", TRANSACTION, {}, &beginTransaction);
    methods.add("transaction", "any", {"function"}, &runTransaction);
    methods.read("elements", ELEMENTS, {"any"}, &outputElements, 1);
    methods.read("findElement", ELEMENT, {"any"}, &outputFound);
    methods.read("elementCount", COUNT, {}, [](Model const& self, MethodCall& call) {
      call.setOutput(kestrel::createScalar<std::uint64_t>(self->elementCount()));
    });
  }
};

}  // namespace

void addModelClasses(corvid::CorvidPackage& package) {
  addClass<ModelWrapper>(package, "Model");
  addClass<TransactionWrapper>(package, "Transaction");
}

}  // namespace plinth::bridge
