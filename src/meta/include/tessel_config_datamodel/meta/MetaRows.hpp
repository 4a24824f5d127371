// The rows from which a metamodel is made: what a generated meta package knows of each package, type, property and
// literal. Ownership: plain values that point at the handles of a meta package; used while that one is built. Thread
// rule: under the registry's mutex.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "plinth/meta/AbstractMetaPackage.hpp"
#include "plinth/meta/Serializers.hpp"
#include "tessel_config_datamodel/frame/PropertyDescriptor.hpp"

namespace tessel::metamodel {

/// A type of this model, by its handle, or of another one, by its name in the registry.
struct TypeReference {
  plinth::meta::Type const* handle = nullptr;
  char16_t const* name = nullptr;
};

struct PropertyRow {
  plinth::meta::Property* handle;
  char16_t const* name;
  char const* uuid;
  TypeReference type;
  plinth::meta::ValueFlags flags;
  bool isComposite;
  bool isOrdered;
  bool isUnique;
  bool isDerived;
  bool isTransient;
  bool isHidden;
  int index;                          ///< 0: none
  char16_t const* defaultText;        ///< null: none
  plinth::meta::Property* qualifier;  ///< null: none
  plinth::meta::Property* opposite;   ///< null: none
};

struct OperationRow {
  plinth::meta::Operation* handle;
  char16_t const* name;
  char const* uuid;
  TypeReference type;
};

/// A class or a datatype.
struct StructuredTypeRow {
  plinth::meta::Class* classHandle;        ///< null for a datatype
  plinth::meta::DataType* dataTypeHandle;  ///< null for a class
  char16_t const* name;
  char const* qualifiedName;
  char const* nativeName;
  char const* uuid;
  bool isAbstract;
  bool isHidden;
  TypeReference superclass;  ///< neither for a root class and for datatypes
  std::vector<PropertyRow> properties;
  std::vector<OperationRow> operations;
  frame::ClassTable* table;  ///< of a class
  plinth::meta::CollectionFactory collections;
  plinth::meta::BuilderFactory builders;                              ///< null for an abstract class and for datatypes
  std::unique_ptr<plinth::meta::DatatypeSerializer> (*serializer)();  ///< of a datatype

  plinth::meta::Type type() const {
    return classHandle != nullptr ? plinth::meta::Type(*classHandle) : plinth::meta::Type(*dataTypeHandle);
  }
};

struct LiteralRow {
  plinth::meta::EnumLiteral* handle;
  char16_t const* name;
  int value;
  char const* uuid;
};

struct EnumRow {
  plinth::meta::Enum* handle;
  char16_t const* name;
  char const* qualifiedName;
  char const* nativeName;
  char const* uuid;
  std::vector<LiteralRow> literals;
  plinth::meta::CollectionFactory collections;
  void (*registerSerializers)(plinth::meta::PropertySerializerRegistry& registry, plinth::meta::Enum const& type);
};

struct PrimitiveRow {
  plinth::meta::PrimitiveType* handle;
  char const* name;
};

struct PackageRows {
  plinth::meta::Package* handle;
  char16_t const* name;
  char16_t const* uri;
  plinth::meta::Package* parent;
  std::vector<StructuredTypeRow> types{};  ///< classes and datatypes by simple name
  std::vector<PrimitiveRow> primitives{};
  std::vector<EnumRow> enums{};
};

/// The root of a model.
struct RootRow {
  plinth::meta::Package* handle;
  char const* modelName;  ///< its UUID is the root package's
  char16_t const* uri;
  std::vector<std::u16string> importedUris;
  std::vector<void (*)()> imports;  ///< brings up the meta packages that this one takes types from
};

}  // namespace tessel::metamodel
