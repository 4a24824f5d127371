#include "modelgen/Rules.hpp"

#include "modelgen/Primitive.hpp"

namespace modelgen {

std::string schemeOf(Property const& property) {
  if (property.isDerived()) return "derivedView";
  if (property.isElement()) {
    if (property.shape == Shape::map) return "elementMap";
    if (property.isMany()) return "elementCollection";
    return property.kind == Kind::containment ? "containment" : "reference";
  }
  if (property.shape == Shape::map) return "valueMap";
  if (property.isMany()) return "valueCollection";
  if (property.shape == Shape::optional) return "optionalAttribute";
  return isHostArray(*property.type) ? "hostArray" : "attribute";
}

bool orderedByRule(Property const& property) {
  return !property.isDerived() && property.shape != Shape::set && property.shape != Shape::map;
}

bool uniqueByRule(Property const& property) {
  bool const ofSequence =
      property.isDerived() && property.source != nullptr && property.source->shape == Shape::sequence;
  return property.shape != Shape::sequence && property.shape != Shape::map && !ofSequence;
}

bool mayChooseUnique(Property const& property) { return property.shape == Shape::sequence; }

bool queryableByRule(Property const& property) {
  if (property.isDerived()) return false;
  if (property.type->kind == TypeKind::classType) return true;
  if (property.isMany() || property.type->kind == TypeKind::dataType) return false;
  if (property.type->kind == TypeKind::enumeration) return true;
  if (isString(*property.type) && property.shape == Shape::optional) return false;
  return asPrimitive(property.type)->queryable;
}

bool hasReadySetter(Property const& property) {
  if (asPrimitive(property.type) == nullptr) return false;
  return property.shape != Shape::optional || isString(*property.type) || property.type->name == "UnlimitedNatural";
}

}  // namespace modelgen
