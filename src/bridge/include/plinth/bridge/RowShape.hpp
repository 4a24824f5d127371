// How many values of one type cross to the host as one array: numbers as a row of their class, texts as a string array,
// members of an enumeration as one array of its class, datatypes as an object array.
// Thread rule: the host's thread.
#pragma once

#include <string>
#include <vector>

#include "kestrel/Array.hpp"
#include "plinth/bridge/ValueShapes.hpp"

namespace plinth::bridge {

/// A specialisation has
///   static corvid::Identifier dataType();   the host data type of such an array
///   static kestrel::OwnedArray toHost(std::vector<T> const& values);
///   static std::vector<T> fromHost(kestrel_array const& array);   of an array of that data type
template <class T, class Enable = void>
struct RowShape;

template <class T>
struct RowShape<T, std::enable_if_t<std::is_arithmetic_v<T>>> {
  static corvid::Identifier dataType() {
    static corvid::Identifier const type =
        corvid::internal::makeInterned(kestrel::nameOf(kestrel::ElementClass<T>::value).text() + " vector");
    return type;
  }
  static kestrel::OwnedArray toHost(std::vector<T> const& values) { return kestrel::createRow<T>(values); }
  static std::vector<T> fromHost(kestrel_array const& array) {
    T const* const first = kestrel::data<T>(array);
    return std::vector<T>(first, first + kestrel::numberOfElements(array));
  }
};

template <>
struct RowShape<std::u16string> {
  static corvid::Identifier dataType() {
    static corvid::Identifier const type = corvid::internal::makeInterned("CorvidFactoryString vector");
    return type;
  }
  static kestrel::OwnedArray toHost(std::vector<std::u16string> const& values) {
    return kestrel::createStringRow(values);
  }
  static std::vector<std::u16string> fromHost(kestrel_array const& array) {
    std::vector<std::u16string> values;
    values.reserve(kestrel::numberOfElements(array));
    for (std::size_t i = 0; i < kestrel::numberOfElements(array); ++i)
      values.push_back(kestrel::stringElement(array, i).value_or(std::u16string()));
    return values;
  }
};

template <class E>
struct RowShape<E, std::enable_if_t<std::is_enum_v<E>>> {
  static corvid::Identifier dataType() { return hostNameOf<E>(); }
  static kestrel::OwnedArray toHost(std::vector<E> const& values) {
    std::vector<std::int32_t> numbers;
    numbers.reserve(values.size());
    for (E const value : values) numbers.push_back(static_cast<std::int32_t>(value));
    return kestrel::createBuiltInBased(hostNameOf<E>(), kestrel::createRow(numbers));
  }
  static std::vector<E> fromHost(kestrel_array const& array) {
    std::vector<E> values;
    if (kestrel::isEmpty(array)) return values;
    std::int32_t const* const numbers = kestrel::data<std::int32_t>(array);
    values.reserve(kestrel::numberOfElements(array));
    for (std::size_t i = 0; i < kestrel::numberOfElements(array); ++i) values.push_back(static_cast<E>(numbers[i]));
    return values;
  }
};

template <class T>
struct RowShape<T, std::enable_if_t<IsDatatype<T>::value>> {
  static corvid::Identifier dataType() { return hostNameOf<T>(); }
  static kestrel::OwnedArray toHost(std::vector<T> const& values) {
    auto array = kestrel::createObjects(hostNameOf<T>(), kestrel::row(values.size()));
    for (std::size_t i = 0; i < values.size(); ++i)
      kestrel::setObject(*array, i, kestrel::object(*corvid::factory::ValueShape<T>::toHost(values[i])));
    return array;
  }
  static std::vector<T> fromHost(kestrel_array const& array) {
    std::vector<T> values;
    values.reserve(kestrel::numberOfElements(array));
    for (std::size_t i = 0; i < kestrel::numberOfElements(array); ++i)
      values.push_back(corvid::factory::ValueShape<T>::at(array, i));
    return values;
  }
};

}  // namespace plinth::bridge
