// Sets of elements, without their element type. The order of iteration is that of the hash table.
// Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include <unordered_set>

#include "plinth/Hashing.hpp"
#include "plinth/collections/ReferenceAssociative.hpp"

namespace plinth {

class TESSEL_EXPORT ReferenceSet : public ReferenceAssociative {
 public:
  using Container = std::unordered_set<ModelElement>;

  /// Real members only.
  std::size_t size() const noexcept { return m_elements.size(); }
  bool empty() const noexcept override { return m_elements.empty(); }
  Container const& raw() const noexcept { return m_elements; }
  void reserve(std::size_t count) { m_elements.reserve(count); }

  /// Adds; an empty handle or a member is ignored, a proxy goes to the proxies. Raises what checkCompatibleModel
  /// raises.
  void addElement(ModelElement const& element);
  bool containsElement(ModelElement const& element) const { return holds(element); }

  void forEachReal(std::function<void(ModelElementImpl&)> const& visit) const override;
  void genericAdd(ModelElement const& element) override;
  void basicAdd(ModelElement const& element) override;
  void basicRemove(ModelElement const& element) override;
  void basicClear() override;
  void basicCopyValues(ReferenceCollection const* other) override;

  std::size_t oldSize() const override;
  std::size_t rawSize() const override { return m_elements.size(); }
  std::unique_ptr<AbstractOwnedCollection> oldContents() const override;
  std::unique_ptr<AbstractOwnedCollection> detachedCopy() const override;

 protected:
  using ReferenceAssociative::ReferenceAssociative;
  virtual std::unique_ptr<ReferenceSet> makeDetached() const = 0;
  std::unique_ptr<CollectionJournal> makeJournal() override;
  bool holds(ModelElement const& element) const override { return m_elements.count(element) != 0; }
  bool resolveAdd(ModelElement const& element) override;
  void removeElement(ModelElement const& element) override;
  void resetElements(CollectionJournal* journal) override;

 private:
  using Journal = detail::AssociativeJournalOf<Container>;
  bool insertRaw(ModelElement const& element, CollectionJournal* journal);
  void eraseRaw(Container::const_iterator at, CollectionJournal* journal);
  Container m_elements;
};

}  // namespace plinth
