// Sequences of elements, without their element type: everything that a sequence does. Proxies stand in their place
// among the real elements. Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include <vector>

#include "plinth/ReferenceCollection.hpp"
#include "plinth/collections/SaturatedBloomFilter.hpp"
#include "plinth/collections/SequenceJournal.hpp"

namespace plinth {

class TESSEL_EXPORT ReferenceSequence : public ReferenceCollection {
 public:
  using Container = std::vector<ModelElement>;
  /// The position that stands for none.
  static constexpr std::size_t ABSENT = ~std::size_t{0};

  bool isUnique() const noexcept { return m_unique; }
  /// The number of slots, proxies included.
  std::size_t size() const noexcept { return m_elements.size(); }
  bool empty() const noexcept override { return m_elements.empty(); }
  void reserve(std::size_t count) { m_elements.reserve(count); }
  /// The slots as they stand.
  std::vector<ModelElement> const& raw() const noexcept { return m_elements; }

  /// Appends; an empty handle, or an element that a unique sequence has, is ignored. Whether it was added. Raises what
  /// checkCompatibleModel raises. O(1), and where the sequence is unique what contains() costs.
  bool addElement(ModelElement const& element);
  /// Inserts before the position and gives the element's position: in a unique sequence the one that it has already,
  /// for which the search is linear.
  std::size_t insertElement(std::size_t position, ModelElement const& element);
  /// Removes the first occurrence; whether there was one. Linear.
  bool removeElement(ModelElement const& element);
  /// Removes the slots from `first` to before `last` in one step, and gives the position behind them. Linear.
  std::size_t eraseRange(std::size_t first, std::size_t last);
  std::size_t eraseAt(std::size_t position) { return eraseRange(position, position + 1); }
  /// Puts the element into a slot. Raises CannotAddNonExistentObject for an empty handle, CannotAddSecondObject when a
  /// unique sequence holds the element in another slot.
  void replaceAt(std::size_t position, ModelElement const& element);
  /// Inserts the element, or, where the sequence is unique and holds it already, swaps it into the slot. Raises as
  /// insertElement does.
  void ensureAt(std::size_t position, ModelElement const& element);
  /// The slot's element; a proxy is resolved first if it can be.
  ModelElement const& resolveAt(std::size_t position);
  /// Whether the element is in the sequence; false for proxies. O(1) where the opposite is single valued, else linear.
  bool containsElement(ModelElement const& element) const;
  /// The first position of the element, or size(). Linear.
  std::size_t positionOf(ModelElement const& element) const;
  /// The first position of a proxy that stands for this element of another model, or size().
  std::size_t positionOfProxyFor(ModelElement const& element) const;

  /// Gives the sequence a filter that makes `contains` fast for elements that are not in it.
  void useFilter(std::unique_ptr<SaturatedBloomFilter> filter);

  std::vector<ModelElement> getAllValues() override;
  std::vector<ModelElement> getAllValuesAndProxies() const override { return m_elements; }
  void forEachReal(ElementVisitor visit) const override;
  void genericAdd(ModelElement const& element) override;
  void genericRemove(ModelElement const& element) override;
  bool genericContains(ModelElement const& element) const override;
  void clear() override;
  void replaceProxy(ModelElement const& element) override;
  void replaceProxyAt(ModelElement const& element, std::size_t position);
  void resolveAll() override;
  void resolveLocal() override;
  void convertToProxy(ModelElementImpl& element, ModelElement const& proxy) override;

  std::size_t oldSize() const override;
  std::size_t rawSize() const override { return m_elements.size(); }
  std::unique_ptr<AbstractOwnedCollection> oldContents() const override;
  std::unique_ptr<AbstractOwnedCollection> copyContents() const override;

 protected:
  ReferenceSequence(ModelElementImpl* owner, meta::PropertyImpl* property, meta::PropertyImpl* opposite) noexcept;
  virtual std::unique_ptr<ReferenceSequence> makeDetached() const = 0;
  std::unique_ptr<GenericCollectionInterface> makeGenericInterface() override;
  std::unique_ptr<CollectionJournal> makeJournal() override;
  void basicAdd(ModelElement const& element) override;
  /// An element that is ending leaves together with the others that are; see basicRemoveAll.
  void basicRemove(ModelElement const& element) override;
  void basicRemoveAll(std::vector<ModelElement> const& members) override;
  void basicClear() override;
  void basicCopyValues(ReferenceCollection const* other) override;
  bool basicContainsProxyTo(ModelElementImpl& target) override;

 private:
  class Journal;
  Journal* recordingJournal();
  class Members;
  bool resolveSlot(std::size_t position, Members* members = nullptr);
  void resolveSlots(bool localOnly);
  bool takePlaceOfProxy(std::size_t position, ModelElement real, Members* members = nullptr);
  void removeNow(ModelElement const& element);
  std::size_t findResolving(ModelElement const& element);
  /// Whether the element may be added and is not there already. Raises what checkCompatibleModel raises.
  bool takes(ModelElement const& element) const;
  void insertNew(std::size_t position, ModelElement const& element);
  void inverseBeforeErasing(std::size_t first, std::size_t last);
  void insertRaw(std::size_t position, ModelElement const& element, Journal* journal);
  void eraseRaw(std::size_t first, std::size_t last, Journal* journal);
  void noteRepetition(ModelElement const& element) noexcept;
  void addToFilter(ModelElement const& element) noexcept;
  void removeFromFilter(ModelElement const& element) noexcept;
  void refillFilter() noexcept;

  std::vector<ModelElement> m_elements;
  std::unique_ptr<SaturatedBloomFilter> m_filter;
  bool m_unique;
  bool m_repeats = false;     ///< a contained element may stand in more than one slot
  std::uint32_t m_edits = 0;  ///< counts the changes of m_elements, for whoever keeps what it has seen there
};

}  // namespace plinth
