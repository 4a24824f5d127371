#include "checks/ValueChecks.hpp"

#include <string>

namespace kconfig {

void checkSelections(MenuTree const& tree, CompiledTree const& compiled, Evaluator& evaluator,
                     Diagnostics& diagnostics) {
  for (Selection const& selection : compiled.selects) {
    bool const unmet = evaluator[selection.target].direct == Tristate::No &&
                       compiled.symbols[selection.target].choice == noSymbol &&
                       evaluator.valueOf(selection.condition) != Tristate::No;
    if (unmet) {
      Position const position = tree.properties[selection.source].position;
      diagnostics.warning(tree.files[position.file].name, position.line,
                          "'" + std::string(tree.symbols[selection.selector].name) + "' selects '" +
                              std::string(tree.symbols[selection.target].name) + "', whose dependencies are not met");
    }
  }
}

void checkRanges(MenuTree const& tree, Evaluator const& evaluator, UserValues const& users,
                 std::string_view profileName, Diagnostics& diagnostics) {
  for (SymbolId symbol = 0; symbol < tree.symbols.size(); ++symbol) {
    if (evaluator[symbol].outOfRange && users[symbol].line != 0) {
      diagnostics.warning(profileName, users[symbol].line,
                          "the value " + std::string(users[symbol].text) + " of '" +
                              std::string(tree.symbols[symbol].name) + "' is out of its range and does not count");
    }
  }
}

}  // namespace kconfig
