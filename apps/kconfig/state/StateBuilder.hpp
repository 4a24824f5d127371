// Makes the live state of a configuration from its definitions: a parameter with typed data for each symbol, the
// categories of the menu, tags, perspectives and productions. Values are written later, by StateWriter.
#pragma once

#include <tessel_config_datamodel/runtime/CategoryState.hpp>
#include <tessel_config_datamodel/runtime/ConfigurationState.hpp>
#include <tessel_config_datamodel/runtime/ParamState.hpp>
#include <vector>

#include "evaluation/CompiledTree.hpp"
#include "loading/DefinitionReader.hpp"
#include "reader/TreeReader.hpp"

namespace kconfig {

struct States {
  runtime::ConfigurationState root;
  std::vector<runtime::ParamState> params;         // by SymbolId; empty for symbols without a definition
  std::vector<runtime::CategoryState> categories;  // by EntryId; empty for entries that are no category
};

// Definitions also learn their initial states. To be called inside a transaction. Linear. The model's thread.
States buildStates(plinth::Model const& model, schema::SchemaData const& schema, Definitions const& definitions,
                   CompiledTree const& compiled, HelpTexts const& helps);

}  // namespace kconfig
