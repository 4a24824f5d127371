#include "plinth/Model.hpp"

#include "ChangePublisher.hpp"
#include "LiveObjects.hpp"
#include "plinth/FailurePoint.hpp"
#include "plinth/Messages.hpp"
#include "plinth/ModelDirectory.hpp"
#include "plinth/TakenKey.hpp"
#include "plinth/Value.hpp"
#include "plinth/meta/MetaRegistry.hpp"

namespace plinth {

Model Model::create() { return Model(new ModelImpl(), Adopt{}); }

meta::Class const& Model::metaClass() { return meta::MetaRegistry::getInstance().modelClass(); }

ModelImpl& Model::require() const {
  if (isEmpty()) reportException(messages::NoModel());
  return *impl();
}

Transaction Model::beginTransaction() const { return require().beginTransaction(false); }

ListenerRegistration Model::addListener(ChangeListener listener) const {
  ModelImpl& model = require();
  if (!listener) reportException(messages::NoListener());
  return model.m_publisher->add(std::move(listener));
}

ModelImpl::ModelImpl()
    : ElementImpl(this, generateNewUuid()),
      m_log(*this),
      m_publisher(std::make_unique<ChangePublisher>()),
      m_listenerCount(&m_publisher->listenerCount()),
      m_ties(*this) {
  detail::LiveObjects::enter(*this);
  m_live = 1;
}

ModelImpl::~ModelImpl() {
  detail::LiveObjects::leave(*this);
  if (!m_name.empty()) ModelDirectory::getInstance().leave(m_name);
  for (auto const& [proxy, id] : m_proxyIds) {
    auto* const element = const_cast<ModelElementImpl*>(proxy);
    element->m_live = 0;
    element->m_state = DESTROYED;
  }
  std::vector<ModelElementImpl*> const elements = m_directory.all();
  m_directory.clear();
  for (ModelElementImpl* element : elements) {
    element->m_live = 0;
    element->m_state = DESTROYED;
  }
  for (ModelElementImpl* element : elements) element->bury();
}

Transaction ModelImpl::beginTransaction(bool thawed) {
  begin(thawed);
  return Transaction(*this, level(), m_log.serialAt(level()));
}

void ModelImpl::begin(bool thawed) {
  if (isFrozen() && !thawed) reportException(messages::CannotModifyFrozenModel());
  if (level() + 1 >= NO_LEVEL) reportException(messages::TransactionsNestedTooDeeply(NO_LEVEL - 1));
  m_log.begin();
}

void ModelImpl::commit() {
  bool const leads = m_ties.hasFollowers();
  if (leads) m_ties.requireFollowersInnermost();
  if (level() > 1) {
    m_log.commitInner();
    if (leads) m_ties.handDown();
  } else if (leads) {
    commitGroup();
  } else {
    commitOutermost();
  }
}

void ModelImpl::commitOutermost() {
  if (!m_publisher->isWatched()) {
    m_log.commitOutermost();
    return;
  }
  Model const hold(this);  // a listener may let go of the last handle
  m_publisher->collect(m_log);
  m_publisher->takeOver(m_log);
  m_log.commitOutermost();
  m_publisher->publish();
}

/// First what can fail, in all models; then what can't; listeners last, when every model is at rest.
void ModelImpl::commitGroup() {
  std::vector<Handle> const group = m_ties.group();
  std::vector<ModelImpl*> watched;
  watched.reserve(group.size());
  try {
    for (Handle const& member : group) {
      auto& model = static_cast<ModelImpl&>(*member.elementImpl());
      if (!model.m_publisher->isWatched()) continue;
      model.m_publisher->collect(model.m_log);
      watched.push_back(&model);
    }
  } catch (...) {
    for (ModelImpl* model : watched) model->m_publisher->discard();
    throw;
  }
  for (ModelImpl* model : watched) model->m_publisher->takeOver(model->m_log);
  for (Handle const& member : group) {
    auto& model = static_cast<ModelImpl&>(*member.elementImpl());
    model.m_log.commitOutermost();
    model.m_ties.dissolve();
  }
  for (ModelImpl* model : watched) model->m_publisher->publish();
}

void ModelImpl::rollBack() noexcept {
  if (m_ties.any() && m_ties.rollBackTied()) return;
  m_log.rollBack();
}

void ModelImpl::announce(ModelElementImpl& element) {
  if (level() == 0) reportException(messages::CannotModifyOutsideTransaction());
  failurePoint("announce");
  m_log.reserve();
  m_directory.reserve(element);
  if (!m_directory.add(element)) reportTakenUuid(element.getUuid());
  element.addRefUnshared();  // the model's own
  element.m_live = 1;
  element.m_state |= ANNOUNCED;
  element.m_createdLevel = static_cast<std::uint16_t>(level());
  m_log.created(element);
}

ModelElement ModelImpl::findElement(boost::uuids::uuid const& uuid, FindElementBehavior) const {
  return ModelElement(m_directory.find(uuid));
}

void ModelImpl::setName(std::u16string name) {
  if (name == m_name) return;
  if (!name.empty()) ModelDirectory::getInstance().enter(name, *this);
  if (!m_name.empty()) ModelDirectory::getInstance().leave(m_name);
  m_name = std::move(name);
}

std::vector<std::exception_ptr> ModelImpl::takeListenerErrors() { return m_publisher->takeErrors(); }

std::size_t ModelImpl::listenerErrorCount() const noexcept { return m_publisher->errorCount(); }

}  // namespace plinth
