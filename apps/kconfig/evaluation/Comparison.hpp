// How two values compare: as numbers where both are, else as texts.
#pragma once

#include <string_view>

#include "language/ExpressionPool.hpp"
#include "language/Tristate.hpp"

namespace kconfig {

struct ComparedValue {
  std::string_view text;
  SymbolType type;
};

bool holds(Operator op, ComparedValue const& left, ComparedValue const& right);

// The number that text begins with, limited to 64 bits; 0 if it begins with none. Base 0 takes the base from the
// prefix.
long long leadingNumber(std::string_view text, int base);

}  // namespace kconfig
