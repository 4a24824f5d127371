#include "plinth/ReferenceCollection.hpp"

#include "plinth/Messages.hpp"

namespace plinth {

GenericCollectionInterface::~GenericCollectionInterface() = default;

void GenericCollectionInterface::genericEnsureAt(ModelElement const& element, std::uint32_t) { genericAdd(element); }

ReferenceCollection::~ReferenceCollection() = default;

void ReferenceCollection::checkCompatibleModel(ModelElementImpl* element) const {
  if (owner() != nullptr) internal::core(*owner()).checkCompatibleModel(element, *property());
}

ModelElement ReferenceCollection::resolveProxy(ModelElement const& proxy) const {
  return owner() == nullptr ? proxy : owner()->model().resolveProxy(owner(), proxy);
}

ModelElement ReferenceCollection::peekResolveProxy(ModelElement const& proxy) const {
  return owner() == nullptr ? proxy : owner()->model().peekResolveProxy(owner(), proxy);
}

GenericCollectionInterface* ReferenceCollection::getGenericInterface() {
  if (m_generic == nullptr) m_generic = makeGenericInterface();
  return m_generic.get();
}

bool ReferenceCollection::fits(ModelElement const& element) const {
  return element && element->getMetaClass()->conformsTo(*getCollectionType().impl());
}

void ReferenceCollection::requireExisting(ModelElement const& element) {
  if (!element.isEmpty() && !element) reportException(messages::CannotAddNonExistentObject());
}

void ReferenceCollection::requireFitting(ModelElement const& element) const {
  if (fits(element)) return;
  reportException(messages::CannotAddIncompatibleTypes(getCollectionType()->getQualifiedName(),
                                                       element->getMetaClass()->getQualifiedName()));
}

void ReferenceCollection::inverseAfterAdding(ModelElementImpl& element) {
  if (owner() == nullptr) return;
  if (opposite() != nullptr) {
    internal::core(*owner())._inverseAddThis(&element, *opposite(), false);
  } else if (isComposite()) {
    internal::core(*owner())._setContainedByThis(&element, *property());
  }
}

void ReferenceCollection::inverseBeforeRemoving(ModelElementImpl& element) {
  if (owner() == nullptr || !element.isLive()) return;
  if (opposite() != nullptr) {
    internal::core(*owner())._inverseRemoveThis(&element, *opposite());
  } else if (isComposite() && !element.isProxy()) {
    internal::core(element).basicSetContainer(nullptr, nullptr, internal::ElementCore::NO_INDEX);
  }
}

void ReferenceCollection::basicRemoveAll(std::vector<ModelElement> const& members) {
  for (ModelElement const& member : members) basicRemove(member);
}

bool ReferenceCollection::mayTakePlace(ModelElement const& element) const {
  return owner() != nullptr && !element.isEmpty() && internal::core(*owner()).mayReplaceProxy(*element, *property());
}

bool ReferenceCollection::isConfirmed(ModelElement const& found) const {
  return mayTakePlace(found) && (opposite() == nullptr || isComposite() || listsOwner(*found));
}

bool ReferenceCollection::listsOwner(ModelElementImpl& element) const {
  return opposite() != nullptr && internal::core(*owner())._inverseContainsThis(&element, *opposite());
}

bool ReferenceCollection::hasSameMembers(ReferenceCollection const& other) const {
  return getAllValuesAndProxies() == other.getAllValuesAndProxies();
}

}  // namespace plinth
