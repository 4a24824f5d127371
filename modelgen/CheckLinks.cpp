#include <string>

#include "modelgen/Checks.hpp"
#include "modelgen/Primitive.hpp"
#include "modelgen/naming.hpp"

namespace modelgen {
namespace {

// Change bits of a class lie in one block of 64, and bit 0 is the foundation's.
constexpr int mostIndexes = 63;

class LinkChecks {
 public:
  explicit LinkChecks(Diagnostics& diagnostics) : m_diagnostics(diagnostics) {}

  void chain(Class const& type) {
    int indexes = 0;
    for (Class const* each = &type; each != nullptr; each = each->base) {
      for (Property const& property : each->properties) indexes += property.isDerived() ? 0 : 1;
    }
    if (indexes > mostIndexes) {
      m_diagnostics.report(type.row->name.at,
                           "'" + type.name + "' has " + std::to_string(indexes) + " indexed properties along its chain",
                           std::to_string(mostIndexes) + " at most");
    }
    for (Property const& each : type.properties) mutableGetter(type, each);
    if (type.base == nullptr) return;
    for (Property const& each : type.properties) {
      Property const* const hidden = findProperty(*type.base, each.name);
      if (hidden == nullptr) continue;
      m_diagnostics.report(each.row->name.at, "'" + each.name + "' hides the inherited '" + hidden->qualifiedName + "'",
                           "another name");
    }
  }

  void property(Property const& property) {
    if (property.type == nullptr) return;
    if (property.opposite != nullptr) opposite(property);
    if (property.source != nullptr) derived(property);
    qualifier(property);
  }

 private:
  void refuse(Position const& at, Property const& property, std::string const& wrong, std::string const& expected) {
    m_diagnostics.report(at, "'" + property.name + "' " + wrong, expected);
  }

  // The second getter of a collection must not be the getter of another property of the class or above it.
  void mutableGetter(Class const& type, Property const& own) {
    for (Class const* above = &type; above != nullptr; above = above->base) {
      for (Property const& other : above->properties) {
        bool const clash =
            (own.isMany() && naming::mutableGetter(own.name) == naming::getter(other.name)) ||
            (other.isMany() && above != &type && naming::mutableGetter(other.name) == naming::getter(own.name));
        if (!clash) continue;
        refuse(own.row->name.at, own, "shares an accessor with '" + other.qualifiedName + "'", "another name");
      }
    }
  }

  void opposite(Property const& property) {
    Position const& at = property.row->opposite->at;
    Property const& other = *property.opposite;
    if (other.type == nullptr) return;
    for (Property const* const end : {&property, &other}) {
      if (end->kind == Kind::reference && !end->isDerived() && end->shape != Shape::map) continue;
      refuse(at, property, "has an opposite, but '" + end->qualifiedName + "' is no plain reference",
             "two references, neither of them derived");
      return;
    }
    if (other.opposite != &property) {
      refuse(at, property, "has the opposite '" + other.qualifiedName + "', which does not point back",
             "'opposite: " + property.owner->name + "." + property.name + "' there");
    } else if (property.type != other.owner) {
      refuse(at, property,
             "leads to " + describe(*property.type) + ", but its opposite belongs to '" + other.owner->name + "'",
             "an opposite in the class that the property leads to");
    }
  }

  void derived(Property const& view) {
    Position const& at = view.row->derived->at;
    Property const& source = *view.source;
    if (source.type == nullptr) return;
    if (view.kind != Kind::reference) {
      refuse(view.row->kind.at, view, "is derived and no reference", "the kind reference, as a view owns nothing");
      return;
    }
    Class const* const wide = asClass(source.type);
    Class const* const narrow = asClass(view.type);
    bool const collection = source.shape == Shape::sequence || source.shape == Shape::set;
    if (!collection || source.isDerived() || wide == nullptr) {
      refuse(at, view, "is derived from '" + source.name + "', which is no collection of elements",
             "a sequence or set of elements that is stored itself");
    } else if (narrow == nullptr || narrow == wide || !conformsTo(*narrow, *wide)) {
      refuse(view.row->type.at, view, "narrows '" + source.name + "' to " + describe(*view.type),
             "a class below '" + wide->name + "'");
    }
    if (view.row->transient) refuse(at, view, "is derived and transient", "one of the two, as a view is never saved");
  }

  void qualifier(Property const& property) {
    if (property.shape != Shape::map) {
      if (property.row->qualifier) {
        refuse(property.row->qualifier->at, property, "has a qualifier and is no map",
               "the shape map, or no qualifier");
      }
      return;
    }
    if (!property.row->qualifier) {
      if (property.type->kind != TypeKind::classType && property.type->kind != TypeKind::dataType) return;
      refuse(property.row->shape.at, property, "is a map without a qualifier", "the key 'qualifier'");
      return;
    }
    if (property.qualifier == nullptr || property.qualifier->type == nullptr) return;
    Property const& key = *property.qualifier;
    Position const& at = property.row->qualifier->at;
    bool const isKey = isString(*key.type) && key.shape == Shape::single;
    if (!isKey) {
      refuse(at, property, "has the qualifier '" + key.qualifiedName + "'", "a single property of type String");
    } else if (property.isElement() && key.owner->package->model != property.owner->package->model) {
      // The setter of the key keeps the map sound, and is generated with the model that declares the key.
      refuse(at, property, "has the qualifier '" + key.qualifiedName + "' of an imported model",
             "a qualifier that this model declares");
    }
  }

  Diagnostics& m_diagnostics;
};

}  // namespace

void checkLinks(Model const& model, Diagnostics& diagnostics) {
  LinkChecks checks(diagnostics);
  for (Package const& package : model.packages) {
    for (Class const& owner : package.classes) {
      checks.chain(owner);
      for (Property const& each : owner.properties) checks.property(each);
    }
  }
}

}  // namespace modelgen
