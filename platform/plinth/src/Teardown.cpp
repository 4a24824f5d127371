#include "Teardown.hpp"

#include "plinth/FailurePoint.hpp"
#include "plinth/Messages.hpp"
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
  if (!element.isLive() || (element.m_state & ModelElementImpl::TEARING_DOWN) != 0) return;
  ModelImpl& model = element.model();
  if (detachFirst) detach(element);
  model.m_teardown.push_back(&element);
  element.m_state |= ModelElementImpl::TEARING_DOWN;
  if (!model.m_tearingDown) drain(model, flag1, flag2);
}

void Teardown::drain(ModelImpl& model, bool flag1, bool flag2) {
  struct Running {
    explicit Running(ModelImpl& running) : m_model(running) { m_model.m_tearingDown = true; }
    ~Running() {
      for (ModelElementImpl* waiting : m_model.m_teardown) {
        waiting->m_state &= static_cast<std::uint8_t>(~ModelElementImpl::TEARING_DOWN);
      }
      m_model.m_teardown.clear();
      m_model.m_tearingDown = false;
    }
    ModelImpl& m_model;
  } const running(model);
  while (!model.m_teardown.empty()) {
    ModelElementImpl* const next = model.m_teardown.back();  // the model holds it, and then the undo log
    model.m_teardown.pop_back();
    next->m_state &= static_cast<std::uint8_t>(~ModelElementImpl::TEARING_DOWN);
    end(*next, flag1, flag2);
  }
}

void Teardown::end(ModelElementImpl& element, bool flag1, bool flag2) {
  failurePoint("teardown");
  ModelImpl& model = element.model();
  element.notifyDestroying();
  element.aboutToDestroy();
  element.doDestroy(flag1, flag2);
  element.disassociateIncoming();
  model.m_log.reserve();
  model.m_directory.remove(element);
  element.m_live = 0;
  element.m_state |= ModelElementImpl::DESTROYED;
  model.m_log.destroyed(element);  // the model's reference goes to the log with it
}

void Teardown::detach(ModelElementImpl& element) {
  ModelElementImpl* const container = element.basicContainer();
  if (container == nullptr) return;
  container->inverseRemove(element, *element.basicContainmentFeature());
  element.basicSetContainer(nullptr, nullptr, ModelElementImpl::NO_INDEX);
}

}  // namespace plinth
