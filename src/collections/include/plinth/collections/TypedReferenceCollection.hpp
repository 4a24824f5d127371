// What a collection that stores elements adds for their class: its name in the metamodel, and iteration.
// Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include <cstddef>
#include <type_traits>

#include "plinth/collections/HandleIterator.hpp"
#include "plinth/collections/ReferenceAssociative.hpp"

namespace plinth {

/// T is the handle class of the elements, C the collection without their class, which does the work.
template <class T, class C>
class TypedReferenceCollection : public C {
 public:
  using Element = T;
  using Iterator = detail::HandleIterator<T, typename C::Container::const_iterator>;
  using iterator = Iterator;
  using const_iterator = Iterator;
  using value_type = T;
  using reference = T const&;
  using const_reference = T const&;
  using size_type = std::size_t;
  using difference_type = std::ptrdiff_t;

  meta::Class const& getCollectionType() const override { return T::metaClass(); }
  Iterator begin() const { return Iterator(this->raw().begin()); }
  Iterator end() const { return Iterator(this->raw().end()); }

 protected:
  using C::C;
};

/// The same for sets and maps, which keep their proxies apart.
template <class T, class C>
class TypedReferenceCollectionWithProxies : public TypedReferenceCollection<T, C> {
  static_assert(std::is_base_of_v<ReferenceAssociative, C>);

 public:
  /// Removes a member, which may be dead, or a proxy; whether it was there.
  bool remove(T const& element) { return this->removeMember(element); }
  bool contains(T const& element) const { return !element.isEmpty() && this->holds(element); }

 protected:
  using TypedReferenceCollection<T, C>::TypedReferenceCollection;
};

}  // namespace plinth
