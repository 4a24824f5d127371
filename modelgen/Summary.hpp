// What a model holds, counted. Free functions without state; the model must be derived.
#pragma once

#include <iosfwd>

#include "modelgen/model.hpp"

namespace modelgen {

struct Counts {
  int classes = 0;
  int dataTypes = 0;
  int enums = 0;
  int literals = 0;
  int properties = 0;
  int operations = 0;
  int handles = 0;
};

Counts countPackage(Package const& package);
Counts countModel(Model const& model);

// A table with a line for the packages that only name others, one for each package and one for all.
void writeSummary(Model const& model, std::ostream& stream);

}  // namespace modelgen
