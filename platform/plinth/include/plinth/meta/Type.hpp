// Types: primitive types, datatypes and classes.
// Ownership and thread rule: see Element.hpp.
#pragma once

#include <memory>
#include <vector>

#include "plinth/meta/Element.hpp"

namespace plinth {
class AbstractOwnedCollection;
}

namespace plinth::meta {

/// Makes an empty collection of a type for an owner and a property.
using CollectionFactory = AbstractOwnedCollection* (*)(ModelElement const& owner, Property const& property);
/// Makes a builder that has been told nothing.
using BuilderFactory = std::unique_ptr<ModelElementBuilder> (*)(Model const& model);

class TESSEL_EXPORT Type : public ModelElement {
 public:
  using Impl = TypeImpl;
  Type() noexcept = default;
  explicit Type(TypeImpl* impl) noexcept;
  static Class const& metaClass();
  TypeImpl* impl() const noexcept;
  TypeImpl* operator->() const noexcept { return impl(); }
};

class TESSEL_EXPORT TypeImpl : public MetaElementImpl {
 public:
  /// The dotted qualified name; a primitive type has a simple one.
  std::u16string const& getQualifiedName() const noexcept { return m_qualifiedName; }
  std::string const& narrowName() const noexcept { return m_narrowName; }
  /// Whether this is a ClassImpl.
  bool isClass() const noexcept { return coreClass() == CoreClass::CLASS; }
  PackageImpl* owningPackage() const noexcept { return m_owningPackage; }
  void setOwningPackage(Package const& package);
  bool isCorvidHidden() const noexcept { return m_corvidHidden; }
  void setIsCorvidHidden(bool hidden);
  CollectionFactory collectionFactory() const noexcept { return m_collectionFactory; }

  /// The properties that this type declares itself, in metamodel order.
  std::vector<PropertyImpl*> const& ownProperties() const noexcept { return m_properties; }
  std::vector<OperationImpl*> const& ownOperations() const noexcept { return m_operations; }

  void basicDisassociateAll() override;
  void doDestroy(bool flag1, bool flag2) override;

 protected:
  TypeImpl(Model const& model, boost::uuids::uuid const& uuid, CoreClass coreClass, std::string qualifiedName);

 private:
  friend class MetaRegistry;
  friend class PropertyImpl;
  friend class OperationImpl;

  std::u16string m_qualifiedName;
  std::string m_narrowName;
  PackageImpl* m_owningPackage = nullptr;
  std::vector<PropertyImpl*> m_properties;
  std::vector<OperationImpl*> m_operations;
  CollectionFactory m_collectionFactory = nullptr;
  bool m_corvidHidden = false;
};

class TESSEL_EXPORT PrimitiveType : public Type {
 public:
  using Impl = class PrimitiveTypeImpl;
  PrimitiveType() noexcept = default;
  explicit PrimitiveType(PrimitiveTypeImpl* impl) noexcept;
  static Class const& metaClass();
};

class TESSEL_EXPORT PrimitiveTypeImpl : public TypeImpl {
 public:
  PrimitiveTypeImpl(Model const& model, boost::uuids::uuid const& uuid, std::string const& name)
      : TypeImpl(model, uuid, CoreClass::PRIMITIVE, name) {}
};

/// A type with properties.
class TESSEL_EXPORT StructuredType : public Type {
 public:
  using Type::Type;
  static Class const& metaClass();
};

class TESSEL_EXPORT DataType : public StructuredType {
 public:
  using Impl = class DataTypeImpl;
  DataType() noexcept = default;
  explicit DataType(DataTypeImpl* impl) noexcept;
  static Class const& metaClass();
};

class TESSEL_EXPORT DataTypeImpl : public TypeImpl {
 public:
  DataTypeImpl(Model const& model, boost::uuids::uuid const& uuid, std::string const& qualifiedName)
      : TypeImpl(model, uuid, CoreClass::DATATYPE, qualifiedName) {}
};

class TESSEL_EXPORT Class : public StructuredType {
 public:
  using Impl = ClassImpl;
  Class() noexcept = default;
  explicit Class(ClassImpl* impl) noexcept;
  static Class const& metaClass();
  ClassImpl* impl() const noexcept;
  ClassImpl* operator->() const noexcept { return impl(); }
};

class TESSEL_EXPORT ClassImpl : public TypeImpl {
 public:
  ClassImpl(Model const& model, boost::uuids::uuid const& uuid, std::string const& qualifiedName, bool isAbstract)
      : TypeImpl(model, uuid, CoreClass::CLASS, qualifiedName), m_abstract(isAbstract) {}

  bool isAbstract() const noexcept { return m_abstract; }
  /// Numbers the classes of the process from 0 in the order in which they were made: a place in tables by class.
  std::uint32_t ordinal() const noexcept { return m_ordinal; }
  Class getSuperclass() const noexcept { return Class(m_superclass); }
  ClassImpl* superclass() const noexcept { return m_superclass; }
  void setSuperclass(Class const& superclass);

  /// True when this class is `type` or a subclass of it. O(length of the base chain).
  virtual bool conformsTo(TypeImpl const& type) const noexcept;
  /// A builder for an element of this class. Raises CannotCreateAbstractClass.
  std::unique_ptr<ModelElementBuilder> instantiateBuilder(Model const& model) const;
  /// All properties along the base chain, the root's first.
  std::vector<PropertyImpl*> allProperties() const;
  /// The property of that name along the base chain, or null.
  PropertyImpl* findProperty(std::u16string const& name) const noexcept;

 private:
  friend class MetaRegistry;
  static std::uint32_t nextOrdinal() noexcept;

  ClassImpl* m_superclass = nullptr;
  BuilderFactory m_builderFactory = nullptr;
  std::uint32_t m_ordinal = nextOrdinal();
  bool m_abstract;
};

inline Type::Type(TypeImpl* impl) noexcept : ModelElement(impl) {}
inline TypeImpl* Type::impl() const noexcept { return static_cast<TypeImpl*>(ModelElement::impl()); }
inline PrimitiveType::PrimitiveType(PrimitiveTypeImpl* impl) noexcept : Type(impl) {}
inline DataType::DataType(DataTypeImpl* impl) noexcept : StructuredType(impl) {}
inline Class::Class(ClassImpl* impl) noexcept : StructuredType(impl) {}
inline ClassImpl* Class::impl() const noexcept { return static_cast<ClassImpl*>(ModelElement::impl()); }

}  // namespace plinth::meta

namespace plinth {
template <class T, class>
T element_cast(ModelElement const& element) {
  if (element.isEmpty() || !element->getMetaClass()->conformsTo(*T::metaClass().impl())) return T();
  return T(static_cast<typename T::Impl*>(element.impl()));
}
}  // namespace plinth
