#include "plinth/Model.hpp"

#include <limits>

#include "ChangePublisher.hpp"
#include "plinth/FailurePoint.hpp"
#include "plinth/Messages.hpp"
#include "plinth/ModelDirectory.hpp"
#include "plinth/Value.hpp"
#include "plinth/meta/MetaRegistry.hpp"

namespace plinth {

Model Model::create() { return Model(new ModelImpl(), Adopt{}); }

meta::Class const& Model::metaClass() { return meta::MetaRegistry::getInstance().modelClass(); }

Transaction Model::beginTransaction() const {
  if (isEmpty()) reportException(messages::CannotCreateWithoutModel());
  return impl()->beginTransaction(false);
}

ListenerRegistration Model::addListener(ChangeListener listener) const {
  return impl()->m_publisher->add(std::move(listener));
}

ModelImpl::ModelImpl()
    : ElementImpl(this, generateNewUuid()), m_log(*this), m_publisher(std::make_unique<ChangePublisher>(*this)) {
  m_live = 1;
}

ModelImpl::~ModelImpl() {
  if (!m_name.empty()) ModelDirectory::getInstance().leave(m_name);
  for (auto const& [proxy, id] : m_proxyIds) {
    auto* const element = const_cast<ModelElementImpl*>(proxy);
    element->m_live = 0;
    element->m_state = DESTROYED;
  }
  std::vector<ModelElementImpl*> const elements = m_directory.all();
  for (ModelElementImpl* element : elements) {
    m_directory.remove(*element);
    element->m_live = 0;
    element->m_state = DESTROYED;  // not announced any more: nothing below keeps old values
    element->invalidate();
  }
  for (ModelElementImpl* element : elements) {
    element->basicDisassociateAll();
    element->m_container = nullptr;
    element->m_containmentProperty = nullptr;
  }
  for (ModelElementImpl* element : elements) element->removeRef();
}

void ModelImpl::removeRef() noexcept { ElementImpl::removeRef(); }

Transaction ModelImpl::beginTransaction(bool thawed) {
  begin(thawed);
  return Transaction(*this, level(), m_serials.back());
}

void ModelImpl::begin(bool thawed) {
  if (m_frozen && !thawed) reportException(messages::CannotModifyFrozenModel());
  if (level() + 1 >= NO_LEVEL) throw std::length_error("transactions are nested too deeply");
  m_serials.push_back(m_nextSerial);
  try {
    m_log.begin();
  } catch (...) {
    m_serials.pop_back();
    throw;
  }
  ++m_nextSerial;
}

void ModelImpl::commit() {
  if (level() > 1) {
    m_serials.pop_back();
    m_log.commitInner();
  } else {
    commitOutermost();
  }
}

void ModelImpl::commitOutermost() {
  if (!m_publisher->isWatched()) {
    m_serials.pop_back();
    m_log.commitOutermost();
    return;
  }
  Model const hold(this);  // a listener may let go of the last handle
  m_publisher->collect(m_log);
  m_serials.pop_back();
  m_publisher->takeOver(m_log);
  m_log.commitOutermost();
  m_publisher->publish();
}

void ModelImpl::rollBack() noexcept {
  m_serials.pop_back();
  m_log.rollBack();
}

void ModelImpl::announce(ModelElementImpl& element) {
  if (level() == 0) reportException(messages::CannotModifyOutsideTransaction());
  failurePoint("announce");
  m_log.reserve();
  m_directory.reserve(element);
  if (!m_directory.add(element)) reportException(messages::UniquenessConstraint());
  element.addRef();  // the model's own
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

Transaction::Transaction(ModelImpl& model, unsigned level, unsigned long serial) noexcept
    : m_model(&model), m_level(level), m_serial(serial) {}

Transaction::Transaction(Transaction&& other) noexcept
    : m_model(std::move(other.m_model)),
      m_level(other.m_level),
      m_serial(other.m_serial),
      m_open(std::exchange(other.m_open, false)) {}

Transaction::~Transaction() {
  if (!m_open) return;
  auto& model = static_cast<ModelImpl&>(*m_model.elementImpl());
  // Inner transactions that outlive this one end with it; their own destructors find another serial and do nothing.
  if (model.level() < m_level || model.m_serials[m_level - 1] != m_serial) return;
  while (model.level() >= m_level) model.rollBack();
}

void Transaction::commit() {
  auto& model = static_cast<ModelImpl&>(*m_model.elementImpl());
  if (!m_open || model.level() != m_level || model.m_serials.back() != m_serial) {
    reportException(messages::TransactionNotInnermost());
  }
  model.commit();
  m_open = false;
}

void Transaction::commit(boost::optional<Value> const&) { commit(); }

Model::Freezer::Freezer(Model model) : m_model(std::move(model)) { m_model->m_frozen = true; }

Model::Thawer Model::Freezer::thaw() { return Thawer(*this); }

Model::Thawer::Thawer(Freezer& freezer) noexcept : m_freezer(&freezer) {
  ++freezer.m_thaws;
  freezer.m_model->m_frozen = false;
}

Model::Thawer::~Thawer() {
  if (m_freezer != nullptr && --m_freezer->m_thaws == 0) m_freezer->m_model->m_frozen = true;
}

}  // namespace plinth
