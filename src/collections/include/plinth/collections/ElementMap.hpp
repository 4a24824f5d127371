// Elements of class T by a key of type K that they bear; see ElementMapBase. K is the UTF-16 string throughout.
// Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include <iterator>
#include <type_traits>
#include <utility>

#include "plinth/collections/ElementMapBase.hpp"
#include "plinth/collections/TypedReferenceCollection.hpp"

namespace plinth {

/// Iteration is over the elements, in key order.
template <class K, class T>
class ElementMap final : public TypedReferenceCollectionWithProxies<T, ElementMapBase> {
  static_assert(std::is_same_v<K, std::u16string>, "elements are keyed by UTF-16 strings");
  using Base = TypedReferenceCollectionWithProxies<T, ElementMapBase>;

 public:
  using typename Base::Container;
  using typename Base::Iterator;
  using reverse_iterator = std::reverse_iterator<Iterator>;
  using const_reverse_iterator = reverse_iterator;

  /// Walks over pairs of a key and its element, in key order.
  class EntryIterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = std::pair<K const&, T const&>;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = value_type;

    EntryIterator() = default;
    explicit EntryIterator(typename Container::const_iterator at) noexcept : m_at(at) {}
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
    typename Container::const_iterator m_at;
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
      : Base(extractor, owner, property, opposite) {}

  /// Whether the element, or the proxy, was put in; false also where another one of that key was kept.
  bool insert(T const& element, CollisionResolution resolution = CollisionResolution::RAISE) {
    return this->insertElement(element, resolution);
  }
  /// Takes out the element of that key; whether there was one. Logarithmic.
  bool erase(std::u16string_view key) { return this->eraseKey(key); }
  using Base::contains;
  /// Whether there is an element of that key. Logarithmic.
  bool contains(std::u16string_view key) const { return this->raw().find(key) != this->raw().end(); }
  /// The element of that key, or an empty handle.
  T find(std::u16string_view key) const {
    auto const at = this->raw().find(key);
    return at == this->raw().end() ? T() : static_cast<T const&>(at->second);
  }
  reverse_iterator rbegin() const { return reverse_iterator(this->end()); }
  reverse_iterator rend() const { return reverse_iterator(this->begin()); }
  /// The pairs of key and element: `for (auto const& [key, entry] : map.entries())`.
  Entries entries() const noexcept { return Entries(this->raw()); }

 protected:
  typename Base::Detached makeDetached() const override {
    return std::make_unique<ElementMap>(CollectionPrivateTag(), this->keyExtractor(), nullptr, this->property(),
                                        this->opposite());
  }
};

}  // namespace plinth
