// Gets the tree out of the definitions of the model, for compiling it: entries, symbols and conditions stand in it as
// in the one that the definitions were written from; help texts, which nothing is worked out from, are left out.
#pragma once

#include <tessel_config_datamodel/schema/ParamDef.hpp>
#include <tessel_config_datamodel/schema/SchemaData.hpp>
#include <vector>

#include "language/MenuTree.hpp"
#include "loading/ModelTypes.hpp"

namespace kconfig {

struct Definitions {
  MenuTree tree;
  // The definition of each entry, by EntryId, and of each symbol that has one, by SymbolId.
  std::vector<schema::ControllableDef> entries;
  std::vector<schema::ParamDef> params;
};

// Raises std::runtime_error where the definitions say what writeSchema never writes. Linear. The model's thread.
Definitions readDefinitions(schema::SchemaData const& schema);

}  // namespace kconfig
