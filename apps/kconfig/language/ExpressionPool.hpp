// Conditions as immutable nodes that are shared by content: equal expressions have equal numbers. Operands of && and ||
// are held as one flat list, so that depth is the depth of parentheses that the author wrote. The pool owns the nodes
// and only grows; a number stays valid as long as the pool. Used from one thread at a time.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <vector>

#include "language/SymbolTable.hpp"

namespace kconfig {

using ExpressionId = std::uint32_t;

// No condition at all. It holds always, yet it is not the same as the constant y: combined with another expression it
// vanishes, whether by && or by ||.
constexpr ExpressionId noExpression = 0;

enum class Operator : std::uint8_t {
  None,
  Symbol,
  Not,
  And,
  Or,
  Equal,
  Unequal,
  Less,
  LessEqual,
  Greater,
  GreaterEqual
};

constexpr bool isComparison(Operator op) { return op >= Operator::Equal; }
constexpr bool isList(Operator op) { return op == Operator::And || op == Operator::Or; }

// The operands of a list node. Reading it is valid until the pool makes another node.
struct Operands {
  ExpressionId const* first;
  std::uint32_t count;

  ExpressionId const* begin() const { return first; }
  ExpressionId const* end() const { return first + count; }
};

class ExpressionPool {
 public:
  ExpressionPool();

  ExpressionId symbol(SymbolId id);
  ExpressionId comparison(Operator op, SymbolId left, SymbolId right);
  ExpressionId negation(ExpressionId operand);
  // A list of op; operands that are lists of the same op are merged into it, and a list of one is that one.
  ExpressionId list(Operator op, std::vector<ExpressionId> const& operands);
  ExpressionId conjunction(ExpressionId a, ExpressionId b) { return combine(Operator::And, a, b); }
  ExpressionId disjunction(ExpressionId a, ExpressionId b) { return combine(Operator::Or, a, b); }

  Operator op(ExpressionId id) const { return m_nodes[id].op; }
  // The symbol of a symbol node, or the left side of a comparison.
  SymbolId left(ExpressionId id) const { return m_nodes[id].a; }
  SymbolId right(ExpressionId id) const { return m_nodes[id].b; }
  ExpressionId operand(ExpressionId id) const { return m_nodes[id].a; }
  Operands operands(ExpressionId id) const { return {m_operands.data() + m_nodes[id].a, m_nodes[id].b}; }
  std::uint32_t size() const { return static_cast<std::uint32_t>(m_nodes.size()); }

  bool isSymbol(ExpressionId id, SymbolId wanted) const { return op(id) == Operator::Symbol && left(id) == wanted; }

 private:
  struct Node {
    Operator op;
    std::uint32_t a;  // symbol, operand, left side, or first index into m_operands
    std::uint32_t b;  // right side, or number of operands
  };

  ExpressionId combine(Operator op, ExpressionId a, ExpressionId b);
  ExpressionId find(Operator op, std::uint32_t a, std::uint32_t b);
  ExpressionId findList(Operator op);
  ExpressionId* slotOf(std::uint64_t hash, bool (ExpressionPool::*same)(Node const&, Node const&) const,
                       Node const& node);
  bool sameFields(Node const& x, Node const& y) const;
  bool sameOperands(Node const& x, Node const& y) const;
  ExpressionId store(ExpressionId* slot, Node const& node, std::uint64_t hash);
  void grow();

  std::vector<Node> m_nodes;
  std::vector<std::uint64_t> m_hashes;
  std::vector<ExpressionId> m_operands;
  std::vector<ExpressionId> m_table;    // open addressing, a power of two in size
  std::vector<ExpressionId> m_scratch;  // operands of the list that is being made
};

// Calls visit with each symbol that an expression names, from left to right, as often as it does.
template <class Visit>
void forEachSymbol(ExpressionPool const& pool, ExpressionId id, Visit const& visit) {
  Operator const op = pool.op(id);
  if (isList(op)) {
    for (ExpressionId const operand : pool.operands(id)) {
      forEachSymbol(pool, operand, visit);
    }
  } else if (op == Operator::Not) {
    forEachSymbol(pool, pool.operand(id), visit);
  } else if (op != Operator::None) {
    visit(pool.left(id));
    if (op != Operator::Symbol) {
      visit(pool.right(id));
    }
  }
}

}  // namespace kconfig
