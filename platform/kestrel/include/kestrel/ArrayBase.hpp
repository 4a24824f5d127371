// Host arrays: what holds for every class of array. An array is opaque, has two dimensions, and is reached by free
// functions; the headers beside this one create and read the single classes. Whatever makes an array raises ArrayError
// "Kestrel:array:TooLarge" for dimensions that no memory could hold, and std::bad_alloc where there is too little of
// it.
//
// Ownership: each array has one owner, an OwnedArray or, for an array held by a property of an element, a
// PropertyArray. Raw pointers borrow. Arrays take no locks: one array is used from one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "groundwork/export.hpp"
#include "kestrel/ClassId.hpp"
#include "kestrel/Identifier.hpp"

struct kestrel_array;

namespace kestrel {

struct Dimensions {
  std::size_t rows = 0;
  std::size_t columns = 0;

  std::size_t count() const noexcept { return rows * columns; }
  friend bool operator==(Dimensions left, Dimensions right) noexcept {
    return left.rows == right.rows && left.columns == right.columns;
  }
  friend bool operator!=(Dimensions left, Dimensions right) noexcept { return !(left == right); }
};

inline constexpr Dimensions EMPTY{0, 0};
inline constexpr Dimensions SCALAR{1, 1};

/// Dimensions of a row of that many elements; none gives the empty 0 by 0.
constexpr Dimensions row(std::size_t count) noexcept { return count == 0 ? EMPTY : Dimensions{1, count}; }

/// Frees an array and all that it holds, releasing its objects; accepts null.
TESSEL_EXPORT void destroy(kestrel_array* array) noexcept;

struct ArrayDeleter {
  void operator()(kestrel_array* array) const noexcept { destroy(array); }
};
using OwnedArray = std::unique_ptr<kestrel_array, ArrayDeleter>;

/// Releases an array that a property holds.
struct PropertyArrayDeleter {
  void operator()(kestrel_array* array) const noexcept { destroy(array); }
};
using PropertyArray = std::unique_ptr<kestrel_array, PropertyArrayDeleter>;

/// The copy that a property keeps of an array that it is given; null for null. Cost: as deepCopy.
[[nodiscard]] TESSEL_EXPORT PropertyArray copyForPropertyContainment(kestrel_array const* array);

/// A copy that shares nothing changeable with the original: fields, cells and value objects are copied as well, handles
/// to living things are held by both. Null gives null. Cost: linear in what the array holds.
[[nodiscard]] TESSEL_EXPORT OwnedArray deepCopy(kestrel_array const* array);

/// An empty 0 by 0 array of a class. An object array made so has an empty class name.
[[nodiscard]] TESSEL_EXPORT OwnedArray createEmpty(ClassId id);

/// The representation class, without the flag of built-in based classes.
TESSEL_EXPORT ClassId baseClass(kestrel_array const& array) noexcept;
/// The representation class as a number, with BUILT_IN_BASED_FLAG where the array has a class of its own.
TESSEL_EXPORT std::uint32_t classIdentifier(kestrel_array const& array) noexcept;
/// The name of the array's class: "double", "logical", "char", "string", "struct", "cell" and so on, the class of an
/// object array, or the class given to a built-in based array.
TESSEL_EXPORT Identifier className(kestrel_array const& array) noexcept;
/// "double" for Double and so on; "object" for Object.
TESSEL_EXPORT Identifier nameOf(ClassId id) noexcept;

TESSEL_EXPORT Dimensions dimensions(kestrel_array const& array) noexcept;
TESSEL_EXPORT std::size_t numberOfElements(kestrel_array const& array) noexcept;
[[nodiscard]] inline bool isEmpty(kestrel_array const& array) noexcept { return numberOfElements(array) == 0; }
inline bool isScalar(kestrel_array const& array) noexcept { return numberOfElements(array) == 1; }
inline bool isStruct(kestrel_array const& array) noexcept { return baseClass(array) == ClassId::Struct; }
/// Whether the elements are numbers or logical values, whatever class stands over them.
TESSEL_EXPORT bool isNumeric(kestrel_array const& array) noexcept;

/// Makes a built-in based array: the same representation under a class of its own, as a member of an enumeration is an
/// int32 under the class of the enumeration. Raises ArrayError for an object array or for an empty name.
[[nodiscard]] TESSEL_EXPORT OwnedArray createBuiltInBased(Identifier className, OwnedArray representation);

/// Equality of class, dimensions and contents. Fields are compared by name and in order; numbers by value, except that
/// NaN equals NaN, as a missing string equals a missing string; objects by their own equality. Null equals only null.
[[nodiscard]] TESSEL_EXPORT bool equalContents(kestrel_array const* left, kestrel_array const* right);

/// How many arrays exist in the process, fields and cells included: the measure of a leak.
TESSEL_EXPORT std::ptrdiff_t liveArrayCount() noexcept;

}  // namespace kestrel
