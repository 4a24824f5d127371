// Reads a model.yaml and the package.yaml files that it lists into rows. Only the form is judged here: known keys,
// required keys, texts, flags and numbers. What the names mean is judged by the linker and the checks.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "modelgen/Diagnostic.hpp"
#include "modelgen/Tables.hpp"

namespace modelgen {

// `file` is the path of a model.yaml, as it is to be named in messages. Package files are looked for at
// <folder of the model>/<folder of the package>/package.yaml. Gives nothing where a file could not be read or parsed,
// or is not laid out so that all its rows could be found; otherwise everything that was read. Problems are in
// `diagnostics`. Each file read is appended to `filesRead`.
std::optional<ModelRow> readModel(std::string const& file, Diagnostics& diagnostics,
                                  std::vector<std::string>& filesRead);

}  // namespace modelgen
