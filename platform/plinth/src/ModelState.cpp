#include "ModelState.hpp"

#include <boost/uuid/uuid_io.hpp>

#include "plinth/FailurePoint.hpp"
#include "plinth/LiveObjects.hpp"
#include "plinth/Messages.hpp"
#include "plinth/Step.hpp"

namespace plinth::internal {
namespace {

[[noreturn]] void reportTakenUuid(boost::uuids::uuid const& uuid) {
  messages::UniquenessConstraint const taken;
  reportException(taken, taken.key + ": another element of the model already bears the key \"" +
                             boost::uuids::to_string(uuid) + "\"; choose another key.");
}

}  // namespace

ModelState::ModelState() : step(stepOf(*this)), log(*this), ties(*this) {
  step.listenerCount = &publisher.listenerCount();
  detail::LiveObjects::enter(*this);
  m_live = 1;
}

ModelState::~ModelState() {
  setName({});  // nobody finds it from here on
  detail::LiveObjects::leave(*this);
  auto const end = [](ModelElementImpl& element) {
    core(element).m_live = 0;
    core(element).m_state = DESTROYED;
  };
  for (auto const& [proxy, id] : proxyIds) end(const_cast<ModelElementImpl&>(*proxy));
  std::vector<ModelElementImpl*> const all = elements.all();
  elements.clear();
  for (ModelElementImpl* element : all) end(*element);
  for (ModelElementImpl* element : all) core(*element).bury();
}

void ModelState::begin(bool thawed) {
  if (isFrozen() && !thawed) reportException(messages::CannotModifyFrozenModel());
  if (level() + 1 >= NO_LEVEL) reportException(messages::TransactionsNestedTooDeeply(NO_LEVEL - 1));
  log.begin();
}

void ModelState::commit() {
  bool const leads = ties.hasFollowers();
  if (leads) ties.requireFollowersInnermost();
  if (level() > 1) {
    log.commitInner();
    if (leads) ties.handDown();
  } else if (leads) {
    commitGroup();
  } else {
    commitOutermost();
  }
}

void ModelState::commitOutermost() {
  if (!publisher.isWatched()) {
    log.commitOutermost();
    return;
  }
  Model const hold(this);  // a listener may let go of the last handle
  publisher.collect(log);
  publisher.takeOver(log);
  log.commitOutermost();
  publisher.publish();
}

/// First what can fail, in all models; then what can't; listeners last, when every model is at rest.
void ModelState::commitGroup() {
  std::vector<Handle> const group = ties.group();
  std::vector<ModelState*> watched;
  watched.reserve(group.size());
  try {
    for (Handle const& member : group) {
      auto& model = stateOf(static_cast<ModelImpl&>(*member.elementImpl()));
      if (!model.publisher.isWatched()) continue;
      model.publisher.collect(model.log);
      watched.push_back(&model);
    }
  } catch (...) {
    for (ModelState* model : watched) model->publisher.discard();
    throw;
  }
  for (ModelState* model : watched) model->publisher.takeOver(model->log);
  for (Handle const& member : group) {
    auto& model = stateOf(static_cast<ModelImpl&>(*member.elementImpl()));
    model.log.commitOutermost();
    model.ties.dissolve();
  }
  for (ModelState* model : watched) model->publisher.publish();
}

void ModelState::rollBack() noexcept {
  if (ties.any() && ties.rollBackTied()) return;
  log.rollBack();
}

void ModelState::announce(ElementCore& element) {
  if (level() == 0) reportException(messages::CannotModifyOutsideTransaction());
  failurePoint("announce");
  log.reserve();
  elements.reserve(element);
  if (!elements.add(element)) reportTakenUuid(element.getUuid());
  element.addRefUnshared();  // the model's own
  element.m_live = 1;
  element.m_state |= ANNOUNCED;
  element.m_createdLevel = static_cast<std::uint16_t>(level());
  log.created(element.self());
}

void beginStep(ModelImpl& model) { stateOf(model).begin(false); }
void commitStep(ModelImpl& model) { stateOf(model).commit(); }
void rollBackStep(ModelImpl& model) noexcept { stateOf(model).rollBack(); }

}  // namespace plinth::internal
