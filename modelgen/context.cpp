#include "modelgen/context.hpp"

#include <algorithm>
#include <boost/uuid/uuid_io.hpp>
#include <filesystem>
#include <map>
#include <set>

#include "modelgen/DataObject.hpp"
#include "modelgen/DefaultValue.hpp"
#include "modelgen/Primitive.hpp"
#include "modelgen/Rules.hpp"
#include "modelgen/Summary.hpp"
#include "modelgen/Text.hpp"
#include "modelgen/naming.hpp"

namespace modelgen {
namespace {

// Leaves room for the indentation of a member and "/// " within 120 columns.
constexpr std::size_t docWidth = 110;

std::string tableName(std::string const& file, std::string const& root) {
  return std::filesystem::path(file).lexically_normal().lexically_proximate(root).generic_string();
}

void setDoc(Data& object, Text const& doc) {
  std::vector<std::string> lines = wrap(doc.value, docWidth);
  for (std::string& line : lines) {
    // A backslash at its end would make a comment swallow the next line.
    if (!line.empty() && line.back() == '\\') line.replace(line.size() - 1, 1, "&#92;");
  }
  setLines(object, "doc", lines);
}

void setTypeNames(Data& object, Type const& type) {
  object.set("name", type.name);
  object.set("qualifiedName", type.qualifiedName);
  object.set("cppName", naming::cppTypeName(type));
  object.set("isClass", type.kind == TypeKind::classType);
  object.set("isDataType", type.kind == TypeKind::dataType);
}

// A type as something that a thing of the package `from` points at.
Data typeReference(Type const& type, Package const& from) {
  Data result;
  setTypeNames(result, type);
  Primitive const* const primitive = asPrimitive(&type);
  bool const kept = primitive != nullptr && primitive->keepsHandle;
  result.set("slot", kept ? naming::typeSlot(from, type.name) : type.slot);
  result.set("header", type.package == nullptr ? "" : naming::typeHeader(type));
  result.set("builderHeader", type.kind == TypeKind::classType ? naming::builderHeader(type) : "");
  return result;
}

// What the texts of kinds ask beyond the names of members.
void setShape(Data& object, Property const& property) {
  bool const isText = isString(*property.type);
  object.set("scheme", property.scheme);
  object.set("cppType", naming::cppTypeName(*property.type));
  object.set("isString", isText);
  object.set("isScalar", !isText && property.type->kind != TypeKind::dataType);
  object.set("isSequence", property.shape == Shape::sequence);
  object.set("isMany", property.isMany());
  object.set("isElement", property.isElement());
  object.set("isComposite", property.kind == Kind::containment);
  object.set("isOwnQualifier", !property.keyedMaps.empty());
  object.set("isVirtual", property.virtualSetter);
  object.set("hasReadySetter", hasReadySetter(property));
  object.set("schemeHostArray", isHostArray(*property.type));
  setNumber(object, "position", positionAmongSiblings(property));
  setNumber(object, "valueFlags", static_cast<int>(property.shape));
}

// A property as something that another thing points at.
Data propertyReference(Property const& property) {
  Data result;
  result.set("name", property.name);
  result.set("qualifiedName", property.qualifiedName);
  result.set("slot", property.slot);
  result.set("getter", naming::getter(property.name));
  result.set("setter", naming::setter(property.name));
  result.set("field", naming::field(property.name));
  result.set("accessor", naming::lowerCamel(property.name));
  result.set("ownerName", property.owner->name);
  result.set("ownerCppName", naming::cppTypeName(*property.owner));
  setNumber(result, "index", property.index);
  setShape(result, property);
  return result;
}

Data referenceOrFalse(Property const* property) {
  return property == nullptr ? Data(false) : propertyReference(*property);
}

void setDefault(Data& object, Property const& property) {
  auto const& text = property.row->defaultText;
  object.set("hasDefault", text.has_value());
  object.set("defaultLiteral", text ? utf16Literal(text->value) : "");
  bool const isValue = !property.isElement() && property.shape == Shape::single;
  std::string initializer = isValue ? zeroInitializer(*property.type) : "";
  if (text) initializer = defaultInitializer(*property.type, text->value).value_or("");
  object.set("initializer", initializer);
  object.set("fieldStart", initializer.empty() ? "{}" : initializer);
  // Where the table tells the value, it stands beside the class's rows and not in its header.
  object.set("hasStart", isValue && text.has_value());
  std::string const name = naming::start(property.name);
  object.set("startName", name);
  object.set("start", isString(*property.type) ? name + "[]" : name);
  object.set("startType", (isString(*property.type) ? "char16_t" : naming::cppTypeName(*property.type)) + " const");
}

// The facts that hold, as a union of the scheme's bits.
std::string unionOf(std::initializer_list<std::pair<bool, char const*>> bits) {
  std::string result;
  for (auto const& [holds, name] : bits) {
    if (holds) result += (result.empty() ? "frame::" : " | frame::") + std::string(name);
  }
  return result.empty() ? "0" : result;
}

std::string traitsOf(Property const& property) {
  bool const isPlain = property.ordered && property.unique;
  return unionOf({{property.kind == Kind::containment, "COMPOSITE"},
                  {isPlain, "PLAIN"},
                  {property.ordered && !isPlain, "ORDERED"},
                  {property.unique && !isPlain, "UNIQUE"},
                  {property.isDerived(), "DERIVED"},
                  {property.row->transient, "TRANSIENT"},
                  {property.row->hidden, "HIDDEN"}});
}

Data propertyData(Property const& property) {
  Data result = propertyReference(property);
  result.set("uuid", to_string(property.uuid));
  setDoc(result, property.row->doc);
  result.set("mutableGetter", naming::mutableGetter(property.name));
  result.set("presenceTest", naming::presenceTest(property.name));
  result.set("childCreator", naming::childCreator(property.name));
  result.set("adder", naming::adder(property.name));
  result.set("clearer", naming::clearer(property.name));
  setDefault(result, property);
  result.set("type", typeReference(*property.type, *property.owner->package));
  result.set("hasIndex", property.index != 0);
  result.set("isOrdered", property.ordered);
  result.set("isUnique", property.unique);
  result.set("isDerived", property.isDerived());
  result.set("isTransient", property.row->transient);
  result.set("isHidden", property.row->hidden);
  result.set("traits", traitsOf(property));
  // A row ends behind its facts unless a setter follows them.
  result.set("rowEnd", property.owner->kind == TypeKind::dataType ? "," : property.virtualSetter ? "," : "},");
  result.set("flagsName", naming::flagsName(property.shape));
  result.set("hasLinks", property.opposite != nullptr || property.qualifier != nullptr);
  result.set("source", referenceOrFalse(property.source));
  result.set("opposite", referenceOrFalse(property.opposite));
  result.set("qualifier", referenceOrFalse(property.qualifier));
  setList(result, "keyedMaps",
          objectsOf(property.keyedMaps, [](Property const* map) { return propertyReference(*map); }));
  return result;
}

std::vector<Data> propertyList(std::vector<Property const*> const& properties) {
  return objectsOf(properties, [](Property const* each) { return propertyData(*each); });
}

template <class Accept>
std::vector<Data> ownProperties(Class const& type, Accept const& accept) {
  std::vector<Data> result;
  for (Property const& each : type.properties) {
    if (accept(each)) result.push_back(propertyData(each));
  }
  return result;
}

// The order of members that a reader finds in a header: values, single elements, collections.
std::vector<Property const*> inHeaderOrder(Class const& type) {
  std::vector<Property const*> result;
  for (Property const& each : type.properties) result.push_back(&each);
  auto const rank = [](Property const* each) { return 2 * each->isMany() + each->isElement(); };
  std::stable_sort(result.begin(), result.end(), [&rank](auto a, auto b) { return rank(a) < rank(b); });
  return result;
}

Data packageReference(Package const& package, std::string const& root) {
  Data result;
  result.set("name", package.node->name);
  result.set("qualifiedName", package.name);
  result.set("folder", package.folder);
  result.set("namespace", naming::cppNamespace(package.name));
  result.set("uri", package.node->uri);
  result.set("slot", package.node->slot);
  result.set("table", tableName(package.row->file, root));
  return result;
}

Data modelReference(Model const& model, std::string const& root) {
  Data result;
  result.set("name", model.name);
  result.set("include", model.include);
  result.set("uuid", to_string(model.uuid));
  result.set("uri", model.packageTree.front().uri);
  result.set("metaPackageClass", naming::metaPackageClass(model.name));
  result.set("metaPackageHeader", naming::metaPackageHeader(model));
  result.set("initializeEntryPoint", naming::initializeEntryPoint(model.name));
  result.set("terminateEntryPoint", naming::terminateEntryPoint(model.name));
  result.set("table", tableName(model.row->file, root));
  return result;
}

// What every type of the model has.
Data typeData(Type const& type, std::string const& root) {
  Data result;
  setTypeNames(result, type);
  result.set("uuid", to_string(type.uuid));
  result.set("slot", type.slot);
  result.set("namespace", naming::cppNamespace(type.package->name));
  result.set("header", naming::typeHeader(type));
  result.set("table", tableName(type.package->row->file, root));
  setDoc(result, *type.doc);
  result.set("package", packageReference(*type.package, root));
  result.set("model", modelReference(*type.package->model, root));
  result.set("traits", "0");
  result.set("hasTraits", false);
  return result;
}

// The types that the properties mention, split by what a header needs of them: values must be complete, elements are
// handles that may be declared ahead, once for each namespace. Neither names the class itself or its base.
void setMentionedTypes(Data& object, Class const& owner) {
  std::map<std::string, Type const*> values;
  std::map<std::string, Type const*> elements;
  auto const mention = [&](Property const& each) {
    if (each.type->kind == TypeKind::primitive || each.type == &owner || each.type == owner.base) return;
    (each.isElement() ? elements : values).emplace(each.type->qualifiedName, each.type);
  };
  for (Property const& each : owner.properties) mention(each);
  auto const reference = [&owner](auto const& entry) { return typeReference(*entry.second, *owner.package); };
  setList(object, "valueTypes", objectsOf(values, reference));
  setList(object, "elementTypes", objectsOf(elements, reference));
  std::map<std::string, std::map<std::string, Type const*>> byNamespace;
  for (auto const& [name, type] : elements) {
    byNamespace[naming::cppNamespace(type->package->name)].emplace(name, type);
  }
  setList(object, "siblingTypes", objectsOf(byNamespace[naming::cppNamespace(owner.package->name)], reference));
  byNamespace.erase(naming::cppNamespace(owner.package->name));
  setList(object, "foreignNamespaces", objectsOf(byNamespace, [&reference](auto const& each) {
            Data result("namespace", each.first);
            setList(result, "types", objectsOf(each.second, reference));
            return result;
          }));
}

Data overrideData(QualifierOverride const& override) {
  Data result = propertyData(*override.property);
  setList(result, "maps", objectsOf(override.maps, [](Property const* map) { return propertyReference(*map); }));
  return result;
}

Data stampData(Stamp const& stamp) {
  Data result = propertyReference(*stamp.property);
  setNumber(result, "value", stamp.literal->row->value.value);
  result.set("initializer", naming::cppTypeName(*stamp.property->type) + "::" + stamp.literal->name);
  return result;
}

Data operationData(Operation const& operation, DataType const& owner) {
  Data result;
  result.set("name", operation.name);
  result.set("qualifiedName", operation.qualifiedName);
  result.set("uuid", to_string(operation.uuid));
  result.set("slot", operation.slot);
  result.set("type", typeReference(*operation.type, *owner.package));
  setDoc(result, operation.row->doc);
  return result;
}

Data literalData(Literal const& literal) {
  Data result;
  result.set("name", literal.name);
  result.set("qualifiedName", literal.qualifiedName);
  result.set("uuid", to_string(literal.uuid));
  result.set("slot", literal.slot);
  setNumber(result, "value", literal.row->value.value);
  setDoc(result, literal.row->doc);
  return result;
}

Data nodeData(PackageNode const& node) {
  Data result;
  result.set("name", node.name);
  result.set("qualifiedName", node.qualifiedName);
  result.set("uri", node.uri);
  result.set("slot", node.slot);
  result.set("isRoot", node.parent == nullptr);
  result.set("isNamespace", node.parent != nullptr && node.package == nullptr);
  result.set("parentSlot", node.parent == nullptr ? "" : node.parent->slot);
  result.set("instantiateFunction", naming::instantiateFunction(node.qualifiedName));
  result.set("weaveFunction", naming::weaveFunction(node.qualifiedName));
  return result;
}

}  // namespace

Data classData(Class const& type, std::string const& root) {
  Data result = typeData(type, root);
  result.set("className", type.name);
  result.set("isAbstract", type.row->abstract);
  result.set("isConcrete", !type.row->abstract);
  result.set("isHidden", type.row->hidden);
  result.set("builderHeader", type.kind == TypeKind::classType ? naming::builderHeader(type) : "");
  result.set("traits", unionOf({{type.row->abstract, "ABSTRACT"}, {type.row->hidden, "HIDDEN"}}));
  result.set("hasTraits", type.row->abstract || type.row->hidden);
  result.set("base", type.base == nullptr ? Data(false) : typeReference(*type.base, *type.package));
  result.set("baseCppName", naming::cppBaseTypeName(type));
  setList(result, "bases",
          objectsOf(type.bases, [&type](Class const* each) { return typeReference(*each, *type.package); }));
  setNumber(result, "lastIndex", type.lastIndex);
  setNumber(result, "storageCount", type.lastIndex + 1);
  setList(result, "properties", ownProperties(type, [](Property const&) { return true; }));
  setList(result, "attributes",
          ownProperties(type, [](Property const& each) { return !each.isElement() && !each.isMany(); }));
  setList(result, "valueCollections",
          ownProperties(type, [](Property const& each) { return !each.isElement() && each.isMany(); }));
  setList(result, "singleElements",
          ownProperties(type, [](Property const& each) { return each.isElement() && !each.isMany(); }));
  setList(result, "elementCollections",
          ownProperties(type, [](Property const& each) { return each.isElement() && each.isMany(); }));
  setList(result, "containments",
          ownProperties(type, [](Property const& each) { return each.kind == Kind::containment; }));
  setList(result, "queryables", ownProperties(type, [](Property const& each) { return each.queryable; }));
  setList(result, "chainQueryables", propertyList(type.chainQueryable));
  setList(result, "members", propertyList(inHeaderOrder(type)));
  setList(result, "fields", propertyList(type.fields));
  setList(result, "storageSlots", propertyList(type.storageSlots));
  setList(result, "stamps", objectsOf(type.stamps, stampData));
  setList(result, "overrides", objectsOf(type.overrides, overrideData));
  setMentionedTypes(result, type);
  return result;
}

Data dataTypeData(DataType const& type, std::string const& root) {
  Data result = typeData(type, root);
  setList(result, "properties", objectsOf(type.properties, propertyData));
  setList(result, "operations",
          objectsOf(type.operations, [&type](Operation const& each) { return operationData(each, type); }));
  std::map<std::string, Type const*> enums;
  for (Property const& each : type.properties) {
    if (each.type->kind == TypeKind::enumeration) enums.emplace(each.type->qualifiedName, each.type);
  }
  setList(result, "valueTypes",
          objectsOf(enums, [&type](auto const& each) { return typeReference(*each.second, *type.package); }));
  return result;
}

Data enumData(Enum const& type, std::string const& root) {
  Data result = typeData(type, root);
  setList(result, "literals", objectsOf(type.literals, literalData));
  return result;
}

// The classes with each behind its base, and the queries' headers of bases in other packages.
void setQueryOrder(Data& object, Package const& package, std::string const& root) {
  std::vector<Class const*> order;
  std::set<std::string> headers;
  for (Class const& each : package.classes) {
    order.push_back(&each);
    if (each.base != nullptr && each.base->package != &package)
      headers.insert(naming::queryHeader(*each.base->package));
  }
  auto const isHigher = [](Class const* left, Class const* right) { return left->bases.size() < right->bases.size(); };
  std::stable_sort(order.begin(), order.end(), isHigher);
  setList(object, "queryOrder", objectsOf(order, [&root](Class const* each) { return classData(*each, root); }));
  setList(object, "queryBases", objectsOf(headers, [](std::string const& each) { return Data("header", each); }));
}

Data packageData(Package const& package, std::string const& root) {
  Data result = nodeData(*package.node);
  result.set("folder", package.folder);
  result.set("umbrella", naming::packageHeader(package));
  result.set("queryHeader", naming::queryHeader(package));
  setQueryOrder(result, package, root);
  result.set("namespace", naming::cppNamespace(package.name));
  result.set("table", tableName(package.row->file, root));
  result.set("model", modelReference(*package.model, root));
  setDoc(result, package.row->doc);
  setList(result, "classes", objectsOf(package.classes, [&root](Class const& each) { return classData(each, root); }));
  setList(result, "dataTypes",
          objectsOf(package.dataTypes, [&root](DataType const& each) { return dataTypeData(each, root); }));
  setList(result, "enums", objectsOf(package.enumOrder, [&root](Enum const* each) { return enumData(*each, root); }));
  result.set("hasMarshaledTypes", !package.dataTypes.empty() || !package.enumOrder.empty());
  setList(result, "instantiationOrder", objectsOf(package.instantiationOrder, [&root](Type const* each) {
            Class const* const type = asClass(each);
            return type != nullptr ? classData(*type, root) : dataTypeData(*asDataType(each), root);
          }));
  setList(result, "keptPrimitives",
          objectsOf(package.keptPrimitives, [&package](Type const* each) { return typeReference(*each, package); }));
  return result;
}

Data modelData(Model const& model, std::string const& root) {
  Data result = modelReference(model, root);
  setList(result, "imports",
          objectsOf(model.imports, [&root](Model const* each) { return modelReference(*each, root); }));
  setList(result, "packageTree", objectsOf(model.packageTree, nodeData));
  setList(result, "packages",
          objectsOf(model.packages, [&root](Package const& each) { return packageData(each, root); }));
  setList(result, "handles", objectsOf(model.handles, [](Handle const& each) {
            Data handle;
            handle.set("slot", each.slot);
            handle.set("type", naming::handleType(each.kind));
            return handle;
          }));
  Counts const counts = countModel(model);
  setNumber(result, "classCount", counts.classes);
  setNumber(result, "dataTypeCount", counts.dataTypes);
  setNumber(result, "enumCount", counts.enums);
  setNumber(result, "literalCount", counts.literals);
  setNumber(result, "propertyCount", counts.properties);
  setNumber(result, "operationCount", counts.operations);
  setNumber(result, "handleCount", counts.handles);
  return result;
}

}  // namespace modelgen
