// From the host's self argument to the native object.
// Thread rule: the host's thread.
#pragma once

#include "corvid/Identifier.hpp"
#include "groundwork/export.hpp"
#include "kestrel/ArrayBase.hpp"

namespace corvid::factory {

/// How natives of type T are reached; whoever binds a type specialises it. It has
///   using Self = ...;                       what an adapter works on: a counted handle, or a pointer
///   static Identifier className();          the class under which T's script objects bind their natives
///   static Self fromNative(void* native);   null gives an empty Self
/// and `Self` converts to bool: true when the native can be used.
template <class T, class Enable = void>
struct SelfTraits;

/// SelfTraits of a type whose natives are reached by plain pointer; className() is left to the specialisation.
template <class T>
struct PointerSelf {
  using Self = T*;
  static Self fromNative(void* native) { return static_cast<T*>(native); }
};

namespace impl {

/// The native bound to the first object of an array under a class; null when the array has no element, or its object is
/// of another class or parted from its native.
[[nodiscard]] TESSEL_EXPORT void* nativeOf(kestrel_array const& self, Identifier className, std::size_t index = 0);

[[noreturn]] TESSEL_EXPORT void reportInvalidSelf(Identifier className);

template <class T>
[[nodiscard]] typename SelfTraits<T>::Self selfOf(kestrel_array const& self, std::size_t index = 0) {
  return SelfTraits<T>::fromNative(nativeOf(self, SelfTraits<T>::className(), index));
}

/// Raises InvalidHandle for a self that is empty, stale or dead.
template <class T>
void validateSelfPointer(typename SelfTraits<T>::Self const& self) {
  if (!self) reportInvalidSelf(SelfTraits<T>::className());
}

}  // namespace impl
}  // namespace corvid::factory
