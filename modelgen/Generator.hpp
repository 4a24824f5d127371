// One run of the generator, from the tables to the output folder. Nothing is written unless all tables and templates of
// the run are in order.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "modelgen/Diagnostic.hpp"
#include "modelgen/model.hpp"

namespace modelgen {

enum class Mode { write, check, listOutputs, summary };

struct Options {
  std::string model;                 // path of the model.yaml to generate for
  std::vector<std::string> imports;  // those of the models it takes types from, each before its users
  std::string templates;             // folder with outputs.yaml and the templates
  std::string out;                   // folder to write to
  std::string root;                  // tables are named relative to it in generated files; empty: the model's parent
  std::string depfile;               // where to write the list of files read, for the build; empty: nowhere
  Mode mode = Mode::write;
};

enum class ExitStatus { done = 0, outOfDate = 1, refused = 2 };

// Reads, checks and derives the models of a run. Where a problem is found, `set` must not be used. Each file read is
// appended to `filesRead`.
void loadModels(Options const& options, ModelSet& set, Diagnostics& diagnostics, std::vector<std::string>& filesRead);

// Does what the options ask for. Results go to `out`; refusals and failures to `err`, one line each.
ExitStatus run(Options const& options, std::ostream& out, std::ostream& err);

}  // namespace modelgen
