// The inside of a host array: dimensions, class, and one of five stores. Seen only by the sources of this layer.
#pragma once

#include <boost/container/small_vector.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "ArrayBlock.hpp"
#include "kestrel/ArrayBase.hpp"
#include "kestrel/ArrayError.hpp"
#include "kestrel/Object.hpp"
#include "kestrel/TextArray.hpp"

namespace kestrel::detail {

// Numbers, logical values and UTF-16 units. A scalar and a short text lie in the array itself, so that reading a
// property of such a type costs one allocation.
constexpr std::size_t INLINE_BYTES = 16;
using Plain = boost::container::small_vector<
    std::byte, INLINE_BYTES, void,
    boost::container::small_vector_options_t<boost::container::inplace_alignment<alignof(std::max_align_t)>>>;
using Strings = std::vector<MaybeString>;
using Objects = boost::container::small_vector<ObjectRef, 1>;
using Cells = std::vector<OwnedArray>;

// Element by element, the fields of one element in the order of their names.
struct Fields {
  Fields(std::vector<std::string> fieldNames, Cells fieldValues)
      : names(std::move(fieldNames)), values(std::move(fieldValues)) {}

  std::vector<std::string> names;
  Cells values;

  std::size_t indexOf(std::string_view name) const noexcept;  // names.size() when there is none
};

using Store = std::variant<Plain, Strings, Fields, Cells, Objects>;

// Bytes of one element of a class that is stored plainly, 0 for any other.
std::size_t plainSize(ClassId id) noexcept;

[[noreturn]] void raiseWrongClass(kestrel_array const& array, char const* wanted);
[[noreturn]] void raiseTooLarge(Dimensions const& dimensions);
void checkIndex(kestrel_array const& array, std::size_t index);

// The number of elements of an array that is to be made, each of which takes that many bytes. Raises TooLarge where the
// block of them would be longer than any object can be: a product that wrapped around would give a block too short.
inline std::size_t checkedCount(Dimensions const& dimensions, std::size_t elementBytes) {
  std::size_t count = 0;
  std::ptrdiff_t bytes = 0;
  if (__builtin_mul_overflow(dimensions.rows, dimensions.columns, &count) ||
      __builtin_mul_overflow(count, elementBytes, &bytes))
    raiseTooLarge(dimensions);
  return count;
}

}  // namespace kestrel::detail

struct kestrel_array {
  // Builds the store where it stays: a scalar is made in nearly every read of a property.
  template <class T, class... Arguments>
  kestrel_array(kestrel::ClassId classId, kestrel::Dimensions const& size, std::in_place_type_t<T> kind,
                Arguments&&... arguments)
      : id(classId), dimensions(size), store(kind, std::forward<Arguments>(arguments)...) {}
  kestrel_array(kestrel_array const&) = delete;
  kestrel_array& operator=(kestrel_array const&) = delete;

  static void* operator new(std::size_t size) { return kestrel::detail::ArrayBlock::take(size); }
  static void operator delete(void* block) noexcept { kestrel::detail::ArrayBlock::give(block); }

  kestrel::ClassId id;
  kestrel::Dimensions dimensions;
  kestrel::Identifier ownClass;  // of an object or built-in based array; empty for the others
  kestrel::detail::Store store;
};

namespace kestrel::detail {

template <class T, class... Arguments>
OwnedArray makeArray(ClassId id, Dimensions const& dimensions, Arguments&&... arguments) {
  return OwnedArray(new kestrel_array(id, dimensions, std::in_place_type<T>, std::forward<Arguments>(arguments)...));
}

// What an array holds in its cells, or in its fields; null for an array that holds no others.
inline Cells* cellsOf(kestrel_array& array) noexcept {
  if (Cells* const cells = std::get_if<Cells>(&array.store)) return cells;
  Fields* const fields = std::get_if<Fields>(&array.store);
  return fields != nullptr ? &fields->values : nullptr;
}
inline Cells const* cellsOf(kestrel_array const& array) noexcept { return cellsOf(const_cast<kestrel_array&>(array)); }

// The store of that kind; raises WrongClass for an array of another one.
template <class T>
T& storeAs(kestrel_array& array, char const* wanted) {
  if (T* store = std::get_if<T>(&array.store)) return *store;
  raiseWrongClass(array, wanted);
}
template <class T>
T const& storeAs(kestrel_array const& array, char const* wanted) {
  return storeAs<T>(const_cast<kestrel_array&>(array), wanted);
}

// An element of a store of that kind; raises WrongClass, OutOfRange.
template <class T>
typename T::value_type& slotAt(kestrel_array& array, std::size_t index, char const* wanted) {
  T& store = storeAs<T>(array, wanted);
  checkIndex(array, index);
  return store[index];
}
template <class T>
typename T::value_type const& slotAt(kestrel_array const& array, std::size_t index, char const* wanted) {
  return slotAt<T>(const_cast<kestrel_array&>(array), index, wanted);
}

}  // namespace kestrel::detail
