// The element of an object array: a counted interface to something that lives outside the array.
//
// Whoever implements it decides what is counted and how; arrays only add and release. The count must be atomic if
// arrays with the same object are used from several threads.
#pragma once

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include "groundwork/export.hpp"
#include "kestrel/Identifier.hpp"

namespace kestrel {

class TESSEL_EXPORT Object {
 public:
  virtual void addRef() noexcept = 0;
  virtual void release() noexcept = 0;

  /// The dotted name of the object's own class.
  virtual Identifier className() const noexcept = 0;

  /// The native object behind this one, seen as the named class; null when the object is not of that class, or when its
  /// native is gone. Borrowed: it lives as long as its own owner says, at least until this object is released.
  virtual void* native(Identifier) const noexcept { return nullptr; }

  /// False once what the object stands for cannot be used any more.
  virtual bool isLive() const noexcept { return true; }

  /// What a deep copy of an array holds in this object's place: the object itself (the default, right for handles), or
  /// a new object (right for values). Never empty.
  [[nodiscard]] virtual boost::intrusive_ptr<Object> copyForContainment();

  /// Equality of contents; identity unless overridden.
  virtual bool equals(Object const& other) const { return this == &other; }

 protected:
  Object() = default;
  Object(Object const&) = default;
  Object& operator=(Object const&) = default;
  ~Object() = default;
};

using ObjectRef = boost::intrusive_ptr<Object>;

inline void intrusive_ptr_add_ref(Object* object) noexcept { object->addRef(); }
inline void intrusive_ptr_release(Object* object) noexcept { object->release(); }

}  // namespace kestrel
