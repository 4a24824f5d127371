// Maps of elements by a key that the element itself bears, without their element type. The order is that of the keys'
// code units. Each key has one element at most. Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <string_view>

#include "plinth/collections/ReferenceAssociative.hpp"

namespace plinth {

/// What an insert does when another element bears the key.
enum class CollisionResolution : int {
  RAISE = 0,    ///< raises UniquenessConstraint
  KEEP = 1,     ///< keeps the element that is there
  REPLACE = 2,  ///< replaces it
};

/// Reads the key of an element.
using KeyExtractor = std::u16string const& (*)(ModelElementImpl const& element);

/// The order of the keys' code units; compares four at a time, since keys often begin alike.
struct CodeUnitOrder {
  using is_transparent = void;
  bool operator()(std::u16string_view left, std::u16string_view right) const noexcept {
    std::size_t const common = std::min(left.size(), right.size());
    std::size_t i = 0;
    for (std::uint64_t l = 0, r = 0; i + 4 <= common; i += 4) {
      std::memcpy(&l, left.data() + i, sizeof l);
      std::memcpy(&r, right.data() + i, sizeof r);
      if (l != r) break;
    }
    while (i < common && left[i] == right[i]) ++i;
    return i < common ? left[i] < right[i] : left.size() < right.size();
  }
};

class TESSEL_EXPORT ReferenceMap : public ReferenceAssociative {
 public:
  using Container = std::map<std::u16string, ModelElement, CodeUnitOrder>;

  std::size_t size() const noexcept { return m_elements.size(); }
  bool empty() const noexcept override { return m_elements.empty(); }
  Container const& raw() const noexcept { return m_elements; }

  /// Puts the element in under its key. An empty handle, or an element that is in, is ignored; a proxy goes to the
  /// proxies. Raises what checkCompatibleModel raises, and UniquenessConstraint. Logarithmic.
  void insertElement(ModelElement const& element, CollisionResolution resolution = CollisionResolution::RAISE);
  /// The element of that key, or an empty handle. Logarithmic.
  ModelElement findElement(std::u16string_view key) const;
  std::vector<std::u16string> keys() const;
  /// The keys in order, each a `String` value. Linear.
  std::vector<Value> getAllKeys() const;
  /// The type of the property that qualifies; `String` for a map of no property.
  meta::Type getQualifierType() const;
  std::u16string const& keyOf(ModelElementImpl const& element) const;

  bool hasSameMembers(ReferenceCollection const& other) const override;
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
  ReferenceMap(KeyExtractor keyExtractor, ModelElementImpl* owner, meta::PropertyImpl* property,
               meta::PropertyImpl* opposite) noexcept
      : ReferenceAssociative(owner, property, opposite), m_keyExtractor(keyExtractor) {}
  KeyExtractor keyExtractor() const noexcept { return m_keyExtractor; }
  virtual std::unique_ptr<ReferenceMap> makeDetached() const = 0;
  std::unique_ptr<GenericCollectionInterface> makeGenericInterface() override;
  std::unique_ptr<CollectionJournal> makeJournal() override;
  bool holds(ModelElement const& element) const override;
  bool resolveAdd(ModelElement const& element) override;
  void removeElement(ModelElement const& element) override;
  void resetElements(CollectionJournal* journal) override;

 private:
  using Journal = detail::AssociativeJournalOf<Container>;
  Container::const_iterator locate(ModelElement const& element) const;
  bool insertRaw(Container::const_iterator hint, ModelElement const& element, CollectionJournal* journal);
  void eraseRaw(Container::const_iterator at, CollectionJournal* journal);
  void replaceEntry(Container::const_iterator at, ModelElement const& element);

  Container m_elements;
  KeyExtractor m_keyExtractor;
};

}  // namespace plinth
