// A set of plain values, in the order of their `operator<`; an equal one is dropped.
// Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include <set>

#include "plinth/collections/PrimitiveNodes.hpp"

namespace plinth {

template <class T>
class PrimitiveSet final : public detail::PrimitiveNodes<T, std::set<T>> {
  using Base = PrimitiveCollection<T, std::set<T>>;

 public:
  explicit PrimitiveSet(CollectionPrivateTag, ModelElementImpl* owner = nullptr,
                        meta::PropertyImpl* property = nullptr) noexcept
      : detail::PrimitiveNodes<T, std::set<T>>(owner, property) {}

  /// Logarithmic, here and below.
  bool contains(T const& value) const { return this->values().count(value) != 0; }
  void insert(T const& value) {
    if (!contains(value)) this->put(value);
  }
  void erase(T const& value) { this->take(this->values().find(value)); }
  /// Becomes these values: one change. Linear in what goes.
  void assign(std::set<T> values) { this->become(std::move(values)); }

  PrimitiveKind getKind() const noexcept override { return PrimitiveKind::SET; }
  void genericAdd(Value const& value) override { insert(value.getValue<T>()); }
  void genericRemove(Value const& value) override { erase(value.getValue<T>()); }

 protected:
  std::unique_ptr<Base> makeDetached() const override {
    return std::make_unique<PrimitiveSet>(CollectionPrivateTag(), nullptr, this->property());
  }
  std::unique_ptr<GenericPrimitiveCollectionInterface> makeGenericInterface() override {
    return std::make_unique<detail::PrimitiveView<GenericPrimitiveCollectionInterface>>(*this);
  }
};

}  // namespace plinth
