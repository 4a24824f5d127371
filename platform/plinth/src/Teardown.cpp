#include "Teardown.hpp"

#include <algorithm>
#include <unordered_map>

#include "Prefetch.hpp"
#include "plinth/FailurePoint.hpp"
#include "plinth/Messages.hpp"
#include "plinth/ReferenceCollection.hpp"
#include "plinth/Step.hpp"

namespace plinth {

using internal::core;
using internal::ElementCore;
using internal::ModelState;
using internal::stateOf;

void Teardown::destroy(ModelElementImpl& element) {
  core(element).requireReal();
  if (!hasBegun(element)) start(element, true, true, true);
}

void Teardown::destroyContained(ModelElementImpl& element, bool flag1, bool detachFirst, bool flag2) {
  core(element).requireReal();
  if (hasBegun(element)) return;
  ModelState& model = stateOf(element.model());
  if (model.level() == 0) reportException(messages::CannotModifyOutsideTransaction());
  if (!model.isCollectingChildren) {
    start(element, flag1, detachFirst, flag2);
    return;
  }
  if (detachFirst) detach(element);
  wait(element);
}

bool Teardown::hasBegun(ModelElementImpl const& element) noexcept {
  constexpr std::uint8_t BEGUN = ElementCore::TEARING_DOWN | ElementCore::ENDING;
  return !element.isLive() || (core(element).m_state & BEGUN) != 0;
}

void Teardown::wait(ModelElementImpl& element) {
  stateOf(element.model()).teardown.push_back(&element);
  core(element).m_state |= ElementCore::TEARING_DOWN;
}

void Teardown::start(ModelElementImpl& element, bool flag1, bool detachFirst, bool flag2) {
  ModelElement const hold(&element);
  Model const model = element.getModel();  // a listener may let go of the last handle
  Step step(element.model(), Step::WHOLE);
  {
    Run const run(stateOf(element.model()));
    if (detachFirst) detach(element);
    wait(element);
    drain(run, flag1, flag2);
    sweep(run.model, run.leavingBefore);
  }
  step.commit();
}

Teardown::Run::Run(ModelState& running) noexcept
    : model(running), waitingBefore(running.teardown.size()), leavingBefore(running.leaving.size()) {}

Teardown::Run::~Run() {
  constexpr auto REST = static_cast<std::uint8_t>(~(ElementCore::TEARING_DOWN | ElementCore::ENDING));
  for (std::size_t i = waitingBefore; i < model.teardown.size(); ++i) core(*model.teardown[i]).m_state &= REST;
  model.teardown.resize(waitingBefore);
  model.leaving.resize(leavingBefore);
}

void Teardown::drain(Run const& run, bool flag1, bool flag2) {
  constexpr std::size_t AHEAD = 4;
  std::vector<ModelElementImpl*>& waiting = run.model.teardown;
  while (waiting.size() > run.waitingBefore) {
    std::size_t const size = waiting.size();
    ModelElementImpl& next = *waiting.back();  // the model holds it, and then the undo log
    if (size > AHEAD) detail::prefetch(waiting[size - 1 - AHEAD], detail::ELEMENT_BYTES);
    if ((core(next).m_state & ElementCore::ENDING) == 0) {
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
    explicit Collecting(ModelState& of) : model(of) { model.isCollectingChildren = true; }
    ~Collecting() { model.isCollectingChildren = false; }
    ModelState& model;
  };
  failurePoint("teardown");
  core(element).m_state &= static_cast<std::uint8_t>(~ElementCore::TEARING_DOWN);
  core(element).m_state |= ElementCore::ENDING;
  core(element).notifyDestroying();
  core(element).aboutToDestroy();
  Collecting const collecting(stateOf(element.model()));
  core(element).doDestroy(flag1, flag2);
}

void Teardown::end(ModelElementImpl& element) {
  struct Ending {
    ~Ending() { core(m_element).m_state &= static_cast<std::uint8_t>(~ElementCore::ENDING); }
    ModelElementImpl& m_element;
  } const ending{element};
  ModelState& model = stateOf(element.model());
  core(element).disassociateIncoming();
  model.log.reserve();
  model.elements.remove(core(element));
  core(element).m_live = 0;
  core(element).m_state |= ElementCore::DESTROYED;
  model.log.destroyed(element);  // the model's reference goes to the log with it
}

void Teardown::convertToProxies(ModelState& model, std::vector<ModelElementImpl*> const& elements) {
  struct Marked {
    ~Marked() {
      constexpr auto REST = static_cast<std::uint8_t>(~ElementCore::ENDING);
      for (ModelElementImpl* element : elements) core(*element).m_state &= REST;
    }
    std::vector<ModelElementImpl*> elements;
  } marked;
  Run const run(model);
  marked.elements.reserve(elements.size());
  for (ModelElementImpl* element : elements) {
    if (hasBegun(*element)) continue;  // its teardown is under way further up
    core(*element).m_state |= ElementCore::ENDING;
    marked.elements.push_back(element);
  }
  for (ModelElementImpl* element : elements) {
    boost::optional<ProxyId> id;
    core(*element).convertReferencesToProxies(true, id);
  }
  sweep(model, run.leavingBefore);
}

void Teardown::sweep(ModelState& model, std::size_t from) {
  if (model.leaving.size() == from) return;
  // In the order in which the collections have been left first: listeners are told in it.
  struct Group {
    ModelElement owner;
    ReferenceCollection* collection;
    std::vector<ModelElement> members;
  };
  std::vector<Group> groups;
  std::unordered_map<ReferenceCollection*, std::size_t> positions;
  for (std::size_t i = from; i < model.leaving.size(); ++i) {
    ModelState::Leaving& leaving = model.leaving[i];
    auto const [at, isNew] = positions.try_emplace(leaving.collection, groups.size());
    if (isNew) groups.push_back({leaving.owner, leaving.collection, {}});
    groups[at->second].members.push_back(std::move(leaving.element));
  }
  for (Group const& group : groups) ElementCore::_basicRemoveAll(group.collection, group.members);
}

void Teardown::detach(ModelElementImpl& element) {
  ModelElementImpl* const container = core(element).basicContainer();
  if (container == nullptr) return;
  core(*container).inverseRemove(element, *core(element).basicContainmentFeature());
  core(element).basicSetContainer(nullptr, nullptr, ElementCore::NO_INDEX);
}

}  // namespace plinth
