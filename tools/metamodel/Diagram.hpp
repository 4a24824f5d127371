// The class diagram of one package in the language of Graphviz.
// Thread rule: read only.
#pragma once

#include <ostream>

#include "Selection.hpp"

namespace metamodel {

/// Classes are boxes with their properties; a hollow arrow leads to the superclass, one with a diamond at its foot to
/// what a property contains, a plain one to what it refers to. What lies in other packages is a grey box with its name
/// alone.
void printDiagram(meta::PackageImpl const& package, std::ostream& out);

}  // namespace metamodel
