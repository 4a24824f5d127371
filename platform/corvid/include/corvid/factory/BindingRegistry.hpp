// The map between native objects and script objects: a native that scripts hold has one script object, so that scripts
// can compare and recognise it.
//
// Ownership: the registry counts nothing on the native's side. Who announces a handle takes a reference on the native
// when the announcement was new; the class's destroyInstance, called when the script object goes, drops it. Thread
// rule: the host's thread.
#pragma once

#include "corvid/Identifier.hpp"
#include "groundwork/export.hpp"
#include "kestrel/ArrayBase.hpp"

namespace corvid::factory::basic {

class TESSEL_EXPORT BindingRegistry {
 public:
  /// Makes a copy of a native value.
  using Copier = void* (*)(void const* native);

  /// The script object of a native, in a 1 by 1 array; a new one of the named class if there is none yet, and `isNew`
  /// tells so. Null gives an empty array of the class. Raises NoSuchClass, with nothing bound.
  [[nodiscard]] static kestrel::OwnedArray announce(void* native, Identifier className, bool& isNew);

  /// Binds the object that a constructor was given to a native, under a class that is its own or a subclass. With
  /// `stored` the native is known to announce from now on; without, the object owns it as its value. If the native has
  /// a script object already (a listener may have announced it), that one takes the place of the new object in `self`.
  /// True when the binding is new.
  static bool announceForConstructor(void* native, Identifier className, kestrel_array& self, bool stored);

  /// A new script object that owns `native` as its value; the copier, or without one the class, copies it when the
  /// object is copied. When this raises NoSuchClass the native is still the caller's.
  [[nodiscard]] static kestrel::OwnedArray announceWithoutStoring(void* native, Identifier className, Copier copier);

  /// Parts a native from its script object, which is stale from then on. True when there was one: whoever holds a
  /// reference for the binding then drops it.
  [[nodiscard]] static bool remove(void* native) noexcept;
};

}  // namespace corvid::factory::basic
