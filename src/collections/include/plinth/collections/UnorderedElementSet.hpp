// An unordered collection of elements of class T, each once; see ReferenceSet, also for the order of iteration.
// Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include "plinth/collections/ReferenceSet.hpp"
#include "plinth/collections/TypedReferenceCollection.hpp"

namespace plinth {

template <class T>
class UnorderedElementSet final : public TypedReferenceCollectionWithProxies<T, ReferenceSet> {
  using Base = TypedReferenceCollectionWithProxies<T, ReferenceSet>;

 public:
  explicit UnorderedElementSet(CollectionPrivateTag, ModelElementImpl* owner = nullptr,
                               meta::PropertyImpl* property = nullptr, meta::PropertyImpl* opposite = nullptr) noexcept
      : Base(owner, property, opposite) {}

  /// Whether the element, or the proxy, was added.
  bool add(T const& element) { return this->addElement(element); }

 protected:
  typename Base::Detached makeDetached() const override {
    return std::make_unique<UnorderedElementSet>(CollectionPrivateTag(), nullptr, this->property(), this->opposite());
  }
};

}  // namespace plinth
