// Elements of class T by a key of type K that they bear; see ReferenceMap. K is the UTF-16 string throughout.
// Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include <type_traits>
#include <utility>

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

  /// Walks over pairs of a key and its element, in key order.
  class EntryIterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = std::pair<K const&, T const&>;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = value_type;

    EntryIterator() = default;
    explicit EntryIterator(Container::const_iterator at) noexcept : m_at(at) {}
    value_type operator*() const { return {m_at->first, static_cast<T const&>(m_at->second)}; }
    EntryIterator& operator++() {
      ++m_at;
      return *this;
    }
    EntryIterator operator++(int) {
      EntryIterator const before = *this;
      ++m_at;
      return before;
    }
    friend bool operator==(EntryIterator const& left, EntryIterator const& right) { return left.m_at == right.m_at; }
    friend bool operator!=(EntryIterator const& left, EntryIterator const& right) { return left.m_at != right.m_at; }

   private:
    Container::const_iterator m_at;
  };
  class Entries {
   public:
    explicit Entries(Container const& container) noexcept : m_container(&container) {}
    EntryIterator begin() const { return EntryIterator(m_container->begin()); }
    EntryIterator end() const { return EntryIterator(m_container->end()); }

   private:
    Container const* m_container;
  };

  ElementMap(CollectionPrivateTag, KeyExtractor extractor, ModelElementImpl* owner = nullptr,
             meta::PropertyImpl* property = nullptr, meta::PropertyImpl* opposite = nullptr) noexcept
      : ReferenceMap(extractor, owner, property, opposite) {}

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
  /// The pairs of key and element: `for (auto const& [key, entry] : map.entries())`.
  Entries entries() const noexcept { return Entries(raw()); }

 protected:
  Detached makeDetached() const override {
    return std::make_unique<ElementMap>(CollectionPrivateTag(), keyExtractor(), nullptr, property(), opposite());
  }
};

}  // namespace plinth
