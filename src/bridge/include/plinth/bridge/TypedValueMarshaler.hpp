// Marshalers of one C++ type: the shapes of single values and of rows say how they cross, and everything else follows.
// Ownership and thread rule: see ValueMarshaler.hpp.
#pragma once

#include <memory>
#include <set>

#include "corvid/CorvidTypeRepository.hpp"
#include "plinth/bridge/RowShape.hpp"
#include "plinth/bridge/ValueMarshaler.hpp"
#include "plinth/collections/PrimitiveSequence.hpp"

namespace plinth::bridge {

/// What follows from the values of an array, whatever their conversion.
template <class T>
class AbstractTypedValueMarshaler : public ValueMarshaler {
 public:
  using ValueMarshaler::ValueMarshaler;

  std::string const& getName() const noexcept override {
    return hasHostClass() ? ValueMarshaler::getName() : hostNameOf<T>().text();
  }

  kestrel::OwnedArray fromCollection(AbstractPrimitiveCollection const& collection) const override {
    auto const* const sequence = dynamic_cast<PrimitiveSequence<T> const*>(&collection);
    return sequence != nullptr ? rowToHost(sequence->values()) : fromValueVector(collection.getAllValues());
  }
  kestrel::OwnedArray fromValueVector(std::vector<Value> const& values) const override {
    std::vector<T> row;
    row.reserve(values.size());
    for (Value const& value : values) row.push_back(value.getValue<T>());
    return rowToHost(row);
  }
  std::vector<Value> toValueVector(kestrel_array const& array) const override {
    std::vector<Value> values;
    for (T const& element : rowFromHost(array)) values.push_back(Value::make<T>(metaOf(meta::SINGLE), element));
    return values;
  }
  Value toUnmanagedSequence(kestrel_array const& array) const override {
    auto content = std::make_unique<std::vector<T>>(rowFromHost(array));
    return Value::makeUnmanaged(metaOf(meta::SEQUENCE), std::move(content));
  }
  Value toUnmanagedSetValue(kestrel_array const& array) const override {
    std::vector<T> const row = rowFromHost(array);
    auto content = std::make_unique<std::set<T>>(row.begin(), row.end());
    return Value::makeUnmanaged(metaOf(meta::SET), std::move(content));
  }
  /// A sequence takes the whole row in one change.
  void fillCollection(AbstractPrimitiveCollection& collection, kestrel_array const& array) const override {
    auto* const sequence = dynamic_cast<PrimitiveSequence<T>*>(&collection);
    if (sequence == nullptr) return ValueMarshaler::fillCollection(collection, array);
    sequence->assign(rowFromHost(array));
  }

 protected:
  virtual kestrel::OwnedArray rowToHost(std::vector<T> const& row) const = 0;
  /// Raises HostError where the array can't be converted.
  virtual std::vector<T> rowFromHost(kestrel_array const& array) const = 0;
};

/// The conversion itself; a policy other than none is a specialisation of its own.
template <class T, class Policy = void>
class TypedValueMarshaler;

template <class T>
class TypedValueMarshaler<T, void> : public AbstractTypedValueMarshaler<T> {
 public:
  using Shape = corvid::factory::ValueShape<T>;
  using AbstractTypedValueMarshaler<T>::AbstractTypedValueMarshaler;

  corvid::Identifier dataType() const override { return Shape::dataType(); }
  corvid::Identifier rowDataType() const override { return RowShape<T>::dataType(); }

  kestrel::OwnedArray toHost(Value const& value) const override {
    if (value.meta().flags() != meta::OPTIONAL) return Shape::toHost(value.getValue<T>());
    auto const content = value.getValue<boost::optional<T>>();
    return content ? Shape::toHost(*content) : emptyOfClass();
  }
  Value fromHost(kestrel_array const& array) const override {
    return Value::make<T>(this->metaOf(meta::SINGLE), Shape::fromHost(array));
  }
  Value fromKestrelArray(kestrel_array const& array) const override {
    kestrel::OwnedArray made;
    return fromHost(corvid::CorvidTypeRepository::coerce(dataType(), array, made));
  }

 protected:
  kestrel::OwnedArray rowToHost(std::vector<T> const& row) const override { return RowShape<T>::toHost(row); }
  std::vector<T> rowFromHost(kestrel_array const& array) const override {
    kestrel::OwnedArray made;
    return RowShape<T>::fromHost(corvid::CorvidTypeRepository::coerce(rowDataType(), array, made));
  }
  /// What stands for an absent value: an empty array of the host class, an empty char array for texts.
  kestrel::OwnedArray emptyOfClass() const {
    if constexpr (std::is_same_v<T, std::u16string>) return kestrel::createChar({});
    return RowShape<T>::toHost({});
  }
};

}  // namespace plinth::bridge
