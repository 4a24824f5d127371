#include "evaluation/UserValues.hpp"

#include <algorithm>
#include <string>

namespace kconfig {

namespace {

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

constexpr bool isHexDigit(char c) { return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

bool isDecimal(std::string_view text) {
  if (!text.empty() && text.front() == '-') {
    text.remove_prefix(1);
  }
  return !text.empty() && (text.front() != '0' || text.size() == 1) && std::all_of(text.begin(), text.end(), isDigit);
}

bool isHexadecimal(std::string_view text) {
  if (text.size() >= 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    text.remove_prefix(2);
  }
  return !text.empty() && std::all_of(text.begin(), text.end(), isHexDigit);
}

}  // namespace

bool isValidText(SymbolType type, std::string_view text) {
  switch (type) {
    case SymbolType::String:
      return true;
    case SymbolType::Integer:
      return isDecimal(text);
    case SymbolType::Hexadecimal:
      return isHexadecimal(text);
    case SymbolType::Boolean:
    case SymbolType::Tristate:
      return !text.empty() && (text.front() == 'y' || text.front() == 'n' || text.front() == 'm');
    case SymbolType::Unknown:
      break;
  }
  return false;
}

bool unquote(std::string_view text, std::string& result) {
  result.clear();
  if (text.empty() || text.front() != '"') {
    return false;
  }
  for (std::size_t at = 1; at < text.size(); ++at) {
    if (text[at] == '"') {
      return true;
    }
    if (text[at] == '\\' && ++at == text.size()) {
      break;
    }
    result += text[at];
  }
  return false;
}

UserValues::UserValues(MenuTree& tree, CompiledTree const& compiled)
    : m_tree(tree), m_compiled(compiled), m_values(tree.symbols.size()) {
  for (SymbolId id = 0; id < m_values.size(); ++id) {
    m_values[id].present = tree.symbols[id].kind == SymbolKind::Choice;
  }
}

Assignment UserValues::assign(SymbolId symbol, std::string_view text, std::uint32_t line) {
  switch (m_tree.symbols[symbol].type) {
    case SymbolType::Tristate:
      if (!text.empty() && text.front() == 'm') {
        return store(symbol, Tristate::Mod, line);
      }
      [[fallthrough]];
    case SymbolType::Boolean:
      if (text.empty() || (text.front() != 'y' && text.front() != 'n')) {
        return Assignment::InvalidValue;
      }
      return store(symbol, text.front() == 'y' ? Tristate::Yes : Tristate::No, line);
    case SymbolType::String: {
      std::string unquoted;
      return unquote(text, unquoted) ? storeText(symbol, unquoted, line) : Assignment::InvalidString;
    }
    case SymbolType::Integer:
    case SymbolType::Hexadecimal:
      return isValidText(m_tree.symbols[symbol].type, text) ? storeText(symbol, text, line) : Assignment::InvalidValue;
    case SymbolType::Unknown:
      break;
  }
  return Assignment::Untyped;
}

Assignment UserValues::unset(SymbolId symbol, std::uint32_t line) {
  return isLogical(m_tree.symbols[symbol].type) ? store(symbol, Tristate::No, line) : Assignment::Done;
}

Assignment UserValues::store(SymbolId symbol, Tristate value, std::uint32_t line) {
  UserValue& own = m_values[symbol];
  Assignment const result = own.present ? Assignment::Override : Assignment::Done;
  own.present = true;
  own.tristate = value;
  own.line = line;
  if (m_compiled.symbols[symbol].choice == noSymbol) {
    return result;
  }
  Assignment const told = informChoice(symbol);
  return told == Assignment::Done ? result : told;
}

Assignment UserValues::storeText(SymbolId symbol, std::string_view text, std::uint32_t line) {
  UserValue& own = m_values[symbol];
  Assignment const result = own.present ? Assignment::Override : Assignment::Done;
  own.present = true;
  own.text = m_tree.texts.intern(text);
  own.line = line;
  return result;
}

bool UserValues::isAsked(SymbolId symbol) const {
  UserValue const& value = m_values[symbol];
  bool const choice = m_tree.symbols[symbol].kind == SymbolKind::Choice;
  return choice ? !value.present || value.tristate != Tristate::No || value.member != noSymbol : value.present;
}

void UserValues::takeOver(UserValues const& other) {
  for (SymbolId symbol = 0; symbol < m_values.size(); ++symbol) {
    if (other.isAsked(symbol)) {
      m_values[symbol] = other[symbol];
    }
  }
}

// The last member that is y wins, and the choice is what its highest member is.
Assignment UserValues::informChoice(SymbolId member) {
  UserValue& choice = m_values[m_compiled.symbols[member].choice];
  Tristate const value = m_values[member].tristate;
  Assignment result = Assignment::Done;
  if (value == Tristate::Mod && choice.tristate == Tristate::Yes) {
    choice.present = false;
    result = Assignment::Inconsistent;
  } else if (value == Tristate::Yes) {
    result = choice.tristate != Tristate::No ? Assignment::Inconsistent : Assignment::Done;
    choice.member = member;
  }
  choice.tristate = either(choice.tristate, value);
  choice.line = m_values[member].line;
  return result;
}

}  // namespace kconfig
