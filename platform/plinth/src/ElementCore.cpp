#include "plinth/ElementCore.hpp"

#include "ModelState.hpp"
#include "RecordAccess.hpp"
#include "Teardown.hpp"
#include "plinth/FailurePoint.hpp"
#include "plinth/Messages.hpp"
#include "plinth/ReferenceCollection.hpp"
#include "plinth/meta/Type.hpp"

namespace plinth::internal {
namespace {

[[noreturn]] void reportNoSuchProperty(ModelElementImpl const& element, meta::PropertyImpl const& property) {
  reportException(messages::NoSuchProperty(property.getName(), element.getMetaClass()->getQualifiedName()));
}

}  // namespace

ElementCore::ElementCore(ModelImpl& model, boost::uuids::uuid const& uuid) : ElementImpl(&model, uuid) {}

ElementCore::~ElementCore() = default;

RecordPool& ElementCore::recordPool() const noexcept { return stateOf(*m_model).pool; }

void ElementCore::bury() noexcept {
  // Not announced any more: nothing below keeps old values, or is a step of the model.
  m_state = DESTROYED | TEARING_DOWN;
  invalidate();
  basicDisassociateAll();
  m_container = nullptr;
  m_containmentProperty = nullptr;
  m_state = DESTROYED;
  removeRef();
}

void ElementCore::destroyRecursively(bool flag1, bool detach, bool flag2) {
  Teardown::destroyContained(self(), flag1, detach, flag2);
}

void ElementCore::doDestroy(bool, bool) {}
void ElementCore::notifyDestroying() {}
void ElementCore::aboutToDestroy() {}
void ElementCore::didCreate() {}
void ElementCore::disassociateIncoming() {}
void ElementCore::basicDisassociateAll() {}
void ElementCore::invalidate() {}

void ElementCore::notifyCreated() {
  stateOf(*m_model).announce(*this);
  didCreate();
}

void ElementCore::inverseAdd(ModelElementImpl&, meta::PropertyImpl& property) {
  reportNoSuchProperty(self(), property);
}

void ElementCore::inverseRemove(ModelElementImpl&, meta::PropertyImpl& property) {
  reportNoSuchProperty(self(), property);
}

bool ElementCore::inverseContainsProxyTo(ModelElementImpl&, meta::PropertyImpl&) const { return false; }

void ElementCore::convertReferencesToProxies(bool, boost::optional<ProxyId>&) {}
void ElementCore::convertToProxy(meta::PropertyImpl&, ProxyId const&, ModelElementImpl&) {}
void ElementCore::collectContained(std::vector<ModelElementImpl*>&) const {}

ProxyId ElementCore::_getPersistentProxyId() const { return self().getPersistentProxyId(false); }

ReferenceCollection* ElementCore::referenceCollection(meta::PropertyImpl const&) const { return nullptr; }

void ElementCore::basicSetContainer(ModelElementImpl* container, meta::PropertyImpl* property, unsigned long) {
  if (m_container == container && m_containmentProperty == property) return;
  if (container != nullptr) core(*container).requireReal();
  notifyModifying(0);
  m_container = container;
  m_containmentProperty = property;
  if (container != nullptr) core(*container).m_state |= HAS_CONTAINED;
}

void ElementCore::notifyModifying(unsigned long index) {
  if (needsNoOldValues()) return;
  if (m_record != nullptr && RecordAccess::level(*m_record) == m_model->level() && m_record->isChanged(index)) return;
  recordOldValue(index);
}

void ElementCore::notifyJournaling(unsigned long index) {
  if (needsNoOldValues()) return;
  for (Storage const* record = m_record; record != nullptr; record = RecordAccess::outer(*record)) {
    if (record->isChanged(index)) return;
  }
  recordOldValue(index);
}

void ElementCore::recordOldValue(unsigned long index) {
  if (m_model->level() == 0) reportException(messages::CannotModifyOutsideTransaction());
  if (m_record != nullptr && RecordAccess::level(*m_record) == m_model->level()) {
    copyValue(m_record, index);
    m_record->setBit(index);
    return;
  }
  failurePoint("record-old-value");
  stateOf(*m_model).log.reserve();
  std::unique_ptr<Storage> record(createStorage());
  copyValue(record.get(), index);
  record->setBit(index);
  RecordAccess::element(*record) = &self();
  RecordAccess::outer(*record) = m_record;
  RecordAccess::level(*record) = m_model->level();
  m_record = record.release();
  stateOf(*m_model).log.recordMade(self());
}

void ElementCore::copyValue(Storage* storage, unsigned long index) const {
  if (index != 0) return;
  RecordAccess::oldContainer(*storage) = ModelElement(m_container);
  RecordAccess::oldContainmentProperty(*storage) = m_containmentProperty;
}

void ElementCore::copyStateFromStorage(Storage* storage) {
  if (!storage->isChanged(0)) return;
  m_container = RecordAccess::oldContainer(*storage).impl();
  m_containmentProperty = RecordAccess::oldContainmentProperty(*storage);
}

void ElementCore::checkCompatibleModel(ModelElementImpl* target, meta::PropertyImpl const& property) const {
  if (target == nullptr) return;
  ElementCore const& other = core(*target);
  if ((other.m_state & DESTROYED) != 0) reportException(messages::CannotAddNonExistentObject());
  if (other.m_model != m_model) reportException(messages::CannotCreateCrossModelAssociation());
  if (target->isProxy() && property.isComposite() && !m_model->proxyId(*target)->isLocal()) {
    reportException(messages::CannotCreateCrossModelAssociation());
  }
  if (property.isComposite() && liesIn(other)) reportException(messages::CannotContainAncestor());
}

bool ElementCore::mayReplaceProxy(ModelElementImpl const& found, meta::PropertyImpl const& property) const {
  auto const* const type = static_cast<meta::ClassImpl const*>(property.type());
  ElementCore const& other = core(found);
  if (!found.isLive() || found.isProxy() || !found.getMetaClass()->conformsTo(*type)) return false;
  if ((m_state & DESTROYED) != 0) return false;  // a loader has destroyed it
  if (other.m_model != m_model) return !property.isComposite() && !other.mayBeTakenBack(property.opposite());
  if (!property.isComposite()) return true;
  if (m_model->isFrozen() || liesIn(other)) return false;
  bool const liesHere = other.m_container == &self() && other.m_containmentProperty == &property;
  return other.m_container == nullptr || liesHere || property.qualifiedBy() != nullptr;
}

void ElementCore::leaveLater(ReferenceCollection& collection) {
  stateOf(*m_model).leaving.push_back({ModelElement(collection.owner()), &collection, ModelElement(&self())});
}

bool ElementCore::mayBeTakenBack(meta::PropertyImpl const* end) const noexcept {
  if (isProvisional()) return true;
  if (end == nullptr) return false;
  for (Storage const* record = m_record; record != nullptr; record = RecordAccess::outer(*record)) {
    if (record->isChanged(static_cast<unsigned long>(end->index()))) return true;
  }
  return false;
}

bool ElementCore::liesIn(ElementCore const& candidate) const noexcept {
  if (this == &candidate) return true;
  if ((candidate.m_state & HAS_CONTAINED) == 0) return false;  // nothing lies in an element that never held any
  for (ModelElementImpl const* above = m_container; above != nullptr; above = core(*above).m_container) {
    if (above == &candidate.self()) return true;
  }
  return false;
}

void ElementCore::reportRefusal() const {
  if ((m_state & PROXY) != 0) reportException(messages::CannotModifyProxy());
  reportException(messages::CannotModifyDestroyedElement());
}

void ElementCore::_setContainedByThis(ModelElementImpl* child, meta::PropertyImpl& property) {
  if (child->isProxy()) return;
  ElementCore& link = core(*child);
  ModelElementImpl* const old = link.m_container;
  if (old == &self() && link.m_containmentProperty == &property) return;
  if (old != nullptr) core(*old).inverseRemove(*child, *link.m_containmentProperty);
  link.basicSetContainer(&self(), &property, NO_INDEX);
}

void ElementCore::_basicSetUncontained(ModelElementImpl* child) {
  core(*child).basicSetContainer(nullptr, nullptr, NO_INDEX);
}

void ElementCore::_inverseAddThis(ModelElementImpl* target, meta::PropertyImpl& property, bool) {
  if (target == nullptr || target->isProxy()) return;
  reach(core(*target));
  core(*target).inverseAdd(self(), property);
}

void ElementCore::_inverseRemoveThis(ModelElementImpl* target, meta::PropertyImpl& property) {
  if (target == nullptr) return;
  ModelElement const far = _farEnd(ModelElement(target), property);
  if (far.isEmpty()) return;
  reach(core(*far));
  core(*far).inverseRemove(self(), property);
}

bool ElementCore::_inverseContainsThis(ModelElementImpl* target, meta::PropertyImpl& property) const {
  return target != nullptr && core(*target).inverseContainsProxyTo(const_cast<ElementCore*>(this)->self(), property);
}

ModelElement ElementCore::_farEnd(ModelElement const& member, meta::PropertyImpl& opposite) const {
  if (member.isEmpty() || !member->isProxy()) return member;
  ModelElement const named = m_model->peekResolveProxy(&self(), member);
  return !named->isProxy() && _inverseContainsThis(named.impl(), opposite) ? named : ModelElement();
}

void ElementCore::_convertToProxy(ModelElementImpl* target, meta::PropertyImpl& property, ProxyId const& id) {
  if (target == nullptr || target->isProxy()) return;
  reach(core(*target));
  core(*target).convertToProxy(property, id, self());
}

void ElementCore::reach(ElementCore const& far) const {
  // A dead one may have outlived its model.
  if (far.m_model != m_model && far.isLive()) stateOf(*m_model).ties.takeAlong(stateOf(*far.m_model));
}

void ElementCore::_basicAdd(ReferenceCollection* collection, ModelElement const& element) {
  collection->basicAdd(element);
}

void ElementCore::_basicRemove(ReferenceCollection* collection, ModelElement const& element) {
  collection->basicRemove(element);
}

void ElementCore::_basicRemoveAll(ReferenceCollection* collection, std::vector<ModelElement> const& members) {
  collection->basicRemoveAll(members);
}

void ElementCore::_basicClear(ReferenceCollection* collection) { collection->basicClear(); }

void ElementCore::_basicCopyValues(ReferenceCollection* to, ReferenceCollection const* from) {
  to->basicCopyValues(from);
}

bool ElementCore::_basicContainsProxyTo(ReferenceCollection* collection, ModelElementImpl& element) {
  return collection->basicContainsProxyTo(element);
}

}  // namespace plinth::internal
