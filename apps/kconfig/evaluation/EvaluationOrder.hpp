// The order in which symbols are worked out, and the groups of symbols that depend on each other. Such a group is a
// choice with its members, or a loop. Plain values, made once per tree.
#pragma once

#include <string>
#include <vector>

#include "evaluation/CompiledTree.hpp"

namespace kconfig {

// The order in which a hash table of names would visit the symbols. Where symbols depend on each other their values
// depend on which one is asked first; this order is the one that existing tools have, and so part of the language.
std::vector<SymbolId> visitingOrder(SymbolTable const& symbols);

struct EvaluationOrder {
  std::vector<SymbolId> visiting;  // as above
  // The order of evaluation: the visiting order, or where symbols depend on each other in very long chains each symbol
  // after those that it depends on, so that calculations do not nest that deep.
  std::vector<SymbolId> symbols;
  std::vector<SymbolId> menu;  // the order of a second evaluation: that of the menu, under the same condition
  std::vector<std::vector<SymbolId>> groups;  // those that depend on each other, choices with their members included
};

// Linear in the size of the tree; does not recurse.
EvaluationOrder evaluationOrder(MenuTree const& tree, CompiledTree const& compiled);

// One loop for each group of symbols that has one: the symbols in the order in which each depends on the next, a choice
// counting as one with its members. A choice and its members alone are no loop.
std::vector<std::vector<SymbolId>> findLoops(MenuTree const& tree, CompiledTree const& compiled,
                                             EvaluationOrder const& order);

}  // namespace kconfig
