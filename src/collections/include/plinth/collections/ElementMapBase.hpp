// Maps of elements by a key that the element itself bears, without their element type. The order is that of the keys'
// code units. Each key has one element at most. Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <string_view>

#include "plinth/collections/CollisionResolution.hpp"
#include "plinth/collections/ReferenceAssociativeContainer.hpp"

namespace plinth {

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

using MapContainer = std::map<std::u16string, ModelElement, CodeUnitOrder>;
extern template class TESSEL_EXPORT ReferenceAssociativeContainer<MapContainer>;

class TESSEL_EXPORT ElementMapBase : public ReferenceAssociativeContainer<MapContainer> {
 public:
  /// The untyped view.
  class MyGenericInterface;

  /// Puts the element in under its key. An empty handle, or an element that is in, is ignored; a proxy goes to the
  /// proxies. Whether it was put in. Raises what checkCompatibleModel raises, and UniquenessConstraint. Logarithmic.
  bool insertElement(ModelElement const& element, CollisionResolution resolution = CollisionResolution::RAISE);
  /// Takes out the element of that key; whether there was one. Logarithmic.
  bool eraseKey(std::u16string_view key);
  /// The element of that key, or an empty handle. Logarithmic.
  ModelElement findElement(std::u16string_view key) const;
  std::vector<std::u16string> keys() const;
  /// The keys in order, each a `String` value. Linear.
  std::vector<Value> getAllKeys() const;
  /// The type of the property that qualifies; `String` for a map of no property.
  meta::Type getQualifierType() const;
  std::u16string const& keyOf(ModelElementImpl const& element) const;

  void genericAdd(ModelElement const& element) override;

 protected:
  ElementMapBase(KeyExtractor extractor, ModelElementImpl* owner, meta::PropertyImpl* property,
                 meta::PropertyImpl* opposite) noexcept
      : ReferenceAssociativeContainer(owner, property, opposite), m_keyExtractor(extractor) {}
  KeyExtractor keyExtractor() const noexcept { return m_keyExtractor; }
  std::unique_ptr<GenericCollectionInterface> makeGenericInterface() override;
  Position locate(ModelElement const& element) const override;
  bool insertRaw(ModelElement const& element, CollectionJournal* journal) override;

 private:
  bool insertAt(Position hint, ModelElement const& element, CollectionJournal* journal);
  void replaceEntry(Position at, ModelElement const& element);

  KeyExtractor m_keyExtractor;
};

}  // namespace plinth
