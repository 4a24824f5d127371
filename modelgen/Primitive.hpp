// The primitive types of the foundation: their names, and what a property of each may do. Immutable after first use.
#pragma once

#include <string>
#include <vector>

#include "modelgen/model.hpp"

namespace modelgen {

struct Primitive : Type {
  std::string cppType;
  // Whether a single value of this type can be compared in a query.
  bool queryable = true;
  // Whether a package that uses the type keeps a handle on it in the meta package.
  bool keepsHandle = false;
};

// Null where there is no primitive type of that name.
Primitive const* findPrimitive(std::string const& name);
std::vector<std::string> primitiveNames();

Primitive const* asPrimitive(Type const* type);

// True for the array type of the host, which is held by pointer and copied through the host.
bool isHostArray(Type const& type);
bool isString(Type const& type);

}  // namespace modelgen
