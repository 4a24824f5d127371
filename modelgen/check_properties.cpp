#include <string>

#include "modelgen/checks.hpp"
#include "modelgen/default_value.hpp"
#include "modelgen/naming.hpp"
#include "modelgen/primitive.hpp"
#include "modelgen/rules.hpp"

namespace modelgen {
namespace {

std::string text(bool flag) { return flag ? "true" : "false"; }

class PropertyChecks {
 public:
  explicit PropertyChecks(Diagnostics& diagnostics) : m_diagnostics(diagnostics) {}

  void ofClass(const Property& property) {
    if (property.type == nullptr) return;
    if (!kindFitsType(property) || !shapeFitsKind(property)) return;
    defaultFits(property);
    flagAgrees(property.row->ordered, "ordered", orderedByRule(property), property);
    if (!mayChooseUnique(property)) flagAgrees(property.row->unique, "unique", uniqueByRule(property), property);
    if (!queryableByRule(property)) flagAgrees(property.row->queryable, "queryable", false, property);
  }

  void ofDataType(const Property& property) {
    if (property.type == nullptr) return;
    const bool value = property.type->kind == TypeKind::primitive && !isHostArray(*property.type);
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

  void operation(const Operation& operation) {
    if (operation.type != nullptr && operation.type->kind != TypeKind::primitive) {
      m_diagnostics.report(operation.row->type.at,
                           "the operation '" + operation.name + "' gives " + describe(*operation.type),
                           "a primitive type");
    }
  }

 private:
  void refuse(const Position& at, const Property& property, const std::string& wrong, const std::string& expected) {
    m_diagnostics.report(at, "'" + property.name + "' " + wrong, expected);
  }

  bool kindFitsType(const Property& property) {
    const bool isClass = property.type->kind == TypeKind::classType;
    if (isClass == property.isElement()) return true;
    refuse(property.row->kind.at, property,
           "has the kind " + naming::kindName(property.kind) + ", and its type is " + describe(*property.type),
           isClass ? "the kind reference or containment for a class" : "the kind attribute, as that is no class");
    return false;
  }

  bool shapeFitsKind(const Property& property) {
    const std::string expected = expectedShape(property);
    if (expected.empty()) return true;
    refuse(property.row->shape.at, property, "has the shape " + naming::shapeName(property.shape), expected);
    return false;
  }

  // Empty where the shape is allowed.
  static std::string expectedShape(const Property& property) {
    const Shape shape = property.shape;
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

  void defaultFits(const Property& property) {
    const Enum* const enumeration = asEnum(property.type);
    if (!property.row->defaultText || (enumeration != nullptr && enumeration->literals.empty())) return;
    const Text& text = *property.row->defaultText;
    if (property.isElement() || property.isMany()) {
      refuse(text.at, property, "has a default", "none, as it starts empty");
    } else if (property.shape == Shape::optional) {
      refuse(text.at, property, "has a default", "none, as an optional property starts without a value");
    } else if (!defaultInitializer(*property.type, text.value)) {
      refuse(text.at, property, "has the default '" + text.value + "'", defaultForm(*property.type));
    }
  }

  void flagAgrees(const std::optional<Flag>& flag, const std::string& name, bool rule, const Property& property) {
    if (!flag || flag->value == rule) return;
    refuse(flag->at, property, "is declared " + name + ": " + text(flag->value),
           text(rule) + ", which follows from its shape and type");
  }

  Diagnostics& m_diagnostics;
};

}  // namespace

void checkProperties(const Model& model, Diagnostics& diagnostics) {
  PropertyChecks checks(diagnostics);
  for (const Package& package : model.packages) {
    for (const Class& owner : package.classes) {
      for (const Property& each : owner.properties) checks.ofClass(each);
    }
    for (const DataType& owner : package.dataTypes) {
      for (const Property& each : owner.properties) checks.ofDataType(each);
      for (const Operation& each : owner.operations) checks.operation(each);
    }
  }
}

}  // namespace modelgen
