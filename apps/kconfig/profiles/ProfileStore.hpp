// What a user asked for as a profile of the model's store, and back. An entry holds data of its symbol's class; the
// exact spelling of a number stands in the data's description, the place in the file in its help. The choice that a
// member belongs to has an entry of its own, since the last member that is y wins and a map has no order.
// The model's thread.
#pragma once

#include <string_view>
#include <tessel_config_datamodel/ext/ConfigProfile.hpp>
#include <tessel_config_datamodel/ext/ConfigStore.hpp>

#include "evaluation/UserValues.hpp"
#include "loading/DefinitionReader.hpp"

namespace kconfig {

// A new profile in the store with an entry for each symbol that was asked for, in one transaction. Raises
// UniquenessConstraint when the store has a profile of that id.
ext::ConfigProfile storeProfile(ext::ConfigStore const& store, std::string_view id, Definitions const& definitions,
                                UserValues const& users);

// Everything that the profile asks for. Entries that no symbol or no value fits are left out.
UserValues readProfileValues(ext::ConfigProfile const& profile, Definitions& definitions, CompiledTree const& compiled);

}  // namespace kconfig
