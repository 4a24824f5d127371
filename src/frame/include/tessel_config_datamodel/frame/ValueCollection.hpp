// Properties that hold many plain values: sequences, sets, and maps by a key that the value bears.
// Ownership: the element owns the collection, which is made when somebody first asks for it.
// Thread rule: the model's thread.
#pragma once

#include <memory>

#include "plinth/collections/PrimitiveMap.hpp"
#include "plinth/collections/PrimitiveSequence.hpp"
#include "plinth/collections/PrimitiveSet.hpp"
#include "tessel_config_datamodel/frame/Collection.hpp"

namespace tessel::frame {

class TESSEL_EXPORT ValueCollectionKind : public CollectionKind {
 public:
  FieldGroup group() const noexcept final { return FieldGroup::ATTRIBUTE; }
  plinth::Value get(Element& element, Row const& row, Tag const& tag) const final;
  bool isUnchanged(Element const& element, ElementStorage const& storage, Row const& row) const final;

  plinth::AbstractPrimitiveCollection& require(Element& element, Row const& row) const {
    return static_cast<plinth::AbstractPrimitiveCollection&>(requireAny(element, row));
  }

 protected:
  ~ValueCollectionKind() = default;
};

/// C is the collection's class; the builder gathers a vector of its values.
template <class C>
class TypedValueCollectionKind : public ValueCollectionKind {
 public:
  using PropertyKind::build;
  using T = typename C::Element;
  bool build(ElementBuilder& builder, Row const& row, plinth::Value const& value) const final {
    builderFieldOf<std::vector<T>>(builder, row).push_back(value.getValue<T>());
    return true;
  }
  void initialize(Element& element, ElementBuilder& builder, Row const& row) const final {
    auto& values = builderFieldOf<std::vector<T>>(builder, row);
    if (values.empty()) return;
    fill(static_cast<C&>(require(element, row)), builder.isSpent() ? std::move(values) : values);
  }

 protected:
  ~TypedValueCollectionKind() = default;

 private:
  static void fill(plinth::PrimitiveSequence<T>& sequence, std::vector<T> values) {
    sequence.assign(std::move(values));
  }
  template <class Associative>
  static void fill(Associative& collection, std::vector<T> const& values) {
    for (T const& value : values) collection.insert(value);
  }
};

/// A sequence or a set.
template <class C>
class PlainValueCollectionKind final : public TypedValueCollectionKind<C> {
 public:
  using typename PropertyKind::Row;

 protected:
  CollectionField make(Element& element, Row const& row) const override {
    return std::make_unique<C>(plinth::CollectionPrivateTag(), &element, row.property);
  }
};

/// A map of values; `KEY` reads the key of a value.
template <class T, std::u16string const& (T::*KEY)() const>
class ValueMapKind final : public TypedValueCollectionKind<plinth::PrimitiveMap<std::u16string, T>> {
 public:
  using typename PropertyKind::Row;

 protected:
  CollectionField make(Element& element, Row const& row) const override {
    auto const keyOf = [](T const& value) { return (value.*KEY)(); };
    using Map = plinth::PrimitiveMap<std::u16string, T>;
    return std::make_unique<Map>(plinth::CollectionPrivateTag(), keyOf, &element, row.property);
  }
};

template <class T>
inline constexpr PlainValueCollectionKind<plinth::PrimitiveSequence<T>> valueSequenceKind{};
template <class T>
inline constexpr PlainValueCollectionKind<plinth::PrimitiveSet<T>> valueSetKind{};
template <class T, std::u16string const& (T::*KEY)() const>
inline constexpr ValueMapKind<T, KEY> valueMapKind{};

/// The getter of a value collection: refuses a proxy.
TESSEL_EXPORT plinth::AbstractPrimitiveCollection* readValues(Element const& self, PropertyDescriptor const& row);

template <class C>
C* getValues(Element const& self, PropertyDescriptor const& row) {
  return static_cast<C*>(readValues(self, row));
}

}  // namespace tessel::frame
