// Brings the lines of a saved configuration to the symbols of a tree.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "evaluation/UserValues.hpp"
#include "language/Diagnostics.hpp"
#include "profiles/ProfileFile.hpp"

namespace kconfig {

// Assigns one line. What is wrong with it, empty for nothing: an unknown symbol, a value that does not fit, or a line
// that contradicts an earlier one.
std::string assignLine(ProfileLine const& line, SymbolTable const& symbols, UserValues& users);

// Assigns each line in turn. Unknown symbols, values that do not fit and lines that contradict earlier ones are warned
// of with their place in the file; the rest counts.
void applyProfile(std::vector<ProfileLine> const& lines, std::string_view fileName, SymbolTable const& symbols,
                  UserValues& users, Diagnostics& diagnostics);

}  // namespace kconfig
