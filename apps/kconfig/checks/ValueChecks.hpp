// Looks through an evaluated configuration for values that were not to be had as asked.
#pragma once

#include <string_view>

#include "evaluation/Evaluator.hpp"
#include "language/Diagnostics.hpp"

namespace kconfig {

// A warning for each symbol that is selected although its own dependencies do not hold, placed at the select.
void checkSelections(MenuTree const& tree, CompiledTree const& compiled, Evaluator& evaluator,
                     Diagnostics& diagnostics);

// A warning for each value that a line of the profile gives and that lies outside the range of its symbol.
void checkRanges(MenuTree const& tree, Evaluator const& evaluator, UserValues const& users,
                 std::string_view profileName, Diagnostics& diagnostics);

}  // namespace kconfig
