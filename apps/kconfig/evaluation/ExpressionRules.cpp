#include "evaluation/ExpressionRules.hpp"

#include <utility>

namespace kconfig {

namespace {

// The operator of a negation, each comparison's or list's own.
constexpr Operator opposite(Operator op) {
  constexpr std::pair<Operator, Operator> pairs[] = {{Operator::Equal, Operator::Unequal},
                                                     {Operator::Less, Operator::GreaterEqual},
                                                     {Operator::LessEqual, Operator::Greater}};
  for (auto const& [one, other] : pairs) {
    if (op == one || op == other) {
      return op == one ? other : one;
    }
  }
  return op == Operator::And ? Operator::Or : Operator::And;
}

// The constant that adds nothing to a list.
constexpr SymbolId neutral(Operator op) { return op == Operator::And ? symbolYes : symbolNo; }

constexpr bool isPair(SymbolId a, SymbolId b, SymbolId x, SymbolId y) {
  return (a == x && b == y) || (a == y && b == x);
}

}  // namespace

// The result for an expression, worked out at the first request.
template <class Work>
ExpressionId ExpressionRules::once(List& results, ExpressionId id, Work const& work) {
  ExpressionId const known = id < results.size() ? results[id] : noExpression;
  if (known != noExpression || id == noExpression) {
    return known;
  }
  ExpressionId const result = work();
  if (id >= results.size()) {
    results.resize(id + id / 2 + 64, noExpression);
  }
  return results[id] = result;
}

// A list of op with the operands of another list, rewritten.
template <class Rewrite>
ExpressionId ExpressionRules::listOf(Operator op, ExpressionId list, Rewrite const& rewrite) {
  List operands = operandsOf(list, m_pool.op(list));
  for (ExpressionId& operand : operands) {
    operand = rewrite(operand);
  }
  return m_pool.list(op, operands);
}

void ExpressionRules::forget() {
  m_normalized.clear();
  m_withoutDuplicates.clear();
  m_forBoolean.clear();
}

// Normalizing

ExpressionId ExpressionRules::normalized(ExpressionId id) {
  return once(m_normalized, id, [&] { return normalize(id); });
}

ExpressionId ExpressionRules::normalize(ExpressionId id) {
  Operator const op = m_pool.op(id);
  if (isList(op)) {
    return listOf(op, id, [this](ExpressionId operand) { return normalized(operand); });
  }
  if (op == Operator::Not) {
    return normalizeNegation(normalized(m_pool.operand(id)));
  }
  return op == Operator::Equal || op == Operator::Unequal ? normalizeComparison(id) : id;
}

ExpressionId ExpressionRules::normalizeComparison(ExpressionId id) {
  SymbolId const symbol = m_pool.left(id);
  if (m_symbols[symbol].type != SymbolType::Boolean || !isTristateConstant(m_pool.right(id))) {
    return id;
  }
  bool const equal = m_pool.op(id) == Operator::Equal;
  if (m_pool.right(id) == symbolMod) {
    return constant(equal ? symbolNo : symbolYes);
  }
  bool const holdsForYes = equal == (m_pool.right(id) == symbolYes);
  return holdsForYes ? m_pool.symbol(symbol) : m_pool.negation(m_pool.symbol(symbol));
}

ExpressionId ExpressionRules::normalizeNegation(ExpressionId operand) {
  Operator const op = m_pool.op(operand);
  if (op == Operator::Not) {
    return normalized(m_pool.operand(operand));
  }
  if (isComparison(op)) {
    return m_pool.comparison(opposite(op), m_pool.left(operand), m_pool.right(operand));
  }
  if (isList(op)) {
    return listOf(opposite(op), operand, [this](ExpressionId inner) { return normalized(m_pool.negation(inner)); });
  }
  SymbolId const symbol = m_pool.left(operand);
  return isTristateConstant(symbol) ? constant(symbolYes - symbol) : m_pool.negation(operand);
}

// Joining

ExpressionId ExpressionRules::withoutDuplicates(ExpressionId id) {
  return once(m_withoutDuplicates, id, [&] { return eliminateDuplicates(id); });
}

ExpressionId ExpressionRules::eliminateDuplicates(ExpressionId id) {
  while (isList(m_pool.op(id))) {
    Operator const op = m_pool.op(id);
    List operands = operandsOf(id, op);
    unsigned changes = 0;
    joinPairs(op, operands, changes);
    if (changes == 0) {
      return m_pool.list(op, operands);
    }
    id = withoutConstants(m_pool.list(op, operands));
  }
  return id;
}

// Each operand with each other in turn, in both orders: the first becomes neutral and the second what they join to.
void ExpressionRules::joinPairs(Operator op, List& operands, unsigned& changes) {
  for (std::size_t i = 0; i < operands.size(); ++i) {
    bool settled = false;  // nothing is left to join inside the first
    for (std::size_t j = 0; j < operands.size(); ++j) {
      if (i == j) {
        continue;
      }
      if (!settled && isList(m_pool.op(operands[i]))) {
        unsigned const before = changes;
        Operator const inner = m_pool.op(operands[i]);
        List innerOperands = operandsOf(operands[i], inner);
        joinPairs(inner, innerOperands, changes);
        operands[i] = m_pool.list(inner, innerOperands);
        settled = changes == before;
      }
      ExpressionId const result = joined(op, operands[i], operands[j]);
      if (result != noExpression) {
        operands[i] = constant(neutral(op));
        operands[j] = result;
        ++changes;
      }
    }
  }
}

// What "a op b" says in one operand, noExpression where it takes two.
ExpressionId ExpressionRules::joined(Operator op, ExpressionId a, ExpressionId b) {
  if (same(a, b)) {
    return a;
  }
  SymbolId const symbol = joinableSymbol(a);
  bool const fits = symbol != noSymbol && symbol == joinableSymbol(b) && isLogical(m_symbols[symbol].type) &&
                    (m_pool.op(b) != Operator::Not || m_pool.op(m_pool.operand(b)) == Operator::Symbol);
  if (!fits) {
    return noExpression;
  }
  return op == Operator::Or ? joinedByOr(a, b, symbol) : joinedByAnd(a, b, symbol);
}

ExpressionId ExpressionRules::joinedByOr(ExpressionId a, ExpressionId b, SymbolId symbol) {
  if (m_symbols[symbol].type == SymbolType::Boolean) {
    auto const isNegated = [this](ExpressionId id) {
      return m_pool.op(id) == Operator::Not && m_pool.op(m_pool.operand(id)) == Operator::Symbol;
    };
    bool const opposed =
        (isNegated(a) && m_pool.op(b) == Operator::Symbol) || (isNegated(b) && m_pool.op(a) == Operator::Symbol);
    return opposed ? constant(symbolYes) : noExpression;
  }
  if (m_pool.op(a) != Operator::Equal || m_pool.op(b) != Operator::Equal) {
    return noExpression;
  }
  // Two of the three values: not the third.
  SymbolId const x = m_pool.right(a);
  SymbolId const y = m_pool.right(b);
  for (SymbolId const third : {symbolNo, symbolMod, symbolYes}) {
    if (isPair(x, y, (third + 1) % 3, (third + 2) % 3)) {
      return m_pool.comparison(Operator::Unequal, symbol, third);
    }
  }
  return noExpression;
}

ExpressionId ExpressionRules::joinedByAnd(ExpressionId a, ExpressionId b, SymbolId symbol) {
  if (m_pool.op(b) == Operator::Symbol) {
    std::swap(a, b);
  }
  if (m_pool.op(a) == Operator::Symbol) {
    if (compares(b, Operator::Equal, symbolYes) || compares(b, Operator::Unequal, symbolMod)) {
      return m_pool.comparison(Operator::Equal, symbol, symbolYes);
    }
    return compares(b, Operator::Unequal, symbolNo) ? m_pool.symbol(symbol) : noExpression;
  }
  return m_symbols[symbol].type == SymbolType::Tristate ? joinedTristatesByAnd(a, b, symbol) : noExpression;
}

ExpressionId ExpressionRules::joinedTristatesByAnd(ExpressionId a, ExpressionId b, SymbolId symbol) {
  if (m_pool.op(a) == Operator::Unequal && m_pool.op(b) == Operator::Equal) {
    std::swap(a, b);
  }
  if (!isComparison(m_pool.op(a)) || m_pool.op(b) != Operator::Unequal) {
    return noExpression;
  }
  SymbolId const x = m_pool.right(a);
  SymbolId const y = m_pool.right(b);
  if (m_pool.op(a) == Operator::Equal) {
    if (m_symbols[x].kind != SymbolKind::Constant || m_symbols[y].kind != SymbolKind::Constant) {
      return noExpression;
    }
    return x == y ? constant(symbolNo) : m_pool.comparison(Operator::Equal, symbol, x);
  }
  if (isPair(x, y, symbolYes, symbolNo)) {
    return m_pool.comparison(Operator::Equal, symbol, symbolMod);
  }
  if (isPair(x, y, symbolYes, symbolMod)) {
    return m_pool.comparison(Operator::Equal, symbol, symbolNo);
  }
  return isPair(x, y, symbolMod, symbolNo) ? m_pool.comparison(Operator::Equal, symbol, symbolYes) : noExpression;
}

// Takes y and n out of lists, as far down as lists go.
ExpressionId ExpressionRules::withoutConstants(ExpressionId id) {
  Operator const op = m_pool.op(id);
  if (!isList(op)) {
    return id;
  }
  SymbolId const deciding = op == Operator::And ? symbolNo : symbolYes;
  List kept;
  for (ExpressionId const operand : operandsOf(id, op)) {
    ExpressionId const inner = withoutConstants(operand);
    if (m_pool.isSymbol(inner, deciding)) {
      return inner;
    }
    if (!m_pool.isSymbol(inner, neutral(op))) {
      kept.push_back(inner);
    }
  }
  return kept.empty() ? constant(neutral(op)) : m_pool.list(op, kept);
}

// Comparing

// Equal, where lists are equal if they have the same operands in any order.
bool ExpressionRules::same(ExpressionId a, ExpressionId b) {
  if (a == b) {
    return true;
  }
  Operator const op = m_pool.op(a);
  if (op != m_pool.op(b) || (!isList(op) && op != Operator::Not)) {
    return false;
  }
  if (op == Operator::Not) {
    return same(m_pool.operand(a), m_pool.operand(b));
  }
  cancel(a, b);
  return a == b && m_pool.op(a) == Operator::Symbol;
}

// Takes out of both what both have.
void ExpressionRules::cancel(ExpressionId& a, ExpressionId& b) {
  if (a == noExpression || b == noExpression) {
    return;
  }
  if (isList(m_pool.op(a))) {
    cancelPairs(m_pool.op(a), a, b);
  }
  if (isList(m_pool.op(b)) && m_pool.op(a) != m_pool.op(b)) {
    cancelPairs(m_pool.op(b), a, b);
  }
  a = withoutConstants(a);
  b = withoutConstants(b);
}

void ExpressionRules::cancelPairs(Operator op, ExpressionId& a, ExpressionId& b) {
  List ofA = operandsOf(a, op);
  List ofB = operandsOf(b, op);
  for (ExpressionId& x : ofA) {
    for (ExpressionId& y : ofB) {
      bool const isConstant = x == y && (m_pool.isSymbol(x, symbolYes) || m_pool.isSymbol(x, symbolNo));
      if (!isConstant && same(x, y)) {
        x = y = constant(neutral(op));
      }
    }
  }
  a = m_pool.list(op, ofA);
  b = m_pool.list(op, ofB);
}

bool ExpressionRules::coveredBy(ExpressionId b, ExpressionId a) {
  cancel(a, b);
  return b == noExpression || m_pool.isSymbol(b, symbolYes);
}

bool ExpressionRules::mentions(ExpressionId id, SymbolId symbol) const {
  Operator const op = m_pool.op(id);
  if (isList(op)) {
    for (ExpressionId const operand : m_pool.operands(id)) {
      if (mentions(operand, symbol)) {
        return true;
      }
    }
    return false;
  }
  if (op == Operator::Not) {
    return mentions(m_pool.operand(id), symbol);
  }
  return op != Operator::None && (m_pool.left(id) == symbol || (op != Operator::Symbol && m_pool.right(id) == symbol));
}

bool ExpressionRules::dependsOn(ExpressionId id, SymbolId symbol) const {
  switch (m_pool.op(id)) {
    case Operator::And:
      for (ExpressionId const operand : m_pool.operands(id)) {
        if (dependsOn(operand, symbol)) {
          return true;
        }
      }
      return false;
    case Operator::Symbol:
      return m_pool.left(id) == symbol;
    case Operator::Equal:
      return m_pool.left(id) == symbol && (m_pool.right(id) == symbolYes || m_pool.right(id) == symbolMod);
    case Operator::Unequal:
      return m_pool.left(id) == symbol && m_pool.right(id) == symbolNo;
    default:
      return false;
  }
}

// Rewriting

ExpressionId ExpressionRules::forBoolean(ExpressionId id) {
  return once(m_forBoolean, id, [&] { return testForBoolean(id); });
}

ExpressionId ExpressionRules::testForBoolean(ExpressionId id) {
  Operator const op = m_pool.op(id);
  if (isList(op)) {
    return listOf(op, id, [this](ExpressionId operand) { return forBoolean(operand); });
  }
  if (op == Operator::Not) {
    return m_pool.negation(forBoolean(m_pool.operand(id)));
  }
  bool const testsForNo =
      compares(id, Operator::Unequal, symbolNo) && m_symbols[m_pool.left(id)].type == SymbolType::Tristate;
  return testsForNo ? m_pool.symbol(m_pool.left(id)) : id;
}

ExpressionId ExpressionRules::withModules(ExpressionId id, SymbolId modules) {
  return once(m_withModules, id, [&] { return requireModules(id, modules); });
}

ExpressionId ExpressionRules::requireModules(ExpressionId id, SymbolId modules) {
  Operator const op = m_pool.op(id);
  if (isList(op)) {
    return listOf(op, id, [&](ExpressionId operand) { return withModules(operand, modules); });
  }
  if (op == Operator::Not) {
    return m_pool.negation(withModules(m_pool.operand(id), modules));
  }
  return m_pool.isSymbol(id, symbolMod) ? m_pool.conjunction(id, m_pool.symbol(modules)) : id;
}

ExpressionId ExpressionRules::comparedWithNo(ExpressionId id, Operator op) {
  bool const equal = op == Operator::Equal;
  Operator const own = m_pool.op(id);
  if (isList(own)) {
    auto const equalsNo = [this](ExpressionId operand) { return comparedWithNo(operand, Operator::Equal); };
    ExpressionId const result = listOf(opposite(own), id, equalsNo);
    return equal ? result : m_pool.negation(result);
  }
  switch (own) {
    case Operator::None:
      return equal ? constant(symbolNo) : m_pool.negation(constant(symbolNo));
    case Operator::Not:
      return comparedWithNo(m_pool.operand(id), opposite(op));
    case Operator::Symbol:
      return m_pool.comparison(op, m_pool.left(id), symbolNo);
    default:
      return equal ? m_pool.negation(id) : id;
  }
}

// Parts

// The operands of a list of op; any other expression is its own single operand. A copy: making nodes moves the pool's.
ExpressionRules::List ExpressionRules::operandsOf(ExpressionId id, Operator op) const {
  if (m_pool.op(id) != op) {
    return {id};
  }
  Operands const operands = m_pool.operands(id);
  return List(operands.begin(), operands.end());
}

// The symbol by which two operands can be joined: that of a symbol, of a test for equality, or of a negation of these.
SymbolId ExpressionRules::joinableSymbol(ExpressionId id) const {
  if (m_pool.op(id) == Operator::Not) {
    id = m_pool.operand(id);
  }
  Operator const op = m_pool.op(id);
  return op == Operator::Symbol || op == Operator::Equal || op == Operator::Unequal ? m_pool.left(id) : noSymbol;
}

}  // namespace kconfig
