#include "checks/ValueChecks.hpp"

#include <string>

namespace kconfig {

void checkSelections(const MenuTree& tree, const CompiledTree& compiled, Evaluator& evaluator,
                     Diagnostics& diagnostics) {
  for (const Selection& selection : compiled.selects) {
    const bool unmet = evaluator[selection.target].direct == Tristate::No &&
                       compiled.symbols[selection.target].choice == noSymbol &&
                       evaluator.valueOf(selection.condition) != Tristate::No;
    if (unmet) {
      const Position position = tree.properties[selection.source].position;
      diagnostics.warning(tree.files[position.file].name, position.line,
                          "'" + std::string(tree.symbols[selection.selector].name) + "' selects '" +
                              std::string(tree.symbols[selection.target].name) + "', whose dependencies are not met");
    }
  }
}

void checkRanges(const MenuTree& tree, const Evaluator& evaluator, const UserValues& users,
                 std::string_view profileName, Diagnostics& diagnostics) {
  for (SymbolId symbol = 0; symbol < tree.symbols.size(); ++symbol) {
    if (evaluator[symbol].outOfRange) {
      diagnostics.warning(profileName, users[symbol].line,
                          "the value " + std::string(users[symbol].text) + " of '" +
                              std::string(tree.symbols[symbol].name) + "' is out of its range and does not count");
    }
  }
}

}  // namespace kconfig
