// Object arrays: counted references to objects, under the name of a class. Elements may be of different classes; such
// an array is created under HETEROGENEOUS, and whoever knows the classes settles the name of their common class later.
//
// Asking an array of another class raises ArrayError "Kestrel:array:WrongClass", an index beyond the end OutOfRange.
#pragma once

#include "kestrel/ArrayBase.hpp"
#include "kestrel/Object.hpp"

namespace kestrel {

/// The class of an array whose elements have no settled common class yet.
constexpr char const* HETEROGENEOUS = "kestrel.mixin.Heterogeneous";

/// An array with no object in any element.
[[nodiscard]] TESSEL_EXPORT OwnedArray createObjects(Identifier className, Dimensions dimensions);
/// A 1 by 1 array of an object, under the object's own class. Raises ArrayError "Kestrel:array:NoObject" for null.
[[nodiscard]] TESSEL_EXPORT OwnedArray createObject(ObjectRef object);

inline bool isObject(kestrel_array const& array) noexcept { return baseClass(array) == ClassId::Object; }

/// The object of an array of exactly one; null, borrowed, for any other array. Never raises.
[[nodiscard]] TESSEL_EXPORT Object* soleObject(kestrel_array const& array) noexcept;
/// Null where no object was put.
TESSEL_EXPORT ObjectRef const& object(kestrel_array const& array, std::size_t index = 0);
TESSEL_EXPORT void setObject(kestrel_array& array, std::size_t index, ObjectRef object);
TESSEL_EXPORT void setObjectClass(kestrel_array& array, Identifier className);

}  // namespace kestrel
