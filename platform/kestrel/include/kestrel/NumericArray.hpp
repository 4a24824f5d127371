// Arrays of numbers and logical values: the elements lie in one block, column by column, as their C++ type.
//
// T is one of bool, double, float and the integers of 8 to 64 bits; asking an array for another element type than its
// own raises ArrayError "Kestrel:array:WrongClass". The templates only fix the class; the work is done once for all.
#pragma once

#include <algorithm>
#include <cstring>
#include <vector>

#include "kestrel/ArrayBase.hpp"

namespace kestrel {

namespace detail {
[[nodiscard]] TESSEL_EXPORT OwnedArray createPlain(ClassId id, Dimensions const& dimensions);
/// The first `size` bytes of the word are the element.
[[nodiscard]] TESSEL_EXPORT OwnedArray createPlainScalar(ClassId id, std::uint64_t word, std::size_t size);
TESSEL_EXPORT void const* plainData(kestrel_array const& array, ClassId expected);
TESSEL_EXPORT void* plainData(kestrel_array& array, ClassId expected);
TESSEL_EXPORT void const* plainElement(kestrel_array const& array, ClassId expected, std::size_t index);
}  // namespace detail

/// The block of elements; valid until the array is destroyed. Not to be read beyond numberOfElements.
template <class T>
T const* data(kestrel_array const& array) {
  return static_cast<T const*>(detail::plainData(array, ElementClass<T>::value));
}
template <class T>
T* mutableData(kestrel_array& array) {
  return static_cast<T*>(detail::plainData(array, ElementClass<T>::value));
}

/// One element, counted from 0 column by column; raises ArrayError "Kestrel:array:OutOfRange".
template <class T>
T element(kestrel_array const& array, std::size_t index = 0) {
  return *static_cast<T const*>(detail::plainElement(array, ElementClass<T>::value, index));
}

/// An array of zeros.
template <class T>
[[nodiscard]] OwnedArray createNumeric(Dimensions const& dimensions) {
  return detail::createPlain(ElementClass<T>::value, dimensions);
}

template <class T>
[[nodiscard]] OwnedArray createScalar(T value) {
  std::uint64_t word = 0;
  static_assert(sizeof(T) <= sizeof(word));
  std::memcpy(&word, &value, sizeof(T));
  return detail::createPlainScalar(ElementClass<T>::value, word, sizeof(T));
}

/// A 1 by N copy of N elements; 0 by 0 for none.
template <class T>
[[nodiscard]] OwnedArray createRow(T const* elements, std::size_t count) {
  OwnedArray array = createNumeric<T>(row(count));
  std::copy_n(elements, count, mutableData<T>(*array));
  return array;
}
template <class T>
[[nodiscard]] OwnedArray createRow(std::vector<T> const& elements) {
  OwnedArray array = createNumeric<T>(row(elements.size()));
  std::copy(elements.begin(), elements.end(), mutableData<T>(*array));
  return array;
}

/// Element of any numeric or logical class as a double, with the rounding that 64-bit integers need.
TESSEL_EXPORT double elementAsDouble(kestrel_array const& array, std::size_t index = 0);

/// The same numbers under another numeric class: rounded to the nearest integer, and clamped to the range of the
/// target. NaN becomes 0 as an integer and raises ArrayError "Kestrel:array:NotLogical" as a logical value. Raises
/// WrongClass if either class is not numeric.
[[nodiscard]] TESSEL_EXPORT OwnedArray convertNumeric(kestrel_array const& array, ClassId target);

}  // namespace kestrel
