// The rules that tables have to keep before anything is derived from them. Each function stands for one family of rules
// and reports every breach; none changes anything. A link that the linker could not make is null and passed over here,
// as it is reported already.
#pragma once

#include <deque>

#include "modelgen/Diagnostic.hpp"
#include "modelgen/model.hpp"

namespace modelgen {

// Names of models, packages and folders, before any of them is linked. False where one name stands for two packages, so
// that names of types would mislead.
bool checkPackages(std::deque<ModelRow> const& models, Diagnostics& diagnostics);

// Form, order and uniqueness of all names of one linked model; literal values.
void checkNames(Model const& model, Diagnostics& diagnostics);

// Each property by itself: shape, kind and type fit together; defaults can be read; flags agree with the rules.
void checkProperties(Model const& model, Diagnostics& diagnostics);

// Properties against each other: opposites, qualifiers, derived views, the chain of bases.
void checkLinks(Model const& model, Diagnostics& diagnostics);

}  // namespace modelgen
