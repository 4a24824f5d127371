#include "modelgen/model.hpp"

#include <algorithm>

namespace modelgen {
namespace {

template <class Sequence>
auto findNamed(Sequence const& sequence, std::string const& name) -> decltype(&sequence.front()) {
  auto const found =
      std::find_if(sequence.begin(), sequence.end(), [&name](auto const& each) { return each.name == name; });
  return found == sequence.end() ? nullptr : &*found;
}

template <class Derived>
Derived const* as(Type const* type, TypeKind kind) {
  return type != nullptr && type->kind == kind ? static_cast<Derived const*>(type) : nullptr;
}

}  // namespace

Class const* asClass(Type const* type) { return as<Class>(type, TypeKind::classType); }
DataType const* asDataType(Type const* type) { return as<DataType>(type, TypeKind::dataType); }
Enum const* asEnum(Type const* type) { return as<Enum>(type, TypeKind::enumeration); }

int positionAmongSiblings(Property const& property) {
  Class const* const owner = asClass(property.owner);
  auto const& siblings = owner != nullptr ? owner->properties : asDataType(property.owner)->properties;
  int position = 0;
  for (Property const& each : siblings) {
    if (&each == &property) break;
    ++position;
  }
  return position;
}

bool conformsTo(Class const& derived, Class const& base) {
  for (Class const* each = &derived; each != nullptr; each = each->base) {
    if (each == &base) return true;
  }
  return false;
}

Property const* findProperty(Type const& owner, std::string const& name) {
  if (DataType const* const dataType = asDataType(&owner)) return findNamed(dataType->properties, name);
  for (Class const* each = asClass(&owner); each != nullptr; each = each->base) {
    if (Property const* const found = findNamed(each->properties, name)) return found;
  }
  return nullptr;
}

Literal const* findLiteral(Enum const& enumeration, std::string const& name) {
  return findNamed(enumeration.literals, name);
}

std::string describe(Type const& type) {
  char const* kind = "the class";
  if (type.kind == TypeKind::primitive) kind = "the primitive type";
  if (type.kind == TypeKind::dataType) kind = "the datatype";
  if (type.kind == TypeKind::enumeration) kind = "the enumeration";
  return std::string(kind) + " '" + type.qualifiedName + "'";
}

}  // namespace modelgen
