// A set of plain values, in the order of their `operator<`; an equal one is dropped.
// Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include <set>

#include "plinth/collections/PrimitiveAssociativeContainer.hpp"

namespace plinth {

/// C is a set of T.
template <class T, class C>
class PrimitiveSetBase : public PrimitiveAssociativeContainer<T, C> {
 public:
  /// Logarithmic, here and below.
  bool contains(T const& value) const { return this->values().count(value) != 0; }
  /// Whether the value was not there yet.
  bool insert(T const& value) { return !contains(value) && this->put(value); }
  /// Whether the value was there.
  bool erase(T const& value) { return this->take(this->values().find(value)); }
  /// Becomes these values: one change. Linear in what goes.
  void assign(C values) { this->become(std::move(values)); }

  PrimitiveKind getKind() const noexcept override { return PrimitiveKind::SET; }
  void genericAdd(Value const& value) override { insert(value.getValue<T>()); }
  void genericRemove(Value const& value) override { erase(value.getValue<T>()); }

 protected:
  using PrimitiveAssociativeContainer<T, C>::PrimitiveAssociativeContainer;
  std::unique_ptr<GenericPrimitiveCollectionInterface> makeGenericInterface() override {
    return std::make_unique<detail::PrimitiveView<GenericPrimitiveCollectionInterface>>(*this);
  }
};

template <class T>
class PrimitiveSet final : public PrimitiveSetBase<T, std::set<T>> {
  using Base = PrimitiveSetBase<T, std::set<T>>;

 public:
  explicit PrimitiveSet(CollectionPrivateTag, ModelElementImpl* owner = nullptr,
                        meta::PropertyImpl* property = nullptr) noexcept
      : Base(owner, property) {}

 protected:
  std::unique_ptr<PrimitiveCollection<T, std::set<T>>> makeDetached() const override {
    return std::make_unique<PrimitiveSet>(CollectionPrivateTag(), nullptr, this->property());
  }
};

}  // namespace plinth
