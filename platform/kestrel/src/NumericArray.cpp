#include "kestrel/NumericArray.hpp"

#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#include "ArrayData.hpp"

namespace kestrel {
namespace {

// Calls the function with a null pointer of the element type of a numeric class; false for any other class.
template <class Function>
bool withElementType(ClassId id, Function&& function) {
  switch (id) {
    case ClassId::Logical:
      return function(static_cast<bool*>(nullptr)), true;
    case ClassId::Double:
      return function(static_cast<double*>(nullptr)), true;
    case ClassId::Single:
      return function(static_cast<float*>(nullptr)), true;
    case ClassId::Int8:
      return function(static_cast<std::int8_t*>(nullptr)), true;
    case ClassId::UInt8:
      return function(static_cast<std::uint8_t*>(nullptr)), true;
    case ClassId::Int16:
      return function(static_cast<std::int16_t*>(nullptr)), true;
    case ClassId::UInt16:
      return function(static_cast<std::uint16_t*>(nullptr)), true;
    case ClassId::Int32:
      return function(static_cast<std::int32_t*>(nullptr)), true;
    case ClassId::UInt32:
      return function(static_cast<std::uint32_t*>(nullptr)), true;
    case ClassId::Int64:
      return function(static_cast<std::int64_t*>(nullptr)), true;
    case ClassId::UInt64:
      return function(static_cast<std::uint64_t*>(nullptr)), true;
    default:
      return false;
  }
}

template <class To>
To floatingToInteger(double value) {
  if (std::isnan(value)) return 0;
  double const rounded = std::round(value);
  // The upper limit of a 64-bit integer is no double: the comparison is with the next power of two.
  if (rounded >= std::ldexp(1.0, std::numeric_limits<To>::digits)) return std::numeric_limits<To>::max();
  if (rounded <= static_cast<double>(std::numeric_limits<To>::min())) return std::numeric_limits<To>::min();
  return static_cast<To>(rounded);
}

template <class To, class From>
To integerToInteger(From value) {
  if constexpr (std::is_signed_v<From>) {
    if (value < 0) {
      if constexpr (std::is_unsigned_v<To>) return 0;
      return static_cast<To>(std::max<std::int64_t>(value, std::numeric_limits<To>::min()));
    }
  }
  auto const limit = static_cast<std::uint64_t>(std::numeric_limits<To>::max());
  return static_cast<To>(std::min(static_cast<std::uint64_t>(value), limit));
}

template <class To, class From>
To convertElement(From value) {
  if constexpr (std::is_same_v<To, bool>) {
    if constexpr (std::is_floating_point_v<From>) {
      if (std::isnan(value)) throw ArrayError("Kestrel:array:NotLogical", "NaN has no logical value.");
    }
    return value != From(0);
  } else if constexpr (std::is_floating_point_v<To> || std::is_same_v<From, bool>) {
    return static_cast<To>(value);
  } else if constexpr (std::is_floating_point_v<From>) {
    return floatingToInteger<To>(value);
  } else {
    return integerToInteger<To>(value);
  }
}

template <class To, class From>
OwnedArray convertAll(kestrel_array const& array) {
  OwnedArray converted = createNumeric<To>(dimensions(array));
  From const* const first = data<From>(array);
  std::transform(first, first + numberOfElements(array), mutableData<To>(*converted), convertElement<To, From>);
  return converted;
}

}  // namespace

namespace detail {

OwnedArray createPlain(ClassId id, Dimensions const& dimensions) {
  std::size_t const elementBytes = plainSize(id);
  std::size_t const size = checkedCount(dimensions, elementBytes) * elementBytes;
  OwnedArray array = makeArray<Plain>(id, dimensions, size, boost::container::default_init);
  void* const block = std::get<Plain>(array->store).data();
  // A scalar lies in the array, where there is room for the whole: no call is needed to clear it.
  size <= INLINE_BYTES ? std::memset(block, 0, INLINE_BYTES) : std::memset(block, 0, size);
  return array;
}

OwnedArray createPlainScalar(ClassId id, std::uint64_t word, std::size_t size) {
  OwnedArray array = makeArray<Plain>(id, SCALAR, size, boost::container::default_init);
  // A scalar lies in the array, where there is room for the whole word.
  static_assert(INLINE_BYTES >= sizeof(word));
  std::memcpy(std::get_if<Plain>(&array->store)->data(), &word, sizeof(word));
  return array;
}

void const* plainData(kestrel_array const& array, ClassId expected) {
  if (array.id != expected) raiseWrongClass(array, nameOf(expected).c_str());
  return std::get<Plain>(array.store).data();
}

void* plainData(kestrel_array& array, ClassId expected) {
  return const_cast<void*>(plainData(static_cast<kestrel_array const&>(array), expected));
}

void const* plainElement(kestrel_array const& array, ClassId expected, std::size_t index) {
  void const* const first = plainData(array, expected);
  checkIndex(array, index);
  return static_cast<std::byte const*>(first) + index * plainSize(expected);
}

}  // namespace detail

double elementAsDouble(kestrel_array const& array, std::size_t index) {
  double result = 0;
  bool const numeric = withElementType(array.id, [&](auto* type) {
    result = static_cast<double>(element<std::remove_pointer_t<decltype(type)>>(array, index));
  });
  if (!numeric) detail::raiseWrongClass(array, "numeric");
  return result;
}

OwnedArray convertNumeric(kestrel_array const& array, ClassId target) {
  OwnedArray result;
  bool const numericTarget = withElementType(target, [&](auto* to) {
    withElementType(array.id, [&](auto* from) {
      result = convertAll<std::remove_pointer_t<decltype(to)>, std::remove_pointer_t<decltype(from)>>(array);
    });
  });
  if (!numericTarget || result == nullptr) detail::raiseWrongClass(array, "numeric");
  return result;
}

}  // namespace kestrel
