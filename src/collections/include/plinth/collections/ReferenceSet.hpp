// Sets of elements, without their element type. The order of iteration is that of the hash table: it is no part of the
// state. A change, and taking a change back, may leave the same members in another order; who needs an order sorts what
// the set gives.
// Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include <unordered_set>

#include "plinth/Hashing.hpp"
#include "plinth/collections/ReferenceAssociativeContainer.hpp"

namespace plinth {

using SetContainer = std::unordered_set<ModelElement>;
extern template class TESSEL_EXPORT ReferenceAssociativeContainer<SetContainer>;

class TESSEL_EXPORT ReferenceSet : public ReferenceAssociativeContainer<SetContainer> {
 public:
  void reserve(std::size_t count) { elements().reserve(count); }

  /// Adds; an empty handle or a member is ignored, a proxy goes to the proxies. Whether either was added. Raises what
  /// checkCompatibleModel raises.
  bool addElement(ModelElement const& element);
  bool containsElement(ModelElement const& element) const { return holds(element); }
  void genericAdd(ModelElement const& element) override;

 protected:
  using ReferenceAssociativeContainer::ReferenceAssociativeContainer;
  Position locate(ModelElement const& element) const override { return raw().find(element); }
  bool insertRaw(ModelElement const& element, CollectionJournal* journal) override;
};

}  // namespace plinth
