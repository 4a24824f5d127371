// Properties of classes and datatypes, and operations.
// Ownership and thread rule: see Element.hpp.
#pragma once

#include <string>

#include "plinth/meta/Type.hpp"

namespace plinth::meta {

class TypedElementImpl;

/// A property or an operation.
class TESSEL_EXPORT TypedElement : public ModelElement {
 public:
  using Impl = TypedElementImpl;
  TypedElement() noexcept = default;
  explicit TypedElement(TypedElementImpl* impl) noexcept;
  static Class const& metaClass();
  TypedElementImpl* impl() const noexcept;
  TypedElementImpl* operator->() const noexcept { return impl(); }
};

class TESSEL_EXPORT TypedElementImpl : public MetaElementImpl {
 public:
  Type getType() const noexcept { return Type(m_type); }
  TypeImpl* type() const noexcept { return m_type; }
  void setType(Type const& type);
  bool isOrdered() const noexcept { return m_ordered; }
  void setIsOrdered(bool ordered);
  TypeImpl* owningType() const noexcept { return m_owningType; }
  /// Owner's qualified name, a point, the own name.
  std::u16string qualifiedName() const;

 protected:
  using MetaElementImpl::MetaElementImpl;
  TypeImpl* m_owningType = nullptr;

 private:
  TypeImpl* m_type = nullptr;
  bool m_ordered = true;
};

class TESSEL_EXPORT Property : public TypedElement {
 public:
  using Impl = PropertyImpl;
  Property() noexcept = default;
  explicit Property(PropertyImpl* impl) noexcept;
  static Class const& metaClass();
  PropertyImpl* impl() const noexcept;
  PropertyImpl* operator->() const noexcept { return impl(); }
};

class TESSEL_EXPORT PropertyImpl : public TypedElementImpl {
 public:
  PropertyImpl(Model const& model, boost::uuids::uuid const& uuid, ValueFlags flags, bool composite)
      : TypedElementImpl(model, uuid, CoreClass::PROPERTY), m_flags(flags), m_composite(composite) {}

  ValueFlags valueFlags() const noexcept { return m_flags; }
  bool isComposite() const noexcept { return m_composite; }
  bool isMany() const noexcept { return m_flags >= SEQUENCE; }
  bool isUnique() const noexcept { return m_unique; }
  void setIsUnique(bool unique);
  /// Complete with boost/optional.hpp.
  boost::optional<std::u16string> defaultValue() const;
  void setDefaultValue(boost::optional<std::u16string> text);
  bool isDerived() const noexcept { return m_derived; }
  void setIsDerived(bool derived);
  bool isTransient() const noexcept { return m_transient; }
  void setIsTransient(bool transient);
  bool isCorvidHidden() const noexcept { return m_corvidHidden; }
  void setIsCorvidHidden(bool hidden);
  /// The index along the class chain; 0 for derived properties and those of datatypes.
  int index() const noexcept { return m_index; }
  void setIndex(int index);
  Property getQualifiedBy() const noexcept { return Property(m_qualifiedBy); }
  PropertyImpl* qualifiedBy() const noexcept { return m_qualifiedBy; }
  void setQualifiedBy(Property const& qualifier);
  bool isQualificationUnique() const noexcept { return m_qualificationUnique; }
  void setIsQualificationUnique(bool unique);
  PropertyImpl* opposite() const noexcept { return m_opposite; }
  void setOpposite(Property const& opposite);
  void setOwningType(Type const& owner);
  /// The place among the owner's own properties, from 0.
  std::size_t position() const noexcept { return m_position; }

 private:
  ValueFlags m_flags;
  bool m_composite;
  bool m_hasDefault = false;
  bool m_unique = true;
  bool m_derived = false;
  bool m_transient = false;
  bool m_corvidHidden = false;
  bool m_qualificationUnique = false;
  int m_index = 0;
  std::size_t m_position = 0;
  PropertyImpl* m_qualifiedBy = nullptr;
  PropertyImpl* m_opposite = nullptr;
  std::u16string m_default;
};

class TESSEL_EXPORT Operation : public TypedElement {
 public:
  using Impl = OperationImpl;
  Operation() noexcept = default;
  explicit Operation(OperationImpl* impl) noexcept;
  static Class const& metaClass();
  OperationImpl* impl() const noexcept;
  OperationImpl* operator->() const noexcept { return impl(); }
};

class TESSEL_EXPORT OperationImpl : public TypedElementImpl {
 public:
  OperationImpl(Model const& model, boost::uuids::uuid const& uuid)
      : TypedElementImpl(model, uuid, CoreClass::OPERATION) {}

  struct Traits {
    bool isAbstract = false;
    bool isStatic = false;
    bool isPublic = true;
    bool isEvent = false;
    int lower = 1;
    int upper = 1;
  };
  Traits const& traits() const noexcept { return m_traits; }
  void setIsAbstract(bool value);
  void setIsStatic(bool value);
  void setIsPublic(bool value);
  void setIsEvent(bool value);
  void setLower(int lower);
  void setUpper(int upper);
  void setOwningType(Type const& owner);

 private:
  Traits m_traits;
};

inline TypedElement::TypedElement(TypedElementImpl* impl) noexcept : ModelElement(impl) {}
inline TypedElementImpl* TypedElement::impl() const noexcept {
  return static_cast<TypedElementImpl*>(ModelElement::impl());
}
inline Property::Property(PropertyImpl* impl) noexcept : TypedElement(impl) {}
inline PropertyImpl* Property::impl() const noexcept { return static_cast<PropertyImpl*>(ModelElement::impl()); }
inline Operation::Operation(OperationImpl* impl) noexcept : TypedElement(impl) {}
inline OperationImpl* Operation::impl() const noexcept { return static_cast<OperationImpl*>(ModelElement::impl()); }

}  // namespace plinth::meta
