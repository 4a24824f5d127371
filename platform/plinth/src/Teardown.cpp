#include "Teardown.hpp"

#include <algorithm>
#include <unordered_map>

#include "Prefetch.hpp"
#include "plinth/FailurePoint.hpp"
#include "plinth/Messages.hpp"
#include "plinth/ReferenceCollection.hpp"
#include "plinth/meta/Property.hpp"

namespace plinth {

void Teardown::destroy(ModelElementImpl& element) {
  element.requireReal();
  if (!hasBegun(element)) start(element, true, true, true);
}

void Teardown::destroyContained(ModelElementImpl& element, bool flag1, bool detachFirst, bool flag2) {
  element.requireReal();
  if (hasBegun(element)) return;
  ModelImpl& model = element.model();
  if (model.level() == 0) reportException(messages::CannotModifyOutsideTransaction());
  if (!model.m_collectingChildren) {
    start(element, flag1, detachFirst, flag2);
    return;
  }
  if (detachFirst) detach(element);
  wait(element);
}

bool Teardown::hasBegun(ModelElementImpl const& element) noexcept {
  constexpr std::uint8_t BEGUN = ModelElementImpl::TEARING_DOWN | ModelElementImpl::ENDING;
  return !element.isLive() || (element.m_state & BEGUN) != 0;
}

void Teardown::wait(ModelElementImpl& element) {
  element.model().m_teardown.push_back(&element);
  element.m_state |= ModelElementImpl::TEARING_DOWN;
}

void Teardown::start(ModelElementImpl& element, bool flag1, bool detachFirst, bool flag2) {
  ModelElement const hold(&element);
  Model const model = element.getModel();  // a listener may let go of the last handle
  Step step(element.model(), Step::WHOLE);
  {
    Run const run(element.model());
    if (detachFirst) detach(element);
    wait(element);
    drain(run, flag1, flag2);
    sweep(element.model(), run.leavingBefore);
  }
  step.commit();
}

Teardown::Run::Run(ModelImpl& running) noexcept
    : model(running), waitingBefore(running.m_teardown.size()), leavingBefore(running.m_leaving.size()) {}

Teardown::Run::~Run() {
  constexpr auto REST = static_cast<std::uint8_t>(~(ModelElementImpl::TEARING_DOWN | ModelElementImpl::ENDING));
  for (std::size_t i = waitingBefore; i < model.m_teardown.size(); ++i) model.m_teardown[i]->m_state &= REST;
  model.m_teardown.resize(waitingBefore);
  model.m_leaving.resize(leavingBefore);
}

void Teardown::drain(Run const& run, bool flag1, bool flag2) {
  constexpr std::size_t AHEAD = 4;
  std::vector<ModelElementImpl*>& waiting = run.model.m_teardown;
  while (waiting.size() > run.waitingBefore) {
    std::size_t const size = waiting.size();
    ModelElementImpl& next = *waiting.back();  // the model holds it, and then the undo log
    if (size > AHEAD) detail::prefetch(waiting[size - 1 - AHEAD], detail::ELEMENT_BYTES);
    if ((next.m_state & ModelElementImpl::ENDING) == 0) {
      begin(next, flag1, flag2);
      std::reverse(waiting.begin() + static_cast<std::ptrdiff_t>(size), waiting.end());
      if (waiting.size() > size) continue;
    }
    waiting.pop_back();
    end(next);
  }
}

void Teardown::begin(ModelElementImpl& element, bool flag1, bool flag2) {
  struct Collecting {
    explicit Collecting(ModelImpl& of) : model(of) { model.m_collectingChildren = true; }
    ~Collecting() { model.m_collectingChildren = false; }
    ModelImpl& model;
  };
  failurePoint("teardown");
  element.m_state &= static_cast<std::uint8_t>(~ModelElementImpl::TEARING_DOWN);
  element.m_state |= ModelElementImpl::ENDING;
  element.notifyDestroying();
  element.aboutToDestroy();
  Collecting const collecting(element.model());
  element.doDestroy(flag1, flag2);
}

void Teardown::end(ModelElementImpl& element) {
  struct Ending {
    ~Ending() { m_element.m_state &= static_cast<std::uint8_t>(~ModelElementImpl::ENDING); }
    ModelElementImpl& m_element;
  } const ending{element};
  ModelImpl& model = element.model();
  element.disassociateIncoming();
  model.m_log.reserve();
  model.m_directory.remove(element);
  element.m_live = 0;
  element.m_state |= ModelElementImpl::DESTROYED;
  model.m_log.destroyed(element);  // the model's reference goes to the log with it
}

void Teardown::convertToProxies(ModelImpl& model, std::vector<ModelElementImpl*> const& elements) {
  struct Marked {
    ~Marked() {
      constexpr auto REST = static_cast<std::uint8_t>(~ModelElementImpl::ENDING);
      for (ModelElementImpl* element : elements) element->m_state &= REST;
    }
    std::vector<ModelElementImpl*> elements;
  } marked;
  Run const run(model);
  marked.elements.reserve(elements.size());
  for (ModelElementImpl* element : elements) {
    if (hasBegun(*element)) continue;  // its teardown is under way further up
    element->m_state |= ModelElementImpl::ENDING;
    marked.elements.push_back(element);
  }
  for (ModelElementImpl* element : elements) {
    boost::optional<ProxyId> id;
    element->convertReferencesToProxies(true, id);
  }
  sweep(model, run.leavingBefore);
}

void Teardown::sweep(ModelImpl& model, std::size_t from) {
  if (model.m_leaving.size() == from) return;
  // In the order in which the collections have been left first: listeners are told in it.
  struct Group {
    ModelElement owner;
    ReferenceCollection* collection;
    std::vector<ModelElement> members;
  };
  std::vector<Group> groups;
  std::unordered_map<ReferenceCollection*, std::size_t> positions;
  for (std::size_t i = from; i < model.m_leaving.size(); ++i) {
    ModelImpl::Leaving& leaving = model.m_leaving[i];
    auto const [at, isNew] = positions.try_emplace(leaving.collection, groups.size());
    if (isNew) groups.push_back({leaving.owner, leaving.collection, {}});
    groups[at->second].members.push_back(std::move(leaving.element));
  }
  for (Group const& group : groups) ModelElementImpl::_basicRemoveAll(group.collection, group.members);
}

void Teardown::detach(ModelElementImpl& element) {
  ModelElementImpl* const container = element.basicContainer();
  if (container == nullptr) return;
  container->inverseRemove(element, *element.basicContainmentFeature());
  element.basicSetContainer(nullptr, nullptr, ModelElementImpl::NO_INDEX);
}

}  // namespace plinth
