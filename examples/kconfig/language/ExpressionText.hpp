// Expressions as an author would write them.
#pragma once

#include <string>

#include "language/ExpressionPool.hpp"

namespace kconfig {

// "A && (B || C != y)"; empty for noExpression. Constants stand in quotes, except y, m and n.
std::string textOf(const ExpressionPool& pool, const SymbolTable& symbols, ExpressionId id);

}  // namespace kconfig
