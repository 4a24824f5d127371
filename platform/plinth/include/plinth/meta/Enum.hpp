// Enumerations and their literals.
// Ownership and thread rule: see Element.hpp.
#pragma once

#include <vector>

#include "plinth/meta/Type.hpp"

namespace plinth::meta {

class EnumLiteralImpl;
class EnumImpl;

class TESSEL_EXPORT EnumLiteral : public ModelElement {
 public:
  using Impl = EnumLiteralImpl;
  EnumLiteral() noexcept = default;
  explicit EnumLiteral(EnumLiteralImpl* impl) noexcept;
  static Class const& metaClass();
  EnumLiteralImpl* impl() const noexcept;
  EnumLiteralImpl* operator->() const noexcept { return impl(); }
};

class TESSEL_EXPORT Enum : public Type {
 public:
  using Impl = EnumImpl;
  Enum() noexcept = default;
  explicit Enum(EnumImpl* impl) noexcept;
  static Class const& metaClass();
  EnumImpl* impl() const noexcept;
  EnumImpl* operator->() const noexcept { return impl(); }
};

class TESSEL_EXPORT EnumLiteralImpl : public MetaElementImpl {
 public:
  EnumLiteralImpl(Model const& model, boost::uuids::uuid const& uuid, int value)
      : MetaElementImpl(model, uuid, CoreClass::ENUM_LITERAL), m_value(value) {}

  int value() const noexcept { return m_value; }
  EnumImpl* parentEnum() const noexcept { return m_parentEnum; }
  void setParentEnum(Enum const& parent);
  /// The public identifier; empty where the literal has none and goes by its name.
  std::u16string const& publicIdentifier() const noexcept { return m_publicIdentifier; }
  void setPublicIdentifier(std::u16string identifier);

 private:
  int m_value;
  EnumImpl* m_parentEnum = nullptr;
  std::u16string m_publicIdentifier;
};

class TESSEL_EXPORT EnumImpl : public TypeImpl {
 public:
  EnumImpl(Model const& model, boost::uuids::uuid const& uuid, std::string const& qualifiedName)
      : TypeImpl(model, uuid, CoreClass::ENUM, qualifiedName) {}

  /// In the order of their creation.
  std::vector<EnumLiteralImpl*> const& getLiterals() const noexcept { return m_literals; }
  /// The first literal of that value, or null.
  EnumLiteralImpl const* findByValue(int value) const noexcept;
  EnumLiteralImpl const* findByName(std::u16string const& name) const noexcept;
  /// By public identifier, or by name for a literal that has none.
  EnumLiteralImpl const* findByPublicIdentifier(std::u16string const& identifier) const noexcept;
  TypeImpl* underlyingType() const noexcept { return m_underlyingType; }
  void setUnderlyingType(Type const& type);

  void basicDisassociateAll() override;
  void doDestroy(bool flag1, bool flag2) override;

 private:
  friend class EnumLiteralImpl;
  std::vector<EnumLiteralImpl*> m_literals;
  TypeImpl* m_underlyingType = nullptr;
};

inline EnumLiteral::EnumLiteral(EnumLiteralImpl* impl) noexcept : ModelElement(impl) {}
inline EnumLiteralImpl* EnumLiteral::impl() const noexcept {
  return static_cast<EnumLiteralImpl*>(ModelElement::impl());
}
inline Enum::Enum(EnumImpl* impl) noexcept : Type(impl) {}
inline EnumImpl* Enum::impl() const noexcept { return static_cast<EnumImpl*>(ModelElement::impl()); }

}  // namespace plinth::meta
