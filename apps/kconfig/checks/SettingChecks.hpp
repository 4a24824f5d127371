// Settings that somebody gives by hand: takes them in, and tells of each that did not come to what was asked why not.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "evaluation/Evaluator.hpp"
#include "language/Diagnostics.hpp"

namespace kconfig {

// A symbol and the value to give it, as a profile would write it.
struct Setting {
  std::string symbol;
  std::string value;
};

// Gives the settings to users, which may ask for other values already. An error for each that is no value of a symbol.
void takeSettings(std::vector<Setting> const& settings, std::string_view source, MenuTree& tree,
                  CompiledTree const& compiled, UserValues& users, Diagnostics& diagnostics);

// The settings but numbers that lie out of their symbols' ranges, which are those of an evaluation with all settings.
std::vector<Setting> withinRanges(std::vector<Setting> const& settings, MenuTree& tree, CompiledTree const& compiled,
                                  Evaluator& evaluator);

// An error for each setting whose symbol has another value after the evaluation. Says what stands against it: a later
// setting, no prompt, dependencies, a range, a selection or a choice.
void checkSettings(std::vector<Setting> const& settings, std::string_view source, MenuTree& tree,
                   CompiledTree const& compiled, Evaluator& evaluator, Diagnostics& diagnostics);

// "there is no symbol 'NAME'", with the nearest one where some comes near. Linear in the number of symbols.
std::string unknownSymbol(SymbolTable const& symbols, std::string_view name);

}  // namespace kconfig
