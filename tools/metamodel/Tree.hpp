// The metamodel as an indented tree, for people.
// Thread rule: read only.
#pragma once

#include <ostream>

#include "Selection.hpp"

namespace metamodel {

void printTree(Selection const& selection, std::ostream& out);

/// `sequence of Rule`, `map of ConfigEntry by Key`, `String?`: the type and shape of a property, seen from `home`.
std::string shapeText(meta::PropertyImpl const& property, meta::PackageImpl const* home);

}  // namespace metamodel
