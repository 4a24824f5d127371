// Looks through a tree for what its authors can hardly have meant: symbols without a type, selections of symbols that
// can't be selected, ranges of what is no number, loops. Nothing is changed; all goes to the diagnostics.
#pragma once

#include "evaluation/CompiledTree.hpp"
#include "evaluation/EvaluationOrder.hpp"
#include "language/Diagnostics.hpp"

namespace kconfig {

// Warnings about single entries and properties, in the order of the text.
void checkEntries(MenuTree const& tree, CompiledTree const& compiled, Diagnostics& diagnostics);

// An error for each dependency loop, placed where one of its symbols is declared.
void checkLoops(MenuTree const& tree, CompiledTree const& compiled, EvaluationOrder const& order,
                Diagnostics& diagnostics);

}  // namespace kconfig
