#include <string>

#include "modelgen/Checks.hpp"
#include "modelgen/DefaultValue.hpp"
#include "modelgen/Primitive.hpp"
#include "modelgen/Rules.hpp"
#include "modelgen/naming.hpp"

namespace modelgen {
namespace {

std::string text(bool flag) { return flag ? "true" : "false"; }

class PropertyChecks {
 public:
  explicit PropertyChecks(Diagnostics& diagnostics) : m_diagnostics(diagnostics) {}

  void ofClass(Property const& property) {
    if (property.type == nullptr) return;
    if (!kindFitsType(property) || !shapeFitsKind(property)) return;
    defaultFits(property);
    flagAgrees(property.row->ordered, "ordered", orderedByRule(property), property);
    if (!mayChooseUnique(property)) flagAgrees(property.row->unique, "unique", uniqueByRule(property), property);
    if (!queryableByRule(property)) flagAgrees(property.row->queryable, "queryable", false, property);
  }

  void ofDataType(Property const& property) {
    if (property.type == nullptr) return;
    bool const value = property.type->kind == TypeKind::primitive && !isHostArray(*property.type);
    if (!value && property.type->kind != TypeKind::enumeration) {
      refuse(property.row->type.at, property, "has the type '" + property.type->name + "'",
             "a primitive type other than KestrelArray or an enumeration in a datatype");
      return;
    }
    if (property.isMany()) {
      refuse(property.row->shape.at, property, "is a " + naming::shapeName(property.shape),
             "optional or single in a datatype");
      return;
    }
    defaultFits(property);
  }

  void operation(Operation const& operation) {
    if (operation.type != nullptr && operation.type->kind != TypeKind::primitive) {
      m_diagnostics.report(operation.row->type.at,
                           "the operation '" + operation.name + "' gives " + describe(*operation.type),
                           "a primitive type");
    }
  }

 private:
  void refuse(Position const& at, Property const& property, std::string const& wrong, std::string const& expected) {
    m_diagnostics.report(at, "'" + property.name + "' " + wrong, expected);
  }

  bool kindFitsType(Property const& property) {
    bool const isClass = property.type->kind == TypeKind::classType;
    if (isClass == property.isElement()) return true;
    refuse(property.row->kind.at, property,
           "has the kind " + naming::kindName(property.kind) + ", and its type is " + describe(*property.type),
           isClass ? "the kind reference or containment for a class" : "the kind attribute, as that is no class");
    return false;
  }

  bool shapeFitsKind(Property const& property) {
    std::string const expected = expectedShape(property);
    if (expected.empty()) return true;
    refuse(property.row->shape.at, property, "has the shape " + naming::shapeName(property.shape), expected);
    return false;
  }

  // Empty where the shape is allowed.
  static std::string expectedShape(Property const& property) {
    Shape const shape = property.shape;
    if (property.isDerived()) return shape == Shape::set ? "" : "set, as a derived view is one";
    if (isHostArray(*property.type)) return shape == Shape::single ? "" : "single, as a host array is one value";
    if (property.isElement() && shape == Shape::optional) return "single, as a reference can be empty anyway";
    if (shape != Shape::map) return "";
    if (property.kind == Kind::reference)
      return "another one, as only a map that owns its elements can follow their keys";
    if (!property.isElement() && property.type->kind != TypeKind::dataType) {
      return "another one, as only elements and datatypes have a property to be their key";
    }
    return "";
  }

  void defaultFits(Property const& property) {
    Enum const* const enumeration = asEnum(property.type);
    if (!property.row->defaultText || (enumeration != nullptr && enumeration->literals.empty())) return;
    Text const& text = *property.row->defaultText;
    if (property.isElement() || property.isMany()) {
      refuse(text.at, property, "has a default", "none, as it starts empty");
    } else if (property.shape == Shape::optional) {
      refuse(text.at, property, "has a default", "none, as an optional property starts without a value");
    } else if (!defaultInitializer(*property.type, text.value)) {
      refuse(text.at, property, "has the default '" + text.value + "'", defaultForm(*property.type));
    }
  }

  void flagAgrees(std::optional<Flag> const& flag, std::string const& name, bool rule, Property const& property) {
    if (!flag || flag->value == rule) return;
    refuse(flag->at, property, "is declared " + name + ": " + text(flag->value),
           text(rule) + ", which follows from its shape and type");
  }

  Diagnostics& m_diagnostics;
};

}  // namespace

void checkProperties(Model const& model, Diagnostics& diagnostics) {
  PropertyChecks checks(diagnostics);
  for (Package const& package : model.packages) {
    for (Class const& owner : package.classes) {
      for (Property const& each : owner.properties) checks.ofClass(each);
    }
    for (DataType const& owner : package.dataTypes) {
      for (Property const& each : owner.properties) checks.ofDataType(each);
      for (Operation const& each : owner.operations) checks.operation(each);
    }
  }
}

}  // namespace modelgen
