// The three-valued logic of the language and the types that a symbol can have. Plain values, usable from any thread.
#pragma once

#include <algorithm>
#include <cstdint>

namespace kconfig {

enum class Tristate : std::uint8_t { No = 0, Mod = 1, Yes = 2 };

constexpr Tristate both(Tristate a, Tristate b) { return std::min(a, b); }
constexpr Tristate either(Tristate a, Tristate b) { return std::max(a, b); }
constexpr Tristate negated(Tristate a) { return static_cast<Tristate>(2 - static_cast<int>(a)); }

enum class SymbolType : std::uint8_t { Unknown, Boolean, Tristate, Integer, Hexadecimal, String };

constexpr bool isLogical(SymbolType type) { return type == SymbolType::Boolean || type == SymbolType::Tristate; }
constexpr bool isNumeric(SymbolType type) { return type == SymbolType::Integer || type == SymbolType::Hexadecimal; }

// The keyword that declares the type, "unknown" for a symbol that nothing declares.
constexpr char const* keywordOf(SymbolType type) {
  switch (type) {
    case SymbolType::Boolean:
      return "bool";
    case SymbolType::Tristate:
      return "tristate";
    case SymbolType::Integer:
      return "int";
    case SymbolType::Hexadecimal:
      return "hex";
    case SymbolType::String:
      return "string";
    case SymbolType::Unknown:
      break;
  }
  return "unknown";
}

}  // namespace kconfig
