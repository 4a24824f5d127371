// Elements of class T by a key of type K that they bear; see ReferenceMap. K is the UTF-16 string throughout.
// Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include <type_traits>

#include "plinth/collections/HandleIterator.hpp"
#include "plinth/collections/ReferenceMap.hpp"

namespace plinth {

template <class K, class T>
class ElementMap final : public ReferenceMap {
  static_assert(std::is_same_v<K, std::u16string>, "elements are keyed by UTF-16 strings");

  struct Second {
    static ModelElement const& handle(Container::value_type const& entry) noexcept { return entry.second; }
  };

 public:
  using Element = T;
  /// Iterates over the elements in key order.
  using Iterator = detail::HandleIterator<T, Container::const_iterator, Second>;
  using value_type = T;
  using const_iterator = Iterator;

  explicit ElementMap(KeyExtractor keyExtractor, ModelElementImpl* owner = nullptr,
                      meta::PropertyImpl* property = nullptr, meta::PropertyImpl* opposite = nullptr) noexcept
      : ReferenceMap(keyExtractor, owner, property, opposite) {}

  meta::Class const& getCollectionType() const override { return T::metaClass(); }

  void insert(T const& element, CollisionResolution resolution = CollisionResolution::RAISE) {
    insertElement(element, resolution);
  }
  void remove(T const& element) { removeMember(element); }
  bool contains(T const& element) const { return !element.isEmpty() && holds(element); }
  /// The element of that key, or an empty handle.
  T find(std::u16string_view key) const {
    auto const at = raw().find(key);
    return at == raw().end() ? T() : static_cast<T const&>(at->second);
  }
  Iterator begin() const { return Iterator(raw().begin()); }
  Iterator end() const { return Iterator(raw().end()); }

 protected:
  Detached makeDetached() const override {
    return std::make_unique<ElementMap>(keyExtractor(), nullptr, property(), opposite());
  }
};

}  // namespace plinth
