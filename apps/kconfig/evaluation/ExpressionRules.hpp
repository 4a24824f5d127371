// The rewriting of conditions on which the meaning of a configuration rests. Most of it keeps the value of an
// expression, yet not all: a tristate symbol tested against n or m takes part with its own value after some of these
// steps, so the steps and their order are part of the language. Results are remembered per expression; they depend on
// the types of symbols, so forget() has to be called when a type changes. The rules refer to a pool and a table that
// live longer.
#pragma once

#include <string>
#include <vector>

#include "language/ExpressionPool.hpp"
#include "language/SymbolTable.hpp"

namespace kconfig {

class ExpressionRules {
 public:
  ExpressionRules(ExpressionPool& pool, SymbolTable const& symbols) : m_pool(pool), m_symbols(symbols) {}

  // Brings negations down to the symbols and simplifies the comparisons of bool symbols with y and n.
  ExpressionId normalized(ExpressionId id);
  // Joins operands of && and || that say the same or contradict each other.
  ExpressionId withoutDuplicates(ExpressionId id);
  // For a place that knows only y and n: a test of a tristate symbol against n becomes the symbol itself.
  ExpressionId forBoolean(ExpressionId id);
  // Replaces each m by m && modules, so that it holds only where modules are on. The same modules at each call.
  ExpressionId withModules(ExpressionId id, SymbolId modules);
  // The condition "id is not n" in terms of its symbols.
  ExpressionId differsFromNo(ExpressionId id) { return comparedWithNo(id, Operator::Unequal); }

  bool mentions(ExpressionId id, SymbolId symbol) const;
  // Whether id can't hold while symbol is n, as far as its outermost operands of && show.
  bool dependsOn(ExpressionId id, SymbolId symbol) const;
  // Whether what remains of b is y when all operands that a also has are taken out of both.
  bool coveredBy(ExpressionId b, ExpressionId a);

  void forget();

 private:
  using List = std::vector<ExpressionId>;

  ExpressionId normalize(ExpressionId id);
  ExpressionId testForBoolean(ExpressionId id);
  ExpressionId requireModules(ExpressionId id, SymbolId modules);
  ExpressionId normalizeComparison(ExpressionId id);
  ExpressionId normalizeNegation(ExpressionId operand);
  ExpressionId eliminateDuplicates(ExpressionId id);
  void joinPairs(Operator op, List& operands, unsigned& changes);
  ExpressionId joined(Operator op, ExpressionId a, ExpressionId b);
  ExpressionId joinedByOr(ExpressionId a, ExpressionId b, SymbolId symbol);
  ExpressionId joinedByAnd(ExpressionId a, ExpressionId b, SymbolId symbol);
  ExpressionId joinedTristatesByAnd(ExpressionId a, ExpressionId b, SymbolId symbol);
  ExpressionId withoutConstants(ExpressionId id);
  bool same(ExpressionId a, ExpressionId b);
  void cancel(ExpressionId& a, ExpressionId& b);
  void cancelPairs(Operator op, ExpressionId& a, ExpressionId& b);
  ExpressionId comparedWithNo(ExpressionId id, Operator op);

  template <class Work>
  ExpressionId once(List& results, ExpressionId id, Work const& work);
  template <class Rewrite>
  ExpressionId listOf(Operator op, ExpressionId list, Rewrite const& rewrite);
  List operandsOf(ExpressionId id, Operator op) const;
  SymbolId joinableSymbol(ExpressionId id) const;
  bool compares(ExpressionId id, Operator op, SymbolId right) const {
    return m_pool.op(id) == op && m_pool.right(id) == right;
  }
  ExpressionId constant(SymbolId id) { return m_pool.symbol(id); }

  ExpressionPool& m_pool;
  SymbolTable const& m_symbols;
  List m_normalized;  // by expression, noExpression where not known yet
  List m_withoutDuplicates;
  List m_forBoolean;
  List m_withModules;
};

}  // namespace kconfig
