// What a user has asked for: values of symbols as a profile or a command gives them, checked against the symbols'
// types. A choice gets its value from its members as they are set one after the other. The table refers to a tree that
// lives longer and owns its texts. Used from one thread at a time.
#pragma once

#include <string_view>
#include <vector>

#include "evaluation/CompiledTree.hpp"

namespace kconfig {

struct UserValue {
  bool present = false;
  Tristate tristate = Tristate::No;
  std::string_view text;       // of strings and numbers
  SymbolId member = noSymbol;  // of a choice: the member asked for
  std::uint32_t line = 0;      // where the profile says so
};

enum class Assignment : std::uint8_t {
  Done,
  Override,       // done; the symbol had a value from an earlier line
  Inconsistent,   // done, but it contradicts what another member of the choice was given
  InvalidValue,   // not done: the text is no value of the symbol's type
  InvalidString,  // not done: the quotes are missing or not closed
  Untyped         // not done: nothing gives the symbol a type
};

class UserValues {
 public:
  UserValues(MenuTree& tree, CompiledTree const& compiled);

  // Gives symbol the value that text stands for in a profile: y, m, n, a number, or a string in quotes.
  Assignment assign(SymbolId symbol, std::string_view text, std::uint32_t line);
  // "is not set": n for a bool or tristate symbol, nothing for others.
  Assignment unset(SymbolId symbol, std::uint32_t line);

  UserValue const& operator[](SymbolId symbol) const { return m_values[symbol]; }
  // Whether anything was asked for: a choice is asked for through its members.
  bool isAsked(SymbolId symbol) const;
  // Gives the symbols that other asks for the values that they have there, choices of such members included.
  void takeOver(UserValues const& other);
  // Takes a value over as it was in another table of the same tree.
  void restore(SymbolId symbol, UserValue const& value) { m_values[symbol] = value; }

 private:
  Assignment store(SymbolId symbol, Tristate value, std::uint32_t line);
  Assignment storeText(SymbolId symbol, std::string_view text, std::uint32_t line);
  Assignment informChoice(SymbolId member);

  MenuTree& m_tree;
  CompiledTree const& m_compiled;
  std::vector<UserValue> m_values;
};

// Whether text can be the value of a symbol of that type.
bool isValidText(SymbolType type, std::string_view text);

// Takes the quotes and escapes off a string as profiles write it; false when a quote is missing.
bool unquote(std::string_view text, std::string& result);

}  // namespace kconfig
