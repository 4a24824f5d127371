// Turns a tree, as its files declare it, into the definitions of the model. Nothing is worked out on the way: the
// definitions say what the author wrote, so that DefinitionReader gets the same tree out of them.
#pragma once

#include <tessel_config_datamodel/schema/SchemaData.hpp>

#include "language/MenuTree.hpp"
#include "loading/ModelTypes.hpp"

namespace kconfig {

// A new SchemaData in that model. To be called inside a transaction, by which all of it stays or goes. Linear in the
// tree. The model's thread.
schema::SchemaData writeSchema(MenuTree const& tree, plinth::Model const& model);

}  // namespace kconfig
