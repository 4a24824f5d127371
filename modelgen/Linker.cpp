#include "modelgen/Linker.hpp"

#include <algorithm>
#include <set>

#include "modelgen/Primitive.hpp"

namespace modelgen {
namespace {

constexpr char const* rootClass = "plinth.ModelElement";

class Linker {
 public:
  Linker(ModelSet& set, Diagnostics& diagnostics) : m_set(set), m_diagnostics(diagnostics) {}

  void run() {
    for (ModelRow const& row : m_set.rows) addModel(row);
    forEachClass([this](Class& each) { linkBase(each); });
    forEachClass([this](Class& each) { cutCycle(each); });
    for (Model& model : m_set.models) linkTypes(model);
    forEachClass([this](Class& each) { linkMembers(each); });
  }

 private:
  template <class Action>
  void forEachClass(Action const& action) {
    for (Model& model : m_set.models) {
      for (Package& package : model.packages) {
        for (Class& each : package.classes) action(each);
      }
    }
  }

  void addModel(ModelRow const& row) {
    std::vector<Model const*> imports;
    for (Text const& name : row.imports) {
      auto const found = std::find_if(m_set.models.begin(), m_set.models.end(),
                                      [&name](Model const& model) { return model.name == name.value; });
      if (found == m_set.models.end()) {
        m_diagnostics.report(name.at, "unknown import '" + name.value + "'",
                             "a model given with --import, before each one that imports it");
      } else {
        imports.push_back(&*found);
      }
    }
    Model& model = m_set.models.emplace_back();
    model.row = &row;
    model.name = row.name.value;
    model.include = row.include.value;
    model.imports = imports;
    for (PackageRow const& package : row.packages) addPackage(model, package);
  }

  void addPackage(Model& model, PackageRow const& row) {
    Package& package = model.packages.emplace_back();
    package.row = &row;
    package.model = &model;
    package.name = row.name.value;
    package.folder = row.folder.value;
    for (ClassRow const& each : row.classes) {
      Class& added = package.classes.emplace_back();
      added.row = &each;
      addType(added, TypeKind::classType, package, each.name, each.doc);
      for (PropertyRow const& property : each.properties) addProperty(added.properties, added, property);
    }
    for (DataTypeRow const& each : row.dataTypes) {
      DataType& added = package.dataTypes.emplace_back();
      added.row = &each;
      addType(added, TypeKind::dataType, package, each.name, each.doc);
      for (PropertyRow const& property : each.properties) addProperty(added.properties, added, property);
      for (OperationRow const& operation : each.operations) {
        addMember(added.operations, added, operation);
      }
    }
    for (EnumRow const& each : row.enums) {
      Enum& added = package.enums.emplace_back();
      added.row = &each;
      addType(added, TypeKind::enumeration, package, each.name, each.doc);
      for (LiteralRow const& literal : each.literals) {
        addMember(added.literals, added, literal);
      }
    }
  }

  void addType(Type& type, TypeKind kind, Package const& package, Text const& name, Text const& doc) {
    type.kind = kind;
    type.name = name.value;
    type.qualifiedName = package.name + "." + name.value;
    type.package = &package;
    type.doc = &doc;
    m_set.types.emplace(type.qualifiedName, &type);
  }

  template <class Member, class Row>
  static Member& addMember(std::deque<Member>& members, Type const& owner, Row const& row) {
    Member& member = members.emplace_back();
    member.row = &row;
    member.name = row.name.value;
    member.qualifiedName = owner.qualifiedName + "." + member.name;
    return member;
  }

  static void addProperty(std::deque<Property>& properties, Type const& owner, PropertyRow const& row) {
    Property& property = addMember(properties, owner, row);
    property.owner = &owner;
    property.shape = row.shape.value;
    property.kind = row.kind.value;
  }

  static bool sees(Model const& model, Type const& type) {
    auto const& imports = model.imports;
    return type.package->model == &model ||
           std::find(imports.begin(), imports.end(), type.package->model) != imports.end();
  }

  // The type that `name` means inside `from`; null where there is none or its model is not imported.
  Type const* findType(std::string const& name, Package const& from) const {
    if (Type const* const primitive = findPrimitive(name)) return primitive;
    bool const dotted = name.find('.') != std::string::npos;
    auto const found = m_set.types.find(dotted ? name : from.name + "." + name);
    return found != m_set.types.end() && sees(*from.model, *found->second) ? found->second : nullptr;
  }

  // What to write instead of an unknown name: the import that is missing, or the dotted names of the types that are
  // called so elsewhere.
  std::string suggestion(std::string const& name, Package const& from, std::string const& otherwise) const {
    auto const hidden = m_set.types.find(name);
    if (hidden != m_set.types.end() && !sees(*from.model, *hidden->second)) {
      return "'" + hidden->second->package->model->name + "' among the imports of '" + from.model->name + "'";
    }
    std::vector<std::string> names;
    for (auto const& [qualifiedName, type] : m_set.types) {
      if (type->name == name && sees(*from.model, *type)) names.push_back("'" + qualifiedName + "'");
    }
    return names.empty() ? otherwise : alternatives(names);
  }

  Type const* resolveType(Text const& name, Package const& from) {
    if (name.value.empty()) return nullptr;
    Type const* const type = findType(name.value, from);
    if (type == nullptr) {
      m_diagnostics.report(name.at, "unknown type '" + name.value + "'",
                           suggestion(name.value, from,
                                      "a primitive type (" + alternatives(primitiveNames()) + "), a type of '" +
                                          from.name + "' or the dotted name of a type"));
    }
    return type;
  }

  void linkBase(Class& type) {
    Text const& name = type.row->base;
    if (name.value == rootClass) return;
    type.base = name.value.empty() ? nullptr : asClass(findType(name.value, *type.package));
    type.baseKnown = type.base != nullptr;
    if (type.baseKnown || name.value.empty()) return;
    m_diagnostics.report(
        name.at, "unknown base '" + name.value + "'",
        suggestion(name.value, *type.package,
                   std::string(rootClass) + ", a class of '" + type.package->name + "' or the dotted name of a class"));
  }

  // Breaks a cycle of bases at the first of its classes, so that every later walk along a chain ends.
  void cutCycle(Class& type) {
    std::set<Class const*> seen;
    std::string path = type.name;
    for (Class const* each = type.base; each != nullptr && seen.insert(each).second; each = each->base) {
      path += " -> " + each->name;
      if (each != &type) continue;
      m_diagnostics.report(type.row->base.at, "cycle of bases " + path,
                           "a chain of bases that ends at " + std::string(rootClass));
      type.base = nullptr;
      type.baseKnown = false;
      return;
    }
  }

  void linkTypes(Model& model) {
    for (Package& package : model.packages) {
      for (Class& owner : package.classes) {
        for (Property& each : owner.properties) each.type = resolveType(each.row->type, package);
      }
      for (DataType& owner : package.dataTypes) {
        for (Property& each : owner.properties) each.type = resolveType(each.row->type, package);
        for (Operation& each : owner.operations) each.type = resolveType(each.row->type, package);
      }
    }
  }

  static bool chainKnown(Class const& type) {
    for (Class const* each = &type; each != nullptr; each = each->base) {
      if (!each->baseKnown) return false;
    }
    return true;
  }

  void linkMembers(Class& owner) {
    for (Property& each : owner.properties) {
      if (each.row->derived) linkSource(each, owner);
      if (each.row->opposite) linkOpposite(each, *owner.package);
      if (each.row->qualifier) linkQualifier(each);
    }
    if (chainKnown(owner)) linkStamps(owner);
  }

  void linkSource(Property& view, Class const& owner) {
    Text const& name = *view.row->derived;
    Property const* const found = findProperty(owner, name.value);
    if (found != nullptr && found->owner == &owner) {
      view.source = found;
    } else {
      m_diagnostics.report(name.at, "no source '" + name.value + "' for the derived '" + view.name + "'",
                           "a many-valued property of '" + owner.name + "' itself");
    }
  }

  void linkOpposite(Property& property, Package const& from) {
    Text const& text = *property.row->opposite;
    std::size_t const point = text.value.rfind('.');
    Type const* type = nullptr;
    if (point != std::string::npos) type = findType(text.value.substr(0, point), from);
    Class const* const owner = asClass(type);
    Property const* const found = owner == nullptr ? nullptr : findProperty(*owner, text.value.substr(point + 1));
    if (found != nullptr && found->owner == owner) {
      property.opposite = found;
    } else {
      m_diagnostics.report(text.at, "no opposite '" + text.value + "' for '" + property.name + "'",
                           "Class.Property, with the class that declares the property");
    }
  }

  void linkQualifier(Property& map) {
    Type const* const element = map.type;
    if (element == nullptr) return;
    if (Class const* const type = asClass(element); type != nullptr && !chainKnown(*type)) return;
    Text const& name = *map.row->qualifier;
    map.qualifier = findProperty(*element, name.value);
    if (map.qualifier == nullptr) {
      m_diagnostics.report(name.at, "no qualifier '" + name.value + "' in " + describe(*element),
                           "a property of the elements of '" + map.name + "'");
    }
  }

  void linkStamps(Class& owner) {
    for (auto const& [name, literalName] : owner.row->stamps) {
      Property const* const property = owner.base == nullptr ? nullptr : findProperty(*owner.base, name.value);
      if (property != nullptr && property->type == nullptr) continue;
      Enum const* const enumeration = property == nullptr ? nullptr : asEnum(property->type);
      if (enumeration == nullptr || property->shape != Shape::single) {
        m_diagnostics.report(name.at, "stamp of '" + name.value + "' in '" + owner.name + "'",
                             "an inherited single property whose type is an enumeration");
        continue;
      }
      Literal const* const literal = findLiteral(*enumeration, literalName.value);
      if (literal == nullptr) {
        m_diagnostics.report(literalName.at, "unknown literal '" + literalName.value + "'",
                             "a literal of " + describe(*enumeration));
        continue;
      }
      owner.stamps.push_back({property, literal});
    }
  }

  ModelSet& m_set;
  Diagnostics& m_diagnostics;
};

}  // namespace

void linkModels(ModelSet& set, Diagnostics& diagnostics) { Linker(set, diagnostics).run(); }

}  // namespace modelgen
