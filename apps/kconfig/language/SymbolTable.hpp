// The names that a configuration knows. A plain name, a quoted constant and a choice may bear the same text and are
// three symbols. The three constants n, m and y come first, so that their numbers are their values. The table owns its
// rows, the texts belong to the pool that the caller names. Used from one thread at a time.
#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "language/Tristate.hpp"

namespace kconfig {

using SymbolId = std::uint32_t;

constexpr SymbolId symbolNo = 0;
constexpr SymbolId symbolMod = 1;
constexpr SymbolId symbolYes = 2;
constexpr SymbolId noSymbol = ~SymbolId{0};

enum class SymbolKind : std::uint8_t { Plain, Constant, Choice };

struct Symbol {
  std::string_view name;  // empty for a choice without a name
  SymbolKind kind = SymbolKind::Plain;
  SymbolType type = SymbolType::Unknown;
  bool optional = true;    // false for a choice that must have a member set
  bool automatic = false;  // its value comes from the environment or the tool, and is never written to a file
  bool defined = false;    // some entry declares it
};

class SymbolTable {
 public:
  SymbolTable();

  // The symbol of an unquoted word, made at its first mention. O(1).
  SymbolId plain(std::string_view name);
  // The constant that a quoted word stands for. O(1).
  SymbolId constant(std::string_view text);
  // The choice of that name; a new one at each call when the name is empty. O(1).
  SymbolId choice(std::string_view name);

  // The plain symbol, else the choice, of that name, else noSymbol. O(1).
  SymbolId find(std::string_view name) const;
  // The same where some entry declares it, else noSymbol. O(1).
  SymbolId findDefined(std::string_view name) const;

  Symbol& operator[](SymbolId id) { return m_symbols[id]; }
  Symbol const& operator[](SymbolId id) const { return m_symbols[id]; }
  SymbolId size() const { return static_cast<SymbolId>(m_symbols.size()); }

 private:
  using Index = std::unordered_map<std::string_view, SymbolId>;

  SymbolId lookUp(Index& index, std::string_view name, SymbolKind kind);
  SymbolId add(std::string_view name, SymbolKind kind);

  std::vector<Symbol> m_symbols;
  Index m_plain;
  Index m_constants;
  Index m_choices;
};

// y, m and n are the same three symbols wherever they stand, quoted or not.
constexpr bool isTristateConstant(SymbolId id) { return id <= symbolYes; }
constexpr SymbolId symbolOf(Tristate value) { return static_cast<SymbolId>(value); }

}  // namespace kconfig
