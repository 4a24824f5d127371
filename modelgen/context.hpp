// The data that templates see. One object for a model, a package, a class, a datatype or an enumeration, with every
// derived fact under a key of its own; facts.mustache shows most of them in use. Keys follow three rules:
//  - every object of a kind has all keys of its kind, so that a template never meets a key that is there at times;
//  - what may be absent is the flag false in place of an object: {{#opposite}}{{name}}{{/opposite}};
//  - a list xs comes with the flag hasXs, and its objects with the flags first and last.
// Texts are plain text, never escaped. Free functions without state; the model must be derived.
#pragma once

#include <string>

#include "modelgen/TemplateSet.hpp"
#include "modelgen/model.hpp"

namespace modelgen {

// `root` is the folder below which tables are named in generated files; table names are relative to it.
Data modelData(Model const& model, std::string const& root);
Data packageData(Package const& package, std::string const& root);
Data classData(Class const& type, std::string const& root);
Data dataTypeData(DataType const& type, std::string const& root);
Data enumData(Enum const& type, std::string const& root);

}  // namespace modelgen
