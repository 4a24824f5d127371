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

#include "modelgen/tables.hpp"

namespace modelgen {

struct Class;
struct Model;
struct Package;

enum class TypeKind { primitive, dataType, enumeration, classType };

struct Type {
  TypeKind kind = TypeKind::primitive;
  std::string name;
  std::string qualifiedName;         // for a primitive, its plain name
  const Package* package = nullptr;  // null for a primitive
  boost::uuids::uuid uuid{};
  std::string slot;  // member of the meta package that holds the handle; empty for a primitive
  const Text* doc = nullptr;
};

// How a property is stored and handled: each value is one kind of property of the element frame.
enum class Scheme {
  attribute,
  optionalAttribute,
  hostArray,
  valueCollection,
  valueMap,
  reference,
  containment,
  elementCollection,
  elementMap,
  derivedView
};

struct Property {
  const PropertyRow* row = nullptr;
  const Type* owner = nullptr;  // a class or a datatype
  std::string name;
  std::string qualifiedName;
  const Type* type = nullptr;
  const Property* source = nullptr;     // of a derived view: the collection that it narrows
  const Property* opposite = nullptr;   // the other end of a two-way reference
  const Property* qualifier = nullptr;  // of a map: the property of the element that gives the key

  Shape shape = Shape::single;
  Kind kind = Kind::attribute;
  Scheme scheme = Scheme::attribute;
  int index = 0;  // 1-based along the chain of classes; 0 for derived views and properties of datatypes
  bool ordered = true;
  bool unique = true;
  bool queryable = false;
  // As a qualifier whose setter keeps its maps sound: these maps, in package order, then class name. At least one of
  // them holds elements of the very class that declares this property.
  std::vector<const Property*> keyedMaps;
  // As a qualifier of maps of derived classes only: those classes wrap the setter, see their QualifierOverride.
  bool virtualSetter = false;
  boost::uuids::uuid uuid{};
  std::string slot;

  bool isDerived() const { return row->derived.has_value(); }
  bool isMany() const { return shape != Shape::optional && shape != Shape::single; }
  bool isElement() const { return kind != Kind::attribute; }
};

struct Operation {
  const OperationRow* row = nullptr;
  std::string name;
  std::string qualifiedName;
  const Type* type = nullptr;
  boost::uuids::uuid uuid{};
  std::string slot;
};

struct Literal {
  const LiteralRow* row = nullptr;
  std::string name;
  std::string qualifiedName;
  boost::uuids::uuid uuid{};
  std::string slot;
};

struct Enum : Type {
  const EnumRow* row = nullptr;
  std::deque<Literal> literals;
};

struct DataType : Type {
  const DataTypeRow* row = nullptr;
  std::deque<Property> properties;
  std::deque<Operation> operations;
};

// An inherited qualifier whose setter a class wraps, as its elements lie in maps of their own.
struct QualifierOverride {
  const Property* property = nullptr;
  std::vector<const Property*> maps;
};

// An inherited enumeration property that a class gives a default of its own.
struct Stamp {
  const Property* property = nullptr;
  const Literal* literal = nullptr;
};

struct Class : Type {
  const ClassRow* row = nullptr;
  const Class* base = nullptr;  // null for a class directly below plinth.ModelElement
  bool baseKnown = true;        // false once the base could not be resolved: the chain is then cut here
  std::deque<Property> properties;
  std::vector<Stamp> stamps;

  std::vector<const Class*> bases;              // root first, without the class itself
  int lastIndex = 0;                            // along the chain
  std::vector<const Property*> fields;          // attributes, single elements, element collections
  std::vector<const Property*> storageSlots;    // the fields that keep old values: all but derived views
  std::vector<const Property*> chainQueryable;  // inherited ones first, root first
  std::vector<QualifierOverride> overrides;
};

// A node of the package tree: one of the model's packages, or a namespace above them.
struct PackageNode {
  std::string qualifiedName;  // empty for the root
  std::string name;
  std::string uri;
  std::string slot;
  const PackageNode* parent = nullptr;
  const Package* package = nullptr;  // null for the root and for a namespace
};

struct Package {
  const PackageRow* row = nullptr;
  const Model* model = nullptr;
  std::string name;
  std::string folder;
  std::deque<Class> classes;
  std::deque<DataType> dataTypes;
  std::deque<Enum> enums;

  const PackageNode* node = nullptr;
  std::vector<const Type*> instantiationOrder;  // classes and datatypes, mixed, by simple name
  std::vector<const Enum*> enumOrder;           // by simple name
  std::vector<const Type*> keptPrimitives;      // primitives whose handles the package keeps
};

enum class HandleKind { package, classType, dataType, enumeration, literal, property, operation, primitive };

// One counted handle of the meta package.
struct Handle {
  HandleKind kind = HandleKind::package;
  std::string slot;
  const Package* package = nullptr;  // null for the root and for a namespace
};

struct Model {
  const ModelRow* row = nullptr;
  std::string name;
  std::string include;
  std::vector<const Model*> imports;
  std::deque<Package> packages;

  boost::uuids::uuid uuid{};
  std::deque<PackageNode> packageTree;  // root, namespaces, packages: the order in which they are instantiated
  std::vector<Handle> handles;          // in the order of their creation
};

class ModelSet {
 public:
  ModelSet() = default;
  ModelSet(const ModelSet&) = delete;
  ModelSet& operator=(const ModelSet&) = delete;

  std::deque<ModelRow> rows;
  std::deque<Model> models;            // the imported ones in the order given, the generated one last
  std::map<std::string, Type*> types;  // all but primitives, by qualified name

  const Model& generated() const { return models.back(); }
};

// Null where `type` is null or of another kind.
const Class* asClass(const Type* type);
const DataType* asDataType(const Type* type);
const Enum* asEnum(const Type* type);

// The place of the property among those that its owner declares, from 0.
int positionAmongSiblings(const Property& property);

// True where `derived` is `base` or has it somewhere above.
bool conformsTo(const Class& derived, const Class& base);

// The property of that name in the class or above it, or the datatype's own; null where there is none.
const Property* findProperty(const Type& owner, const std::string& name);

const Literal* findLiteral(const Enum& enumeration, const std::string& name);

// "the class", "the datatype", "the enumeration", "the primitive type", followed by the name in quotes.
std::string describe(const Type& type);

}  // namespace modelgen
