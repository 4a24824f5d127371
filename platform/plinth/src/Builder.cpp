#include "plinth/Builder.hpp"

#include <boost/dynamic_bitset.hpp>
#include <utility>

#include "plinth/CascadeSteps.hpp"
#include "plinth/FailurePoint.hpp"
#include "plinth/Step.hpp"
#include "plinth/Value.hpp"

namespace plinth {

struct Orchestrator::Frame {
  Frame(ModelElementBuilder* maker, std::size_t steps) noexcept : builder(maker), first(steps), next(steps) {}
  ModelElementBuilder* builder;  ///< holds what it has made
  std::size_t first;             ///< its steps begin here; those of the innermost frame are the last
  std::size_t next;
};

namespace {

void requireBuilder(ModelElementBuilder const* builder) {
  if (builder == nullptr) reportException(messages::CannotAddNonExistentObject());
}

Transaction beginFor(ModelElementBuilder const* root) {
  requireBuilder(root);
  if (root->model().isEmpty()) reportException(messages::CannotCreateWithoutModel());
  return root->model().impl()->beginTransaction(false);
}

}  // namespace

Orchestrator::Orchestrator(ModelElementBuilder* root, Builders builders)
    : m_root(root), m_transaction(beginFor(root)), m_spendsBuilders(builders == Builders::SPENT) {
  addBuilder(root);
}

Orchestrator::~Orchestrator() {
  while (m_builders != nullptr) removeBuilder(*m_builders);
}

void Orchestrator::addBuilder(ModelElementBuilder* builder) {
  requireBuilder(builder);
  if (builder->m_orchestrator == this) return;
  builder->leaveOrchestrator();
  if (m_builders != nullptr) m_builders->m_previous = builder;
  builder->m_next = std::exchange(m_builders, builder);
  builder->m_orchestrator = this;
  if (builder->m_model != m_root->m_model) builder->m_model = m_root->m_model;
}

void Orchestrator::removeBuilder(ModelElementBuilder& builder) noexcept {
  ModelElementBuilder* const next = std::exchange(builder.m_next, nullptr);
  ModelElementBuilder* const previous = std::exchange(builder.m_previous, nullptr);
  if (next != nullptr) next->m_previous = previous;
  (previous != nullptr ? previous->m_next : m_builders) = next;
  builder.m_orchestrator = nullptr;
  builder.m_created = ModelElement();
}

ModelElement Orchestrator::getCreatedElement(ModelElementBuilder const* builder) const {
  return builder != nullptr && builder->m_orchestrator == this ? builder->m_created : ModelElement();
}

ModelElement const& Orchestrator::run(ModelElementBuilder& top, boost::uuids::uuid const& uuid) {
  boost::container::small_vector<Frame, 8> frames;
  CascadeSteps steps;
  auto const enter = [&](ModelElementBuilder* builder, boost::uuids::uuid const& childUuid) {
    addBuilder(builder);
    bool const isMade = static_cast<bool>(builder->m_created);  // with its children, or they are being made
    ModelElement const& element = builder->make(childUuid);
    frames.emplace_back(builder, steps.size());
    if (!isMade) builder->cascadeCreation(*element, steps);
  };
  enter(&top, uuid);
  while (true) {
    Frame const& frame = frames.back();
    if (frame.next < steps.size()) {
      enter(steps[frame.next].child, {});
      continue;
    }
    ModelElement const& made = frame.builder->m_created;
    steps.resize(frame.first);
    frames.pop_back();
    if (frames.empty()) return made;
    Frame& parent = frames.back();
    parent.builder->attach(*parent.builder->m_created, *steps[parent.next].property, made);
    ++parent.next;
  }
}

ModelElement Orchestrator::commit() {
  m_transaction.commit();
  return m_root->m_created;
}

ModelElementBuilder::~ModelElementBuilder() { leaveOrchestrator(); }

ModelElement ModelElementBuilder::create(boost::uuids::uuid const& uuid) {
  if (m_orchestrator == nullptr) {
    Orchestrator orchestrator(this);
    orchestrator.run(uuid);
    return orchestrator.commit();
  }
  if (m_created) return m_created;
  // What fails half-way leaves nothing behind, whatever becomes of the rest.
  Step step(*m_model.impl(), Step::WHOLE);
  ModelElement const& made = m_orchestrator->run(*this, uuid);
  step.commit();
  return made;
}

ModelElement const& ModelElementBuilder::make(boost::uuids::uuid const& uuid) {
  if (m_created) return m_created;
  failurePoint("builder-make");
  m_created = doCreate(false, uuid.is_nil() ? ElementImpl::generateNewUuid() : uuid);
  return m_created;
}

void ModelElementBuilder::setOrAdd(meta::Property const& property, Value const&) {
  reportException(
      messages::NoSuchProperty(property.isEmpty() ? u"" : property->getName(), getMetaClass()->getQualifiedName()));
}

void ModelElementBuilder::setOrAdd(meta::Property const& property, std::unique_ptr<ModelElementBuilder> child) {
  if (child != nullptr && !property.isEmpty() && property->isComposite() &&
      getMetaClass()->conformsTo(*property->owningType())) {
    reportException(messages::CannotAddIncompatibleTypes(property->type()->getQualifiedName(),
                                                         child->getMetaClass()->getQualifiedName()));
  }
  reportException(
      messages::NoSuchProperty(property.isEmpty() ? u"" : property->getName(), getMetaClass()->getQualifiedName()));
}

BitSet ModelElementBuilder::setMask() const { return BitSet(m_bits, m_setMask); }

void ModelElementBuilder::cascadeCreation(ModelElementImpl&, CascadeSteps&) {}

void ModelElementBuilder::attach(ModelElementImpl&, meta::PropertyImpl&, ModelElement const&) {}

namespace {

// At a fixed place in each thread's storage: reaching it takes no call.
[[gnu::tls_model("initial-exec")]] thread_local ModelElementBuilder* waiting = nullptr;
[[gnu::tls_model("initial-exec")]] thread_local bool isRunning = false;

}  // namespace

void Orchestrator::takeDown(std::unique_ptr<ModelElementBuilder> builder) noexcept {
  if (builder == nullptr) return;
  builder->leaveOrchestrator();
  // The destructor of a builder hands its children in here again: they wait in the list of the outermost call.
  builder->m_next = waiting;
  waiting = builder.release();
  if (isRunning) return;
  isRunning = true;
  while (waiting != nullptr) {
    std::unique_ptr<ModelElementBuilder> const last(std::exchange(waiting, waiting->m_next));
  }
  isRunning = false;
}

void takeDown(std::unique_ptr<ModelElementBuilder> builder) noexcept { Orchestrator::takeDown(std::move(builder)); }

ModelElement Orchestrator::makeProxy(ModelElementBuilder& builder, boost::uuids::uuid const& uuid) {
  return builder.doCreate(true, uuid);
}

}  // namespace plinth
