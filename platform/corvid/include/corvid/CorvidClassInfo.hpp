// The description of a class, by whoever provides it. The host owns it and asks it.
// Thread rule: the host's thread.
#pragma once

#include <string>

#include "corvid/HostAllocated.hpp"
#include "groundwork/export.hpp"

namespace corvid {

class CorvidClass;

enum class Access { Public, Protected, Private };

class TESSEL_EXPORT CorvidClassInfo : public HostAllocated {
 public:
  virtual ~CorvidClassInfo();

  virtual std::string const& getName() const = 0;
  virtual std::string const& getFullName() const = 0;
  virtual Access getAccess() const { return Access::Public; }

  /// Adds superclasses and members to the host's class object, at the first use of the class. What it raises passes to
  /// the user of the class; the class is then as before.
  virtual void initializeClass(CorvidClass* hostClass) = 0;

  /// A native object with default values, null for a class that has none.
  virtual void* createDefaultInstance() const { return nullptr; }
  /// Called once when the script object that a native is bound to goes: lets go of the native.
  virtual void destroyInstance(void* native) const = 0;
  /// A copy of a value's native, null for a handle class: its script objects are shared by copies of an array.
  virtual void* copyInstance(void const*) const { return nullptr; }

  /// True when a script object is a handle on a native that lives elsewhere, false when it owns its value.
  virtual bool isHandle() const = 0;
  virtual bool isHandleCompatible() const { return isHandle(); }
  /// A hidden class works as any other, and is left out of listings.
  virtual bool isHidden() const { return false; }
  virtual bool isAbstract() const { return false; }
  virtual bool isEnumeration() const { return false; }
  virtual bool isConstructedOnLoad() const { return true; }

  /// Whether a native that a script object is bound to can still be used. The host refuses every access to one that
  /// can't.
  virtual bool isLive(void const* native) const { return native != nullptr; }
};

}  // namespace corvid
