// The files that a configuration gives, as productions of the state: each owns its script. The model's thread.
#pragma once

#include <string>
#include <tessel_config_datamodel/runtime/ConfigurationState.hpp>

#include "loading/ModelTypes.hpp"
#include "writing/OutputItems.hpp"

namespace kconfig {

// Writes the scripts of both productions in one transaction. A script that says the same as before stays untouched,
// any other counts its revision up.
void produce(runtime::ConfigurationState const& state, Output const& output);

// The text of a production's script, empty before the first produce(). The keys stand in loading/Vocabulary.hpp.
std::string scriptOf(runtime::ConfigurationState const& state, std::u16string_view production);

}  // namespace kconfig
