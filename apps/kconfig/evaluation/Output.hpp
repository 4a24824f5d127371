// Takes from an evaluated configuration what its generated files say.
#pragma once

#include "evaluation/Evaluator.hpp"
#include "writing/OutputItems.hpp"

namespace kconfig {

// Whether a menu shows the title of a menu, a comment or a choice.
bool isShown(MenuNode const& node, Evaluator& evaluator);

// The headings of the menus and comments that are shown and the symbols that have a line, in the menu's order; a symbol
// with several entries stands where the first one is. The texts are those of the tree and the evaluator.
Output collectOutput(MenuTree const& tree, CompiledTree const& compiled, Evaluator& evaluator, std::string_view prefix);

}  // namespace kconfig
