// "plinth.Model" and "plinth.Transaction".
#include <boost/optional.hpp>

#include "FoundationClasses.hpp"
#include "corvid/Callable.hpp"
#include "corvid/Invocation.hpp"
#include "corvid/factory/CorvidFactoryClassInfo.hpp"
#include "corvid/factory/StringDataTypes.hpp"
#include "kestrel/array.hpp"
#include "plinth/Query.hpp"
#include "plinth/bridge/Construct.hpp"
#include "plinth/bridge/ElementShapes.hpp"

namespace plinth::bridge {
namespace {

/// A transaction that a script object owns; ended when the script says so, or when it lets go of it.
class ScriptTransaction {
 public:
  explicit ScriptTransaction(Model const& model) : m_transaction(model->beginTransaction(false)) {}

  bool isOpen() const noexcept { return m_transaction.has_value() && m_transaction->isOpen(); }
  /// Raises TransactionNotInnermost while an inner one is open, and InvalidValue for one that has ended.
  void commit() {
    requireOpen();
    m_transaction->commit();
    m_transaction.reset();
  }
  void rollback() {
    requireOpen();
    m_transaction.reset();
  }
  void close() noexcept { m_transaction.reset(); }

 private:
  void requireOpen() const {
    if (!isOpen()) reportException(messages::InvalidValue());
  }

  boost::optional<Transaction> m_transaction;
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
  void destroyInstance(void* native) const override { delete static_cast<ScriptTransaction*>(native); }
  bool isAbstract() const override { return true; }
};

void beginTransaction(Model const& self, MethodCall& call) {
  auto transaction = std::make_unique<ScriptTransaction>(self);
  call.setOutput(BindingRegistry::announceWithoutStoring(transaction.get(), makeInterned(TRANSACTION), nullptr));
  transaction.release();
}

/// Runs a function in a transaction of its own: committed when it returns, taken back when it raises.
void runTransaction(Model const& self, MethodCall& call) {
  Transaction transaction = self->beginTransaction(false);
  auto results = corvid::Callable::in(call.input(1)).call({});
  transaction.commit();
  if (!results.empty()) call.setOutput(std::move(results.front()));
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
    std::string const& name = hostClass->getName().text();
    hostClass->addMethod(std::make_unique<FunctionMethod>(hostClass->getShortName(), MethodAttributes(),
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
