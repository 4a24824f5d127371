#include "modelgen/derivation.hpp"

#include <algorithm>
#include <iterator>
#include <set>

#include "groundwork/NameUuid.hpp"
#include "modelgen/Primitive.hpp"
#include "modelgen/Rules.hpp"
#include "modelgen/naming.hpp"

namespace modelgen {
namespace {

template <class Range>
auto byName(Range range) {
  std::sort(range.begin(), range.end(), [](auto const* a, auto const* b) { return a->name < b->name; });
  return range;
}

// Fields stand in groups, whatever their indexes: values, then single elements, then collections of elements.
int fieldGroup(Property const& property) { return !property.isElement() ? 0 : property.isMany() ? 2 : 1; }

class Derivation {
 public:
  explicit Derivation(ModelSet& set) : m_set(set) {}

  void run() {
    for (Model& model : m_set.models) {
      model.uuid = groundwork::nameUuid(model.name);
      for (Package& package : model.packages) derivePackage(package);
    }
    forEachClass([](Class& type) { deriveChain(type); });
    for (Model& model : m_set.models) deriveKeyedMaps(model);
    for (Model& model : m_set.models) {
      derivePackageTree(model);
      for (PackageNode const& node : model.packageTree) addHandles(model, node);
    }
  }

 private:
  template <class Action>
  void forEachClass(Action const& action) {
    for (Model& model : m_set.models) {
      for (Package& package : model.packages) {
        for (Class& type : package.classes) action(type);
      }
    }
  }

  static void deriveType(Type& type) {
    type.uuid = groundwork::nameUuid(type.qualifiedName);
    type.slot = naming::typeSlot(*type.package, type.name);
  }

  template <class Member>
  static void deriveMember(Member& member, Type const& owner) {
    member.uuid = groundwork::nameUuid(member.qualifiedName);
    member.slot = naming::memberSlot(*owner.package, owner.name, member.name);
  }

  static void deriveProperty(Property& property) {
    deriveMember(property, *property.owner);
    property.scheme = schemeOf(property);
    property.ordered = orderedByRule(property);
    property.unique = uniqueByRule(property);
    if (mayChooseUnique(property) && property.row->unique) property.unique = property.row->unique->value;
    property.queryable = queryableByRule(property) && (!property.row->queryable || property.row->queryable->value);
  }

  static void derivePackage(Package& package) {
    for (Class& type : package.classes) {
      deriveType(type);
      for (Property& each : type.properties) deriveProperty(each);
      package.instantiationOrder.push_back(&type);
    }
    for (DataType& type : package.dataTypes) {
      deriveType(type);
      for (Property& each : type.properties) deriveProperty(each);
      for (Operation& each : type.operations) deriveMember(each, type);
      package.instantiationOrder.push_back(&type);
    }
    for (Enum& type : package.enums) {
      deriveType(type);
      for (Literal& each : type.literals) deriveMember(each, type);
      package.enumOrder.push_back(&type);
    }
    package.instantiationOrder = byName(package.instantiationOrder);
    package.enumOrder = byName(package.enumOrder);
    package.keptPrimitives = keptPrimitives(package);
  }

  // A package keeps handles on those primitive types that have them and that its properties and operations mention.
  static std::vector<Type const*> keptPrimitives(Package const& package) {
    std::set<Type const*> used;
    auto const use = [&used](Type const* type) {
      Primitive const* const primitive = asPrimitive(type);
      if (primitive != nullptr && primitive->keepsHandle) used.insert(primitive);
    };
    for (Class const& type : package.classes) {
      for (Property const& each : type.properties) use(each.type);
    }
    for (DataType const& type : package.dataTypes) {
      for (Property const& each : type.properties) use(each.type);
      for (Operation const& each : type.operations) use(each.type);
    }
    return byName(std::vector<Type const*>(used.begin(), used.end()));
  }

  static void deriveChain(Class& type) {
    for (Class const* each = type.base; each != nullptr; each = each->base) type.bases.push_back(each);
    std::reverse(type.bases.begin(), type.bases.end());
    for (Class const* each : type.bases) {
      for (Property const& property : each->properties) {
        type.lastIndex += property.isDerived() ? 0 : 1;
        if (property.queryable) type.chainQueryable.push_back(&property);
      }
    }
    for (Property& property : type.properties) {
      if (!property.isDerived()) property.index = ++type.lastIndex;
      if (property.queryable) type.chainQueryable.push_back(&property);
      type.fields.push_back(&property);
    }
    std::stable_sort(type.fields.begin(), type.fields.end(),
                     [](Property const* a, Property const* b) { return fieldGroup(*a) < fieldGroup(*b); });
    for (Property const* each : type.fields) {
      if (!each->isDerived()) type.storageSlots.push_back(each);
    }
  }

  // Qualifiers are declared in the model whose maps they key, so that one model is enough to know all maps of a key.
  // The setter of a key follows its element into whatever map of that key it lies in. It does so itself once a map can
  // hold any element that has the key; where only elements of subclasses lie in maps, these wrap it.
  static void deriveKeyedMaps(Model& model) {
    std::vector<Property const*> maps;
    for (Package const& package : model.packages) {
      for (Type const* owner : package.instantiationOrder) {
        Class const* const type = asClass(owner);
        if (type == nullptr) continue;
        for (Property const& each : type->properties) {
          if (each.isElement() && each.shape == Shape::map) maps.push_back(&each);
        }
      }
    }
    for (Package& package : model.packages) {
      for (Class& owner : package.classes) {
        for (Property& each : owner.properties) deriveKey(each, mapsKeyedBy(each, maps), model);
      }
    }
  }

  static std::vector<Property const*> mapsKeyedBy(Property const& key, std::vector<Property const*> const& maps) {
    std::vector<Property const*> result;
    std::copy_if(maps.begin(), maps.end(), std::back_inserter(result),
                 [&key](Property const* map) { return map->qualifier == &key; });
    return result;
  }

  static void deriveKey(Property& key, std::vector<Property const*> const& maps, Model& model) {
    auto const holdsAny = [&key](Property const* map) { return map->type == key.owner; };
    if (std::any_of(maps.begin(), maps.end(), holdsAny)) {
      key.keyedMaps = maps;
      return;
    }
    key.virtualSetter = !maps.empty();
    for (Property const* map : maps) {
      for (Package& package : model.packages) {
        for (Class& type : package.classes) {
          if (map->type == &type) overrideFor(type, key).maps.push_back(map);
        }
      }
    }
  }

  static QualifierOverride& overrideFor(Class& type, Property const& key) {
    for (QualifierOverride& each : type.overrides) {
      if (each.property == &key) return each;
    }
    return type.overrides.emplace_back(QualifierOverride{&key, {}});
  }

  static void derivePackageTree(Model& model) {
    addNode(model, "");
    std::set<std::string> packages;
    for (Package const& package : model.packages) packages.insert(package.name);
    for (Package const& package : model.packages) {
      for (std::size_t point = package.name.find('.'); point != std::string::npos;
           point = package.name.find('.', point + 1)) {
        std::string const prefix = package.name.substr(0, point);
        if (packages.insert(prefix).second) addNode(model, prefix);
      }
    }
    for (Package& package : model.packages) {
      PackageNode& node = addNode(model, package.name);
      node.package = &package;
      package.node = &node;
    }
    for (PackageNode& node : model.packageTree) node.parent = parentOf(model, node);
  }

  static PackageNode& addNode(Model& model, std::string const& qualifiedName) {
    PackageNode& node = model.packageTree.emplace_back();
    node.qualifiedName = qualifiedName;
    node.name = qualifiedName.substr(qualifiedName.rfind('.') + 1);
    node.uri = naming::packageUri(*model.row, qualifiedName);
    node.slot = naming::packageSlot(qualifiedName);
    return node;
  }

  static PackageNode const* parentOf(Model const& model, PackageNode const& node) {
    if (node.qualifiedName.empty()) return nullptr;
    std::size_t const point = node.qualifiedName.rfind('.');
    std::string const above = point == std::string::npos ? "" : node.qualifiedName.substr(0, point);
    auto const found = std::find_if(model.packageTree.begin(), model.packageTree.end(),
                                    [&above](PackageNode const& each) { return each.qualifiedName == above; });
    return &*found;
  }

  static void addHandles(Model& model, PackageNode const& node) {
    Package const* const package = node.package;
    auto const add = [&model, package](HandleKind kind, std::string const& slot) {
      model.handles.push_back({kind, slot, package});
    };
    add(HandleKind::package, node.slot);
    if (package == nullptr) return;
    for (Type const* type : package->instantiationOrder) {
      if (Class const* const owner = asClass(type)) {
        add(HandleKind::classType, type->slot);
        for (Property const& each : owner->properties) add(HandleKind::property, each.slot);
      } else if (DataType const* const value = asDataType(type)) {
        add(HandleKind::dataType, type->slot);
        for (Property const& each : value->properties) add(HandleKind::property, each.slot);
        for (Operation const& each : value->operations) add(HandleKind::operation, each.slot);
      }
    }
    for (Type const* type : package->keptPrimitives) {
      add(HandleKind::primitive, naming::typeSlot(*package, type->name));
    }
    for (Enum const* type : package->enumOrder) {
      add(HandleKind::enumeration, type->slot);
      for (Literal const& each : type->literals) add(HandleKind::literal, each.slot);
    }
  }

  ModelSet& m_set;
};

}  // namespace

void deriveModels(ModelSet& set) { Derivation(set).run(); }

}  // namespace modelgen
