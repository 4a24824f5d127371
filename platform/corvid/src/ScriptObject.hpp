// The object that a script holds: a handle on a native, or the owner of a value.
// Ownership: counted by the host arrays that hold it; the class's destroyInstance lets go of the native with the last
// one. Thread rule: the host's thread.
#pragma once

#include "corvid/CorvidClass.hpp"
#include "corvid/factory/BindingRegistry.hpp"
#include "kestrel/Object.hpp"

namespace corvid {

class ScriptObject final : public kestrel::Object {
 public:
  using Copier = factory::basic::BindingRegistry::Copier;

  /// Bound to nothing yet.
  explicit ScriptObject(CorvidClass& hostClass);

  void addRef() noexcept override { ++m_references; }
  void release() noexcept override {
    if (--m_references == 0) delete this;
  }
  Identifier className() const noexcept override { return m_class->getFullName(); }
  void* native(Identifier className) const noexcept override;
  bool isLive() const noexcept override;
  /// A value is copied, a handle shared.
  kestrel::ObjectRef copyForContainment() override;
  /// Values are compared by the method "eq" of their class.
  bool equals(kestrel::Object const& other) const override;

  CorvidClass const& hostClass() const noexcept { return *m_class; }
  bool isBound() const noexcept { return m_native != nullptr; }
  /// `hostClass` is the class of the object or a subclass of it.
  void bind(CorvidClass& hostClass, void* native) noexcept;
  void bindValue(CorvidClass& hostClass, void* native, Copier copier) noexcept;
  void unbind() noexcept { m_native = nullptr; }

 private:
  ~ScriptObject();

  CorvidClass* m_class;
  void* m_native = nullptr;
  Copier m_copier = nullptr;
  bool m_ownsValue = false;
  std::size_t m_references = 0;
};

}  // namespace corvid
