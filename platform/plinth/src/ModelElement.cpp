#include "plinth/ModelElement.hpp"

#include <boost/uuid/uuid_io.hpp>

#include "LiveObjects.hpp"
#include "Teardown.hpp"
#include "plinth/Changes.hpp"
#include "plinth/FailurePoint.hpp"
#include "plinth/Messages.hpp"
#include "plinth/Model.hpp"
#include "plinth/ReferenceCollection.hpp"
#include "plinth/Value.hpp"
#include "plinth/meta/MetaRegistry.hpp"

namespace plinth {

ReflectionPrivateTag const ReflectionPrivateTag::PUBLIC_ACCESS;
ReflectionPrivateTag const ReflectionPrivateTag::IN_MEMORY_ONLY;
ReflectionPrivateTag const ReflectionPrivateTag::NO_PROXY_RESOLVE;

namespace {

[[noreturn]] void reportNoSuchProperty(ModelElementImpl const& element, meta::Property const& property) {
  reportException(messages::NoSuchProperty(property.isEmpty() ? u"" : property->getName(),
                                           element.getMetaClass()->getQualifiedName()));
}

ModelImpl& requireModel(Model const& model) {
  if (model.isEmpty()) reportException(messages::CannotCreateWithoutModel());
  return *model.impl();
}

}  // namespace

meta::Class const& ModelElement::metaClass() { return meta::MetaRegistry::getInstance().modelElementClass(); }

ModelElementImpl::ModelElementImpl(Model const& model, boost::uuids::uuid const& uuid)
    : ModelElementImpl(requireModel(model), uuid) {}

ModelElementImpl::ModelElementImpl(ModelImpl& model, boost::uuids::uuid const& uuid)
    : ElementImpl(&model, uuid.is_nil() ? generateNewUuid() : uuid) {
  detail::LiveObjects::addElement();
}

ModelElementImpl::~ModelElementImpl() {
  if (isProxy()) m_model->m_proxyIds.erase(this);
  detail::LiveObjects::removeElement();
}

void ModelElementImpl::bury() noexcept {
  // Not announced any more: nothing below keeps old values, or is a step of the model.
  m_state = DESTROYED | TEARING_DOWN;
  invalidate();
  basicDisassociateAll();
  m_container = nullptr;
  m_containmentProperty = nullptr;
  m_state = DESTROYED;
  removeRef();
}

Model ModelElementImpl::getModel() const noexcept {
  // A dead element may have outlived its model; its pointer is good for comparison only.
  return (m_state & DESTROYED) != 0 ? Model() : Model(m_model);
}

bool ModelElementImpl::hasPropertyValue(meta::Property const& property, ReflectionPrivateTag const&) const {
  reportNoSuchProperty(*this, property);
}

Value ModelElementImpl::getPropertyValue(meta::Property const& property, ReflectionPrivateTag const&) const {
  reportNoSuchProperty(*this, property);
}

void ModelElementImpl::setPropertyValue(meta::Property const& property, Value const&, ReflectionPrivateTag const&) {
  reportNoSuchProperty(*this, property);
}

bool ModelElementImpl::hasPropertyValue(meta::Property const& property) const {
  return hasPropertyValue(property, ReflectionPrivateTag::PUBLIC_ACCESS);
}

Value ModelElementImpl::getPropertyValue(meta::Property const& property) const {
  return getPropertyValue(property, ReflectionPrivateTag::PUBLIC_ACCESS);
}

void ModelElementImpl::setPropertyValue(meta::Property const& property, Value const& value) {
  setPropertyValue(property, value, ReflectionPrivateTag::PUBLIC_ACCESS);
}

Value ModelElementImpl::invoke(meta::Operation const& operation, std::vector<Value> const&,
                               ReflectionPrivateTag const&) {
  reportException(
      messages::NoSuchProperty(operation.isEmpty() ? u"" : operation->getName(), getMetaClass()->getQualifiedName()));
}

meta::Property ModelElementImpl::getPropertyByIndex(unsigned long) const { return {}; }

std::u16string ModelElementImpl::identifier() const {
  std::string const text = boost::uuids::to_string(m_uuid);
  return {text.begin(), text.end()};
}

void ModelElementImpl::destroy() { Teardown::destroy(*this); }

void ModelElementImpl::destroyRecursively(bool flag1, bool detach, bool flag2) {
  Teardown::destroyContained(*this, flag1, detach, flag2);
}

void ModelElementImpl::doDestroy(bool, bool) {}
void ModelElementImpl::notifyDestroying() {}
void ModelElementImpl::aboutToDestroy() {}
void ModelElementImpl::didCreate() {}
void ModelElementImpl::disassociateIncoming() {}
void ModelElementImpl::basicDisassociateAll() {}
void ModelElementImpl::invalidate() {}

void ModelElementImpl::notifyCreated() {
  m_model->announce(*this);
  didCreate();
}

void ModelElementImpl::inverseAdd(ModelElementImpl&, meta::PropertyImpl& property) {
  reportNoSuchProperty(*this, meta::Property(&property));
}

void ModelElementImpl::inverseRemove(ModelElementImpl&, meta::PropertyImpl& property) {
  reportNoSuchProperty(*this, meta::Property(&property));
}

bool ModelElementImpl::inverseContainsProxyTo(ModelElementImpl&, meta::PropertyImpl&) const { return false; }
void ModelElementImpl::convertReferencesToProxies(bool, boost::optional<ProxyId>&) {}
void ModelElementImpl::convertToProxy(meta::PropertyImpl&, ProxyId const&, ModelElementImpl&) {}
void ModelElementImpl::collectContained(std::vector<ModelElementImpl*>&) const {}
ReferenceCollection* ModelElementImpl::referenceCollection(meta::PropertyImpl const&) const { return nullptr; }

boost::optional<ProxyId> ModelElementImpl::getProxyId() const {
  ProxyId const* const id = isProxy() ? m_model->proxyId(*this) : nullptr;
  return id == nullptr ? boost::optional<ProxyId>() : *id;
}

ProxyId ModelElementImpl::getPersistentProxyId(bool local) const {
  ProxyId id{getMetaClass()->getQualifiedName(), ModelElementImpl::identifier(), boost::none};
  // A dead element may have outlived its model.
  if (!local && (m_state & DESTROYED) == 0 && !m_model->name().empty()) id.model = m_model->name();
  return id;
}

ModelElement ModelElementImpl::container() const noexcept { return ModelElement(m_container); }

meta::Property ModelElementImpl::containmentFeature() const noexcept { return meta::Property(m_containmentProperty); }

void ModelElementImpl::basicSetContainer(ModelElementImpl* container, meta::PropertyImpl* property, unsigned long) {
  if (m_container == container && m_containmentProperty == property) return;
  if (container != nullptr) container->requireReal();
  notifyModifying(0);
  m_container = container;
  m_containmentProperty = property;
  if (container != nullptr) container->m_state |= HAS_CONTAINED;
}

void ModelElementImpl::notifyModifying(unsigned long index) {
  if (needsNoOldValues()) return;
  if (m_record != nullptr && m_record->m_level == m_model->level() && m_record->isChanged(index)) return;
  recordOldValue(index);
}

void ModelElementImpl::notifyJournaling(unsigned long index) {
  if (needsNoOldValues()) return;
  for (Storage const* record = m_record; record != nullptr; record = record->m_outer) {
    if (record->isChanged(index)) return;
  }
  recordOldValue(index);
}

void ModelElementImpl::recordOldValue(unsigned long index) {
  if (m_model->level() == 0) reportException(messages::CannotModifyOutsideTransaction());
  if (m_record != nullptr && m_record->m_level == m_model->level()) {
    copyValue(m_record, index);
    m_record->setBit(index);
    return;
  }
  failurePoint("record-old-value");
  m_model->m_log.reserve();
  std::unique_ptr<Storage> record(createStorage());
  copyValue(record.get(), index);
  record->setBit(index);
  record->m_element = this;
  record->m_outer = m_record;
  record->m_level = m_model->level();
  m_record = record.release();
  m_model->m_log.recordMade(*this);
}

void ModelElementImpl::copyValue(Storage* storage, unsigned long index) const {
  if (index != 0) return;
  storage->m_oldContainer = container();
  storage->m_oldContainmentProperty = m_containmentProperty;
}

void ModelElementImpl::copyStateFromStorage(Storage* storage) {
  if (!storage->isChanged(0)) return;
  m_container = storage->m_oldContainer.impl();
  m_containmentProperty = storage->m_oldContainmentProperty;
}

void ModelElementImpl::checkCompatibleModel(ModelElementImpl* target, meta::PropertyImpl const& property) const {
  if (target == nullptr) return;
  if ((target->m_state & DESTROYED) != 0) reportException(messages::CannotAddNonExistentObject());
  if (target->m_model != m_model) reportException(messages::CannotCreateCrossModelAssociation());
  if (target->isProxy() && property.isComposite() && !m_model->proxyId(*target)->isLocal()) {
    reportException(messages::CannotCreateCrossModelAssociation());
  }
  if (property.isComposite() && liesIn(*target)) reportException(messages::CannotContainAncestor());
}

bool ModelElementImpl::mayReplaceProxy(ModelElementImpl const& found, meta::PropertyImpl const& property) const {
  auto const* const type = static_cast<meta::ClassImpl const*>(property.type());
  if (!found.isLive() || found.isProxy() || !found.getMetaClass()->conformsTo(*type)) return false;
  if ((m_state & DESTROYED) != 0) return false;  // a loader has destroyed it
  if (found.m_model != m_model) return !property.isComposite() && !found.mayBeTakenBack(property.opposite());
  if (!property.isComposite()) return true;
  if (m_model->isFrozen() || liesIn(found)) return false;
  bool const liesHere = found.m_container == this && found.m_containmentProperty == &property;
  return found.m_container == nullptr || liesHere || property.qualifiedBy() != nullptr;
}

void ModelElementImpl::leaveLater(ReferenceCollection& collection) {
  m_model->m_leaving.push_back({ModelElement(collection.owner()), &collection, ModelElement(this)});
}

bool ModelElementImpl::mayBeTakenBack(meta::PropertyImpl const* end) const noexcept {
  if (isProvisional()) return true;
  if (end == nullptr) return false;
  for (Storage const* record = m_record; record != nullptr; record = record->m_outer) {
    if (record->isChanged(static_cast<unsigned long>(end->index()))) return true;
  }
  return false;
}

bool ModelElementImpl::liesIn(ModelElementImpl const& candidate) const noexcept {
  if (this == &candidate) return true;
  if ((candidate.m_state & HAS_CONTAINED) == 0) return false;  // nothing lies in an element that never held any
  for (ModelElementImpl const* above = m_container; above != nullptr; above = above->m_container) {
    if (above == &candidate) return true;
  }
  return false;
}

void ModelElementImpl::reportRefusal() const {
  if (isProxy()) reportException(messages::CannotModifyProxy());
  reportException(messages::CannotModifyDestroyedElement());
}

void ModelElementImpl::_setContainedByThis(ModelElementImpl* child, meta::PropertyImpl& property) {
  if (child->isProxy()) return;
  ModelElementImpl* const old = child->m_container;
  if (old == this && child->m_containmentProperty == &property) return;
  if (old != nullptr) old->inverseRemove(*child, *child->m_containmentProperty);
  child->basicSetContainer(this, &property, NO_INDEX);
}

void ModelElementImpl::_basicSetUncontained(ModelElementImpl* child) {
  child->basicSetContainer(nullptr, nullptr, NO_INDEX);
}

void ModelElementImpl::_inverseAddThis(ModelElementImpl* target, meta::PropertyImpl& property, bool) {
  if (target == nullptr || target->isProxy()) return;
  reach(*target);
  target->inverseAdd(*this, property);
}

void ModelElementImpl::_inverseRemoveThis(ModelElementImpl* target, meta::PropertyImpl& property) {
  if (target == nullptr) return;
  ModelElement const far = _farEnd(ModelElement(target), property);
  if (far.isEmpty()) return;
  reach(*far);
  far->inverseRemove(*this, property);
}

bool ModelElementImpl::_inverseContainsThis(ModelElementImpl* target, meta::PropertyImpl& property) const {
  return target != nullptr && target->inverseContainsProxyTo(*const_cast<ModelElementImpl*>(this), property);
}

ModelElement ModelElementImpl::_farEnd(ModelElement const& member, meta::PropertyImpl& opposite) const {
  if (member.isEmpty() || !member->isProxy()) return member;
  ModelElement const named = m_model->peekResolveProxy(this, member);
  return !named->isProxy() && _inverseContainsThis(named.impl(), opposite) ? named : ModelElement();
}

void ModelElementImpl::_convertToProxy(ModelElementImpl* target, meta::PropertyImpl& property, ProxyId const& id) {
  if (target == nullptr || target->isProxy()) return;
  reach(*target);
  target->convertToProxy(property, id, *this);
}

void ModelElementImpl::reach(ModelElementImpl const& far) const {
  // A dead one may have outlived its model.
  if (far.m_model != m_model && far.isLive()) m_model->m_ties.takeAlong(*far.m_model);
}

void ModelElementImpl::_basicAdd(ReferenceCollection* collection, ModelElement const& element) {
  collection->basicAdd(element);
}

void ModelElementImpl::_basicRemove(ReferenceCollection* collection, ModelElement const& element) {
  collection->basicRemove(element);
}

void ModelElementImpl::_basicRemoveAll(ReferenceCollection* collection, std::vector<ModelElement> const& members) {
  collection->basicRemoveAll(members);
}

void ModelElementImpl::_basicClear(ReferenceCollection* collection) { collection->basicClear(); }

void ModelElementImpl::_basicCopyValues(ReferenceCollection* to, ReferenceCollection const* from) {
  to->basicCopyValues(from);
}

bool ModelElementImpl::_basicContainsProxyTo(ReferenceCollection* collection, ModelElementImpl& element) {
  return collection->basicContainsProxyTo(element);
}

}  // namespace plinth
