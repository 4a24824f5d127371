// The derived model: the tables with every name resolved and every fact computed that follows from them. A ModelSet
// owns all of it; pointers between its parts stay valid as long as it lives, as it is neither copied nor moved once
// filled. The linker fills in names and links, the derivation the rest; afterwards it is only read.
#pragma once

#include <boost/uuid/uuid.hpp>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "modelgen/Tables.hpp"

namespace modelgen {

struct Class;
struct Model;
struct Package;

enum class TypeKind { primitive, dataType, enumeration, classType };

struct Type {
  TypeKind kind = TypeKind::primitive;
  std::string name;
  std::string qualifiedName;         // for a primitive, its plain name
  Package const* package = nullptr;  // null for a primitive
  boost::uuids::uuid uuid{};
  std::string slot;  // member of the meta package that holds the handle; empty for a primitive
  Text const* doc = nullptr;
};

struct Property {
  PropertyRow const* row = nullptr;
  Type const* owner = nullptr;  // a class or a datatype
  std::string name;
  std::string qualifiedName;
  Type const* type = nullptr;
  Property const* source = nullptr;     // of a derived view: the collection that it narrows
  Property const* opposite = nullptr;   // the other end of a two-way reference
  Property const* qualifier = nullptr;  // of a map: the property of the element that gives the key

  Shape shape = Shape::single;
  Kind kind = Kind::attribute;
  std::string scheme;  // how it is stored and handled: the kind of property that templates/kinds describes
  int index = 0;       // 1-based along the chain of classes; 0 for derived views and properties of datatypes
  bool ordered = true;
  bool unique = true;
  bool queryable = false;
  // As a qualifier whose setter keeps its maps sound: these maps, in package order, then class name. At least one of
  // them holds elements of the very class that declares this property.
  std::vector<Property const*> keyedMaps;
  // As a qualifier of maps of derived classes only: those classes wrap the setter, see their QualifierOverride.
  bool virtualSetter = false;
  boost::uuids::uuid uuid{};
  std::string slot;

  bool isDerived() const { return row->derived.has_value(); }
  bool isMany() const { return shape != Shape::optional && shape != Shape::single; }
  bool isElement() const { return kind != Kind::attribute; }
};

struct Operation {
  OperationRow const* row = nullptr;
  std::string name;
  std::string qualifiedName;
  Type const* type = nullptr;
  boost::uuids::uuid uuid{};
  std::string slot;
};

struct Literal {
  LiteralRow const* row = nullptr;
  std::string name;
  std::string qualifiedName;
  boost::uuids::uuid uuid{};
  std::string slot;
};

struct Enum : Type {
  EnumRow const* row = nullptr;
  std::deque<Literal> literals;
};

struct DataType : Type {
  DataTypeRow const* row = nullptr;
  std::deque<Property> properties;
  std::deque<Operation> operations;
};

// An inherited qualifier whose setter a class wraps, as its elements lie in maps of their own.
struct QualifierOverride {
  Property const* property = nullptr;
  std::vector<Property const*> maps;
};

// An inherited enumeration property that a class gives a default of its own.
struct Stamp {
  Property const* property = nullptr;
  Literal const* literal = nullptr;
};

struct Class : Type {
  ClassRow const* row = nullptr;
  Class const* base = nullptr;  // null for a class directly below plinth.ModelElement
  bool baseKnown = true;        // false once the base could not be resolved: the chain is then cut here
  std::deque<Property> properties;
  std::vector<Stamp> stamps;

  std::vector<Class const*> bases;              // root first, without the class itself
  int lastIndex = 0;                            // along the chain
  std::vector<Property const*> fields;          // attributes, single elements, element collections
  std::vector<Property const*> storageSlots;    // the fields that keep old values: all but derived views
  std::vector<Property const*> chainQueryable;  // inherited ones first, root first
  std::vector<QualifierOverride> overrides;
};

// A node of the package tree: one of the model's packages, or a namespace above them.
struct PackageNode {
  std::string qualifiedName;  // empty for the root
  std::string name;
  std::string uri;
  std::string slot;
  PackageNode const* parent = nullptr;
  Package const* package = nullptr;  // null for the root and for a namespace
};

struct Package {
  PackageRow const* row = nullptr;
  Model const* model = nullptr;
  std::string name;
  std::string folder;
  std::deque<Class> classes;
  std::deque<DataType> dataTypes;
  std::deque<Enum> enums;

  PackageNode const* node = nullptr;
  std::vector<Type const*> instantiationOrder;  // classes and datatypes, mixed, by simple name
  std::vector<Enum const*> enumOrder;           // by simple name
  std::vector<Type const*> keptPrimitives;      // primitives whose handles the package keeps
};

enum class HandleKind { package, classType, dataType, enumeration, literal, property, operation, primitive };

// One counted handle of the meta package.
struct Handle {
  HandleKind kind = HandleKind::package;
  std::string slot;
  Package const* package = nullptr;  // null for the root and for a namespace
};

struct Model {
  ModelRow const* row = nullptr;
  std::string name;
  std::string include;
  std::vector<Model const*> imports;
  std::deque<Package> packages;

  boost::uuids::uuid uuid{};
  std::deque<PackageNode> packageTree;  // root, namespaces, packages: the order in which they are instantiated
  std::vector<Handle> handles;          // in the order of their creation
};

class ModelSet {
 public:
  ModelSet() = default;
  ModelSet(ModelSet const&) = delete;
  ModelSet& operator=(ModelSet const&) = delete;

  std::deque<ModelRow> rows;
  std::deque<Model> models;            // the imported ones in the order given, the generated one last
  std::map<std::string, Type*> types;  // all but primitives, by qualified name

  Model const& generated() const { return models.back(); }
};

// Null where `type` is null or of another kind.
Class const* asClass(Type const* type);
DataType const* asDataType(Type const* type);
Enum const* asEnum(Type const* type);

// The place of the property among those that its owner declares, from 0.
int positionAmongSiblings(Property const& property);

// True where `derived` is `base` or has it somewhere above.
bool conformsTo(Class const& derived, Class const& base);

// The property of that name in the class or above it, or the datatype's own; null where there is none.
Property const* findProperty(Type const& owner, std::string const& name);

Literal const* findLiteral(Enum const& enumeration, std::string const& name);

// "the class", "the datatype", "the enumeration", "the primitive type", followed by the name in quotes.
std::string describe(Type const& type);

}  // namespace modelgen
