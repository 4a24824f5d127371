// Property descriptions made of a getter object and a setter object.
// Thread rule: the host's thread.
#pragma once

#include <memory>
#include <string>

#include "corvid/CorvidPropInfo.hpp"
#include "groundwork/export.hpp"

namespace corvid::factory::impl {

class TESSEL_EXPORT PropertyImplBase : public CorvidPropInfo {
 public:
  PropertyImplBase(Identifier name, unsigned flags) : m_name(name), m_flags(flags) {}

  Identifier getName() const override { return m_name; }
  std::string const& getDescription() const override { return m_description; }
  unsigned getFlags() const override { return m_flags; }

 private:
  Identifier m_name;
  std::string m_description;
  unsigned m_flags;
};

/// Reads a property of self.
class TESSEL_EXPORT PropertyGetter : public HostAllocated {
 public:
  virtual ~PropertyGetter();
  virtual Identifier dataType() const = 0;
  virtual Multiplicity multiplicity() const = 0;
  virtual kestrel::OwnedArray get(kestrel_array const& self) const = 0;
};

/// Writes a property of self.
class TESSEL_EXPORT PropertySetter : public HostAllocated {
 public:
  virtual ~PropertySetter();
  virtual void set(kestrel_array const& self, kestrel_array const& value) const = 0;
};

/// Without a setter the property is read-only.
class TESSEL_EXPORT PropertyImpl final : public PropertyImplBase {
 public:
  PropertyImpl(Identifier name, unsigned flags, std::unique_ptr<PropertyGetter> getter,
               std::unique_ptr<PropertySetter> setter);

  Identifier getDataType() const override { return m_getter->dataType(); }
  Multiplicity getMultiplicity() const override { return m_getter->multiplicity(); }
  bool isReadOnly() const override { return m_setter == nullptr; }
  kestrel::OwnedArray getValue(kestrel_array const& self) const override { return m_getter->get(self); }
  /// Raises ReadOnlyProperty without a setter.
  void setValue(kestrel_array const& self, kestrel_array const& value) const override;

 private:
  std::unique_ptr<PropertyGetter> m_getter;
  std::unique_ptr<PropertySetter> m_setter;
};

}  // namespace corvid::factory::impl
