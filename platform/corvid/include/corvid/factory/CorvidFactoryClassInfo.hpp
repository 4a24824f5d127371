// Class descriptions from C++ types: the names, and what a script object of the class is: a handle on a native, or the
// owner of a value. Thread rule: the host's thread.
#pragma once

#include <string>
#include <utility>

#include "corvid/CorvidClassInfo.hpp"
#include "corvid/factory/BindingRegistry.hpp"
#include "groundwork/export.hpp"

namespace corvid::factory {

class TESSEL_EXPORT CorvidFactoryClassInfo : public CorvidClassInfo {
 public:
  CorvidFactoryClassInfo(std::string name, std::string fullName)
      : m_name(std::move(name)), m_fullName(std::move(fullName)) {}

  std::string const& getName() const override { return m_name; }
  std::string const& getFullName() const override { return m_fullName; }

 private:
  std::string m_name;
  std::string m_fullName;
};

/// A reference class: a script object is a handle on a native T. With DefaultCreatable a default instance is a new T,
/// which the binding then owns.
template <class T, bool DefaultCreatable>
class HandleClassInfo : public CorvidFactoryClassInfo {
 public:
  using CorvidFactoryClassInfo::CorvidFactoryClassInfo;

  void* createDefaultInstance() const override {
    if constexpr (DefaultCreatable) {
      return new T();
    } else {
      return nullptr;
    }
  }
  void destroyInstance(void* native) const override {
    bool const removed = basic::BindingRegistry::remove(native);
    if constexpr (DefaultCreatable) {
      if (removed) delete static_cast<T*>(native);
    }
  }
  bool isHandle() const override { return true; }
};

/// A value class: a script object owns a Stored, made from a T.
template <class T, class Stored>
class NonHandleClassInfo : public CorvidFactoryClassInfo {
 public:
  using CorvidFactoryClassInfo::CorvidFactoryClassInfo;

  void* createDefaultInstance() const override { return new Stored(T()); }
  void destroyInstance(void* native) const override { delete static_cast<Stored*>(native); }
  void* copyInstance(void const* native) const override { return new Stored(*static_cast<Stored const*>(native)); }
  bool isHandle() const override { return false; }
};

}  // namespace corvid::factory
