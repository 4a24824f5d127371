// Value datatypes: comparison, order and hash from a datatype's fields, and the serializer that reads and writes the
// fields by reflection. A datatype gives its fields, in declared order, as the tuple `fields()`. Ownership: plain
// values. Thread rule: plain values; the serializer has no state.
#pragma once

#include <boost/optional.hpp>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "plinth/Hashing.hpp"
#include "plinth/Messages.hpp"
#include "plinth/meta/Serializers.hpp"
#include "tessel_config_datamodel/frame/OptionalText.hpp"

namespace tessel::metamodel {

struct DatatypeRow;

namespace detail {

template <class F>
int compareField(F const& left, F const& right) {
  if (left < right) return -1;
  return right < left ? 1 : 0;
}

template <class F>
void hashField(std::uint64_t& state, F const& field) {
  plinth::combineHash(state, plinth::hashValue(field));
}
/// An empty optional adds nothing.
template <class F>
void hashField(std::uint64_t& state, boost::optional<F> const& field) {
  if (field) plinth::combineHash(state, plinth::hashValue(*field));
}

template <class F>
plinth::Value toValue(plinth::ValueMeta const& meta, F const& field) {
  return plinth::Value::make<F>(meta, field);
}
template <class F>
plinth::Value toValue(plinth::ValueMeta meta, boost::optional<F> const& field) {
  if (field) return plinth::Value::make<boost::optional<F>>(meta, field);
  if (meta.flags() != plinth::meta::OPTIONAL) plinth::reportException(plinth::messages::InvalidValue());
  return plinth::Value(meta.setOptionalEmpty());
}

template <class F>
void fromValue(F& field, plinth::Value const& value) {
  field = value.getValue<F>();
}
/// A plain value is one that is present.
template <class F>
void fromValue(boost::optional<F>& field, plinth::Value const& value) {
  bool const isPlain = value.meta().flags() == plinth::meta::SINGLE;
  field = isPlain ? boost::optional<F>(value.getValue<F>()) : value.getValue<boost::optional<F>>();
}

/// Whether no field can fail to be moved, as the datatype's own moves promise.
template <class... F>
std::bool_constant<(... && (std::is_nothrow_move_constructible_v<F> && std::is_nothrow_move_assignable_v<F>))>
movedSafely(std::tuple<F&...> const& fields);

}  // namespace detail

/// -1, 0 or 1, field by field in declared order.
template <class... F>
int compareFields(std::tuple<F const&...> const& left, std::tuple<F const&...> const& right) {
  int result = 0;
  std::apply(
      [&](auto const&... l) {
        std::apply([&](auto const&... r) { ((result = result != 0 ? result : detail::compareField(l, r)), ...); },
                   right);
      },
      left);
  return result;
}

template <class... F>
std::uint64_t hashFields(std::tuple<F const&...> const& fields) {
  std::uint64_t state = 0;
  std::apply([&](auto const&... field) { (detail::hashField(state, field), ...); }, fields);
  return state;
}

/// Writes a value of a datatype as `Name{Field: value, ...}`. Linear in the value.
TESSEL_EXPORT std::ostream& printValue(std::ostream& stream, plinth::Value const& value);

template <class T>
std::ostream& print(std::ostream& stream, T const& value) {
  return printValue(stream, plinth::Value::make<T>({plinth::MetaTypeOf<T>::type(), plinth::meta::SINGLE}, value));
}

/// The serializer of datatype T, which gives `T::properties()`, the handles of its properties in declared order, and
/// `editableFields()`.
template <class T>
class TypedDatatypeSerializer : public plinth::meta::DatatypeSerializer {
  static_assert(decltype(detail::movedSafely(std::declval<T&>().editableFields()))::value);

 public:
  using Type = plinth::meta::Type;
  using Property = plinth::meta::Property;
  using Value = plinth::Value;

  Value getPropertyValue(Value const& object, Property const& property) const final {
    return doGetPropertyValue(object.getValue<T>(), property);
  }
  Value setPropertyValue(Value const& object, Property const& property, Value const& newValue) const final {
    T copy = object.getValue<T>();
    doSetPropertyValue(copy, property, newValue);
    return Value::make<T>(scalar(), std::move(copy));
  }
  Value createDefaultValue() const final { return Value::make<T>(scalar(), T()); }
  Value createEmptyOptionalValue() const final {
    return Value(plinth::ValueMeta(plinth::MetaTypeOf<T>::type(), plinth::meta::OPTIONAL).setOptionalEmpty());
  }
  Value combineAsUnmanagedSequenceValue(Type const& type, std::vector<Value> const& values) const final {
    auto combined = std::make_unique<std::vector<T>>();
    for (Value const& value : values) combined->push_back(value.getValue<T>());
    return Value::makeUnmanaged(plinth::ValueMeta(type.impl(), plinth::meta::SEQUENCE), std::move(combined));
  }
  Value combineAsUnmanagedSetValue(Type const& type, std::vector<Value> const& values) const final {
    auto combined = std::make_unique<std::set<T>>();
    for (Value const& value : values) combined->insert(value.getValue<T>());
    return Value::makeUnmanaged(plinth::ValueMeta(type.impl(), plinth::meta::SET), std::move(combined));
  }
  Value fromOptionalValue(Value const& value) const final {
    auto const content = value.getValue<boost::optional<T>>();
    if (!content) plinth::reportException(plinth::messages::InvalidValue());
    return Value::make<T>(scalar(), *content);
  }
  Value toOptionalValue(Value const& value) const final {
    plinth::ValueMeta const meta(plinth::MetaTypeOf<T>::type(), plinth::meta::OPTIONAL);
    return Value::make<boost::optional<T>>(meta, value.getValue<T>());
  }

 private:
  static plinth::ValueMeta scalar() { return {plinth::MetaTypeOf<T>::type(), plinth::meta::SINGLE}; }

  Value doGetPropertyValue(T const& object, Property const& property) const {
    Value result;
    std::size_t const wanted = indexOf(property);
    std::size_t at = 0;
    std::apply(
        [&](auto const&... field) {
          ((at++ == wanted ? void(result = detail::toValue(plinth::ValueMeta(property), field)) : void()), ...);
        },
        object.fields());
    return result;
  }
  void doSetPropertyValue(T& object, Property const& property, Value const& newValue) const {
    std::size_t const wanted = indexOf(property);
    std::size_t at = 0;
    std::apply([&](auto&... field) { ((at++ == wanted ? detail::fromValue(field, newValue) : void()), ...); },
               object.editableFields());
  }
  static std::size_t indexOf(Property const& property) {
    auto const properties = T::properties();
    for (std::size_t i = 0; i < properties.size(); ++i) {
      if (*properties[i] == property) return i;
    }
    plinth::reportException(
        plinth::messages::NoSuchProperty(property.isEmpty() ? std::u16string() : property->getName(),
                                         plinth::MetaTypeOf<T>::type()->getQualifiedName()));
  }
};

}  // namespace tessel::metamodel
