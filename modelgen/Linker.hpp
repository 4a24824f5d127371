// Makes the model out of the rows: one object for each row, and every name that a row mentions resolved to the object
// that it names. Reports names that lead nowhere; whether what they lead to is fitting is judged by the checks.
#pragma once

#include "modelgen/Diagnostic.hpp"
#include "modelgen/model.hpp"

namespace modelgen {

// Fills `set.models` from `set.rows`. A name that could not be resolved is reported and its link left null.
void linkModels(ModelSet& set, Diagnostics& diagnostics);

}  // namespace modelgen
