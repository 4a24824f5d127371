#include "Teardown.hpp"

#include <algorithm>
#include <functional>

#include "Prefetch.hpp"
#include "plinth/FailurePoint.hpp"
#include "plinth/Messages.hpp"
#include "plinth/ReferenceCollection.hpp"
#include "plinth/meta/Property.hpp"

namespace plinth {

void Teardown::destroy(ModelElementImpl& element) {
  if (!element.isLive()) return;
  element.requireReal();
  ModelElement const hold(&element);
  Transaction transaction = element.model().beginTransaction(false);
  destroyContained(element, true, true, true);
  transaction.commit();
}

void Teardown::destroyContained(ModelElementImpl& element, bool flag1, bool detachFirst, bool flag2) {
  constexpr std::uint8_t BEGUN = ModelElementImpl::TEARING_DOWN | ModelElementImpl::ENDING;
  if (!element.isLive() || (element.m_state & BEGUN) != 0) return;
  ModelImpl& model = element.model();
  if (model.level() == 0) reportException(messages::CannotModifyOutsideTransaction());
  if (detachFirst) detach(element);
  model.m_teardown.push_back(&element);
  element.m_state |= ModelElementImpl::TEARING_DOWN;
  if (!model.m_tearingDown) drain(model, flag1, flag2);
}

void Teardown::drain(ModelImpl& model, bool flag1, bool flag2) {
  struct Running {
    explicit Running(ModelImpl& running) : m_model(running) { m_model.m_tearingDown = true; }
    ~Running() {
      constexpr auto REST = static_cast<std::uint8_t>(~(ModelElementImpl::TEARING_DOWN | ModelElementImpl::ENDING));
      for (ModelElementImpl* waiting : m_model.m_teardown) waiting->m_state &= REST;
      m_model.m_teardown.clear();
      m_model.m_leaving.clear();
      m_model.m_tearingDown = false;
    }
    ModelImpl& m_model;
  } const running(model);
  constexpr std::size_t AHEAD = 4;
  std::vector<ModelElementImpl*>& waiting = model.m_teardown;
  while (!waiting.empty()) {
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
  sweep(model);
}

void Teardown::begin(ModelElementImpl& element, bool flag1, bool flag2) {
  failurePoint("teardown");
  element.m_state &= static_cast<std::uint8_t>(~ModelElementImpl::TEARING_DOWN);
  element.m_state |= ModelElementImpl::ENDING;
  element.notifyDestroying();
  element.aboutToDestroy();
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
  struct Leaving {
    explicit Leaving(ModelImpl& of, std::vector<ModelElementImpl*> const& those) : m_model(of), m_elements(those) {
      for (ModelElementImpl* element : m_elements) element->m_state |= ModelElementImpl::ENDING;
    }
    ~Leaving() {
      constexpr auto REST = static_cast<std::uint8_t>(~ModelElementImpl::ENDING);
      for (ModelElementImpl* element : m_elements) element->m_state &= REST;
      m_model.m_leaving.clear();
    }
    ModelImpl& m_model;
    std::vector<ModelElementImpl*> const& m_elements;
  } const leaving(model, elements);
  for (ModelElementImpl* element : elements) {
    boost::optional<ProxyId> id;
    element->convertReferencesToProxies(true, id);
  }
  sweep(model);
}

void Teardown::sweep(ModelImpl& model) {
  std::vector<ModelImpl::Leaving> leaving = std::exchange(model.m_leaving, {});
  auto const byCollection = [](auto const& left, auto const& right) {
    return std::less<>()(left.collection, right.collection);
  };
  std::stable_sort(leaving.begin(), leaving.end(), byCollection);
  for (auto first = leaving.begin(); first != leaving.end();) {
    auto const last = std::upper_bound(first, leaving.end(), *first, byCollection);
    std::vector<ModelElement> members;
    for (auto at = first; at != last; ++at) members.emplace_back(at->element);
    first->element->_basicRemoveAll(first->collection, members);
    first = last;
  }
}

void Teardown::detach(ModelElementImpl& element) {
  ModelElementImpl* const container = element.basicContainer();
  if (container == nullptr) return;
  container->inverseRemove(element, *element.basicContainmentFeature());
  element.basicSetContainer(nullptr, nullptr, ModelElementImpl::NO_INDEX);
}

}  // namespace plinth
