// What a generated file says, in its order and free of any format: headings and the values of symbols. Plain values
// that refer to texts of the configuration they were made from.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "language/Tristate.hpp"

namespace kconfig {

struct OutputItem {
  enum class Kind : std::uint8_t { Heading, Symbol };

  Kind kind = Kind::Symbol;
  SymbolType type = SymbolType::Unknown;
  Tristate value = Tristate::No;  // of a bool or tristate symbol, as it is to be written
  std::string_view name;          // of the symbol, or the text of the heading
  std::string_view text;          // of a string or number
};

struct Output {
  std::string_view title;
  std::string_view prefix;  // of every symbol, "CONFIG_" unless the environment says otherwise
  std::vector<OutputItem> items;
};

// The file that a later run reads again: one line for each symbol, set or not.
std::string formatConfiguration(Output const& output);

// The line of that file for one symbol, with its end.
std::string formatSetting(std::string_view prefix, OutputItem const& item);

// The file that a C program includes: one macro for each symbol that is set.
std::string formatHeader(Output const& output);

// Puts a string into the quotes of a configuration file.
std::string quote(std::string_view text);

}  // namespace kconfig
