#include "language/ExpressionPool.hpp"

#include <algorithm>

namespace kconfig {

namespace {

constexpr std::uint64_t mix(std::uint64_t hash, std::uint64_t value) {
  hash = (hash ^ value) * 0x9e3779b97f4a7c15ULL;
  return hash ^ (hash >> 29);
}

}  // namespace

ExpressionPool::ExpressionPool() : m_nodes{{Operator::None, 0, 0}}, m_hashes{0}, m_table(1024, noExpression) {}

ExpressionId ExpressionPool::symbol(SymbolId id) { return find(Operator::Symbol, id, 0); }

ExpressionId ExpressionPool::comparison(Operator op, SymbolId left, SymbolId right) { return find(op, left, right); }

ExpressionId ExpressionPool::negation(ExpressionId operand) { return find(Operator::Not, operand, 0); }

ExpressionId ExpressionPool::list(Operator op, std::vector<ExpressionId> const& operands) {
  if (operands.size() == 1) {
    return operands.front();
  }
  m_scratch.clear();
  for (ExpressionId const id : operands) {
    if (this->op(id) == op) {
      Operands const inner = this->operands(id);
      m_scratch.insert(m_scratch.end(), inner.begin(), inner.end());
    } else {
      m_scratch.push_back(id);
    }
  }
  return findList(op);
}

ExpressionId ExpressionPool::combine(Operator op, ExpressionId a, ExpressionId b) {
  if (a == noExpression || b == noExpression) {
    return a == noExpression ? b : a;
  }
  m_scratch.clear();
  for (ExpressionId const id : {a, b}) {
    if (this->op(id) == op) {
      Operands const inner = operands(id);
      m_scratch.insert(m_scratch.end(), inner.begin(), inner.end());
    } else {
      m_scratch.push_back(id);
    }
  }
  return findList(op);
}

ExpressionId ExpressionPool::find(Operator op, std::uint32_t a, std::uint32_t b) {
  std::uint64_t const hash = mix(mix(static_cast<std::uint64_t>(op) + 1, a), b);
  Node const node{op, a, b};
  ExpressionId* slot = slotOf(hash, &ExpressionPool::sameFields, node);
  return *slot != noExpression ? *slot : store(slot, node, hash);
}

ExpressionId ExpressionPool::findList(Operator op) {
  std::uint64_t hash = static_cast<std::uint64_t>(op) + 1;
  for (ExpressionId const id : m_scratch) {
    hash = mix(hash, id);
  }
  // The operands are appended first and taken back when the list is known already.
  Node node{op, static_cast<std::uint32_t>(m_operands.size()), static_cast<std::uint32_t>(m_scratch.size())};
  m_operands.insert(m_operands.end(), m_scratch.begin(), m_scratch.end());
  ExpressionId* slot = slotOf(hash, &ExpressionPool::sameOperands, node);
  if (*slot != noExpression) {
    m_operands.resize(node.a);
    return *slot;
  }
  return store(slot, node, hash);
}

ExpressionId* ExpressionPool::slotOf(std::uint64_t hash, bool (ExpressionPool::*same)(Node const&, Node const&) const,
                                     Node const& node) {
  std::size_t const mask = m_table.size() - 1;
  for (std::size_t at = hash & mask;; at = (at + 1) & mask) {
    ExpressionId const id = m_table[at];
    if (id == noExpression || (m_hashes[id] == hash && (this->*same)(m_nodes[id], node))) {
      return &m_table[at];
    }
  }
}

bool ExpressionPool::sameFields(Node const& x, Node const& y) const { return x.op == y.op && x.a == y.a && x.b == y.b; }

bool ExpressionPool::sameOperands(Node const& x, Node const& y) const {
  return x.op == y.op && x.b == y.b &&
         std::equal(m_operands.begin() + x.a, m_operands.begin() + x.a + x.b, m_operands.begin() + y.a);
}

ExpressionId ExpressionPool::store(ExpressionId* slot, Node const& node, std::uint64_t hash) {
  ExpressionId const id = size();
  *slot = id;
  m_nodes.push_back(node);
  m_hashes.push_back(hash);
  if (m_nodes.size() * 2 > m_table.size()) {
    grow();
  }
  return id;
}

void ExpressionPool::grow() {
  m_table.assign(m_table.size() * 2, noExpression);
  std::size_t const mask = m_table.size() - 1;
  for (ExpressionId id = 1; id < size(); ++id) {
    std::size_t at = m_hashes[id] & mask;
    while (m_table[at] != noExpression) {
      at = (at + 1) & mask;
    }
    m_table[at] = id;
  }
}

}  // namespace kconfig
