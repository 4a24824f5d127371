// An unordered collection of elements of class T, each once; see ReferenceSet, also for the order of iteration.
// Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include "plinth/collections/HandleIterator.hpp"
#include "plinth/collections/ReferenceSet.hpp"

namespace plinth {

template <class T>
class UnorderedElementSet final : public ReferenceSet {
 public:
  using Element = T;
  using Iterator = detail::HandleIterator<T, Container::const_iterator, detail::Itself>;
  using value_type = T;
  using const_iterator = Iterator;

  explicit UnorderedElementSet(CollectionPrivateTag, ModelElementImpl* owner = nullptr,
                               meta::PropertyImpl* property = nullptr, meta::PropertyImpl* opposite = nullptr) noexcept
      : ReferenceSet(owner, property, opposite) {}

  meta::Class const& getCollectionType() const override { return T::metaClass(); }

  void add(T const& element) { addElement(element); }
  void remove(T const& element) { removeMember(element); }
  bool contains(T const& element) const { return containsElement(element); }
  Iterator begin() const { return Iterator(raw().begin()); }
  Iterator end() const { return Iterator(raw().end()); }

 protected:
  Detached makeDetached() const override {
    return std::make_unique<UnorderedElementSet>(CollectionPrivateTag(), nullptr, property(), opposite());
  }
};

}  // namespace plinth
