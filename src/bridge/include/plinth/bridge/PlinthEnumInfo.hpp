// The description of an enumeration: its constructor, its members, and the methods of a member.
// Ownership: the host's. Thread rule: the host's thread.
#pragma once

#include <string>

#include "corvid/CorvidClass.hpp"
#include "corvid/CorvidEnumInfo.hpp"
#include "corvid/CorvidMethodInfo.hpp"
#include "corvid/factory/CorvidFactoryClassInfo.hpp"
#include "plinth/Value.hpp"
#include "plinth/bridge/ElementBinding.hpp"
#include "plinth/bridge/EmptyParentPackage.hpp"
#include "plinth/bridge/FromAnyAsStringTypeConverter.hpp"

namespace plinth::bridge {

namespace detail {

/// What the constructor of every enumeration is: it hands the argument to the constructor that the host itself gives to
/// the class.
class TESSEL_EXPORT EnumConstructor : public corvid::CorvidMethodInfo {
 public:
  explicit EnumConstructor(corvid::CorvidClass const& hostClass);

  corvid::Identifier getName() const override { return m_name; }
  std::string const& getDescription() const override { return m_description; }
  unsigned getAttributes() const override { return 0; }
  corvid::CorvidMethodSignature const& getSignature() const override { return m_signature; }
  void invoke(corvid::MethodCall& call) const override;

 private:
  corvid::Identifier m_name;
  corvid::Identifier m_className;
  std::string m_description;
  corvid::CorvidMethodSignature m_signature;
};

/// What every member is; its value is made when somebody first asks for it.
class TESSEL_EXPORT EnumValue : public corvid::CorvidEnumInfo {
 public:
  EnumValue(corvid::Identifier name, corvid::Identifier className, std::int32_t value)
      : m_name(name), m_className(className), m_value(value) {}

  corvid::Identifier getName() const override { return m_name; }
  kestrel_array const& getValue() const override;
  std::int32_t number() const noexcept { return m_value; }

 private:
  corvid::Identifier m_name;
  corvid::Identifier m_className;
  mutable kestrel::OwnedArray m_object;
  std::int32_t m_value;
};

/// Removes the ending " scalar".
TESSEL_EXPORT std::string withoutShape(std::string const& dataType);
/// Adds "getValue", "getLiteral" and "getPublicIdentifier".
TESSEL_EXPORT void addEnumMethods(corvid::CorvidClass& hostClass, meta::EnumImpl const& type);
/// The number of a member; 0 for an array that holds none of this class.
TESSEL_EXPORT std::int32_t numberOf(kestrel_array const& self, corvid::Identifier className);

}  // namespace detail

template <class E>
class Ctor final : public detail::EnumConstructor {
 public:
  using EnumConstructor::EnumConstructor;
};

template <class E>
class PlinthEnumValueInfo final : public detail::EnumValue {
 public:
  using EnumValue::EnumValue;
};

template <class E>
class PlinthEnumInfo : public corvid::factory::CorvidFactoryClassInfo {
 public:
  using Enumeration = E;
  using CorvidFactoryClassInfo::CorvidFactoryClassInfo;

  void initializeClass(corvid::CorvidClass* hostClass) override {
    if (m_underlyingType.empty()) m_underlyingType = detail::withoutShape("int32 scalar");
    hostClass->addSuperclass(corvid::internal::makeInterned(m_underlyingType), 0, 0, 1);
    hostClass->addMethod(std::make_unique<Ctor<E>>(*hostClass));
    auto const& type = static_cast<meta::EnumImpl const&>(*MetaTypeOf<E>::type());
    for (meta::EnumLiteralImpl const* literal : type.getLiterals())
      hostClass->addEnumValue(
          std::make_unique<PlinthEnumValueInfo<E>>(memberName(*literal), hostClass->getFullName(), literal->value()));
    detail::addEnumMethods(*hostClass, type);
  }

  void destroyInstance(void*) const override {}
  bool isHandle() const override { return false; }
  bool isEnumeration() const override { return true; }
  bool isConstructedOnLoad() const override { return false; }

 private:
  std::string m_underlyingType;
};

/// Adds an enumeration W to a package, with its class described and its conversions installed.
template <class W>
void addEnumeration(corvid::CorvidPackage& package, char const* name) {
  corvid::Identifier const fullName = addClass<W>(package, name)->getFullName();
  corvid::CorvidClass::requireClass(fullName);
  auto* const type = static_cast<meta::EnumImpl*>(MetaTypeOf<typename W::Enumeration>::type());
  FromAnyAsStringTypeConverter::install(fullName, meta::Enum(type));
}

}  // namespace plinth::bridge
