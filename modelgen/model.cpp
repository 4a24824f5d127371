#include "modelgen/model.hpp"

#include <algorithm>

namespace modelgen {
namespace {

template <class Sequence>
auto findNamed(const Sequence& sequence, const std::string& name) -> decltype(&sequence.front()) {
  const auto found =
      std::find_if(sequence.begin(), sequence.end(), [&name](const auto& each) { return each.name == name; });
  return found == sequence.end() ? nullptr : &*found;
}

template <class Derived>
const Derived* as(const Type* type, TypeKind kind) {
  return type != nullptr && type->kind == kind ? static_cast<const Derived*>(type) : nullptr;
}

}  // namespace

const Class* asClass(const Type* type) { return as<Class>(type, TypeKind::classType); }
const DataType* asDataType(const Type* type) { return as<DataType>(type, TypeKind::dataType); }
const Enum* asEnum(const Type* type) { return as<Enum>(type, TypeKind::enumeration); }

int positionAmongSiblings(const Property& property) {
  const Class* const owner = asClass(property.owner);
  const auto& siblings = owner != nullptr ? owner->properties : asDataType(property.owner)->properties;
  int position = 0;
  for (const Property& each : siblings) {
    if (&each == &property) break;
    ++position;
  }
  return position;
}

bool conformsTo(const Class& derived, const Class& base) {
  for (const Class* each = &derived; each != nullptr; each = each->base) {
    if (each == &base) return true;
  }
  return false;
}

const Property* findProperty(const Type& owner, const std::string& name) {
  if (const DataType* const dataType = asDataType(&owner)) return findNamed(dataType->properties, name);
  for (const Class* each = asClass(&owner); each != nullptr; each = each->base) {
    if (const Property* const found = findNamed(each->properties, name)) return found;
  }
  return nullptr;
}

const Literal* findLiteral(const Enum& enumeration, const std::string& name) {
  return findNamed(enumeration.literals, name);
}

std::string describe(const Type& type) {
  const char* kind = "the class";
  if (type.kind == TypeKind::primitive) kind = "the primitive type";
  if (type.kind == TypeKind::dataType) kind = "the datatype";
  if (type.kind == TypeKind::enumeration) kind = "the enumeration";
  return std::string(kind) + " '" + type.qualifiedName + "'";
}

}  // namespace modelgen
