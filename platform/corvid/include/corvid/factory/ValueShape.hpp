// How a C++ type of property values crosses to the host and back: one specialisation per shape of value, for every
// property of that shape. Thread rule: pure functions.
#pragma once

#include <boost/optional.hpp>
#include <string>
#include <type_traits>

#include "corvid/CorvidPropInfo.hpp"
#include "corvid/Identifier.hpp"
#include "groundwork/export.hpp"
#include "kestrel/Array.hpp"

namespace corvid::factory {

/// A specialisation has
///   static constexpr Multiplicity multiplicity;
///   static Identifier dataType();
///   static kestrel::OwnedArray toHost(V const& value);
///   static V fromHost(kestrel_array const& value);   of a value that has passed the check of the data type
template <class V, class Enable = void>
struct ValueShape;

namespace detail {

/// "double scalar" for Double and so on, kept: no look-up after the first call.
TESSEL_EXPORT Identifier scalarType(kestrel::ClassId id);
/// "CorvidFactoryString scalar".
TESSEL_EXPORT Identifier stringScalarType();

}  // namespace detail

template <class V>
struct ValueShape<V, std::enable_if_t<std::is_arithmetic_v<V>>> {
  static constexpr Multiplicity multiplicity = Multiplicity::Single;
  static Identifier dataType() { return detail::scalarType(kestrel::ElementClass<V>::value); }
  static kestrel::OwnedArray toHost(V value) { return kestrel::createScalar<V>(value); }
  static V fromHost(kestrel_array const& value) { return kestrel::element<V>(value); }
};

/// Absent is an empty array of the numeric class.
template <class V>
struct ValueShape<boost::optional<V>, std::enable_if_t<std::is_arithmetic_v<V>>> {
  static constexpr Multiplicity multiplicity = Multiplicity::Optional;
  static Identifier dataType() { return ValueShape<V>::dataType(); }
  static kestrel::OwnedArray toHost(boost::optional<V> const& value) {
    return value ? kestrel::createScalar<V>(*value) : kestrel::createNumeric<V>(kestrel::EMPTY);
  }
  static boost::optional<V> fromHost(kestrel_array const& value) {
    return kestrel::isEmpty(value) ? boost::optional<V>() : kestrel::element<V>(value);
  }
};

template <>
struct ValueShape<std::u16string> {
  static constexpr Multiplicity multiplicity = Multiplicity::Single;
  static Identifier dataType() { return detail::stringScalarType(); }
  static kestrel::OwnedArray toHost(std::u16string const& value) { return kestrel::createChar(value); }
  static std::u16string fromHost(kestrel_array const& value) { return std::u16string(kestrel::scalarText(value)); }
};

}  // namespace corvid::factory
