// The first step of compiling: reads the definitions of the model into rows of symbols, entries and conditions. Help
// texts, which nothing is worked out from, are no part of the definitions.
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

// Raises std::runtime_error where the definitions say what DefinitionWriter never writes. Linear. The model's thread.
Definitions readDefinitions(schema::SchemaData const& schema);

}  // namespace kconfig
