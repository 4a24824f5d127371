#include "modelgen/Primitive.hpp"

#include <array>

namespace modelgen {
namespace {

Primitive primitive(std::string const& name, std::string const& cppType, bool queryable, bool keepsHandle) {
  Primitive result;
  result.kind = TypeKind::primitive;
  result.name = name;
  result.qualifiedName = name;
  result.cppType = cppType;
  result.queryable = queryable;
  result.keepsHandle = keepsHandle;
  return result;
}

std::array<Primitive, 8> const& primitives() {
  static std::array<Primitive, 8> const all{primitive("Boolean", "bool", true, false),
                                            primitive("Integer", "std::int32_t", true, false),
                                            primitive("Integer64", "std::int64_t", true, true),
                                            primitive("KestrelArray", "kestrel_array", false, true),
                                            primitive("Real", "double", true, false),
                                            primitive("String", "std::u16string", true, false),
                                            primitive("UInteger64", "std::uint64_t", true, true),
                                            primitive("UnlimitedNatural", "std::uint32_t", true, false)};
  return all;
}

}  // namespace

Primitive const* findPrimitive(std::string const& name) {
  for (Primitive const& each : primitives()) {
    if (each.name == name) return &each;
  }
  return nullptr;
}

std::vector<std::string> primitiveNames() {
  std::vector<std::string> result;
  for (Primitive const& each : primitives()) result.push_back(each.name);
  return result;
}

Primitive const* asPrimitive(Type const* type) {
  return type != nullptr && type->kind == TypeKind::primitive ? static_cast<Primitive const*>(type) : nullptr;
}

bool isHostArray(Type const& type) { return type.kind == TypeKind::primitive && type.name == "KestrelArray"; }
bool isString(Type const& type) { return type.kind == TypeKind::primitive && type.name == "String"; }

}  // namespace modelgen
