// Which files come from which template. The table outputs.yaml in the folder of the templates has one row for each kind
// of file: the template, what it is rendered for, the path of the result, and a flag of the data that must be true:
//     - {template: class.hpp.mustache, for: class, path: "include/{{header}}", when: isConcrete}
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "modelgen/Diagnostic.hpp"
#include "modelgen/OutputFolder.hpp"
#include "modelgen/TemplateSet.hpp"
#include "modelgen/model.hpp"

namespace modelgen {

enum class Scope { model, package, classType, dataType, enumeration };

struct PlanRow {
  Text templateFile;
  Scope scope = Scope::model;
  Text path;
  std::optional<Text> when;  // names a flag of the data; the file is made where it is true
};

// Reads <folder>/outputs.yaml. Problems are reported; the rows that could be read are given.
std::vector<PlanRow> readPlan(std::string const& folder, Diagnostics& diagnostics);

// The files of the generated model of `set`, by path. With `withText` false only the paths are rendered. The result
// counts only if nothing was reported.
std::vector<OutputFile> renderPlan(std::vector<PlanRow> const& plan, Model const& model, std::string const& root,
                                   bool withText, TemplateSet& templates, Diagnostics& diagnostics);

}  // namespace modelgen
