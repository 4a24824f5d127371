// The metamodel as JSON, for programs: every name qualified, every list in metamodel order.
// Thread rule: read only.
#pragma once

#include <ostream>

#include "Selection.hpp"

namespace metamodel {

void printJson(Selection const& selection, std::ostream& out);

}  // namespace metamodel
