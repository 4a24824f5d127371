// Expressions as an author would write them.
#pragma once

#include <string>

#include "language/ExpressionPool.hpp"

namespace kconfig {

// "A && (B || C != y)"; empty for noExpression. Constants stand in quotes, except y, m and n.
std::string textOf(ExpressionPool const& pool, SymbolTable const& symbols, ExpressionId id);

}  // namespace kconfig
