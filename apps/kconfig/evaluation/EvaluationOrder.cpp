#include "evaluation/EvaluationOrder.hpp"

#include <algorithm>
#include <numeric>
#include <unordered_map>
#include <unordered_set>

namespace kconfig {

namespace {

// Longer chains are evaluated from their end, so that a calculation does not run out of stack.
constexpr std::uint32_t deepestChain = 3000;

std::uint32_t bucketOf(std::string_view name) {
  if (name.empty()) {
    return 0;
  }
  std::uint32_t hash = 2166136261U;
  for (char const c : name) {
    hash = (hash ^ static_cast<std::uint32_t>(c)) * 0x01000193U;
  }
  return hash % 9973;
}

// Finds the groups of a graph whose nodes are symbols and expressions, by Tarjan's method with a stack of its own.
class GroupSearch {
 public:
  GroupSearch(MenuTree const& tree, CompiledTree const& compiled, EvaluationOrder& order)
      : m_pool(tree.expressions),
        m_compiled(compiled),
        m_order(order),
        m_symbols(tree.symbols.size()),
        m_index(m_symbols + m_pool.size(), 0),
        m_low(m_index.size(), 0),
        m_depth(m_index.size(), 0) {}

  void run() {
    for (SymbolId const symbol : m_order.visiting) {
      if (m_index[symbol] == 0) {
        visit(symbol);
      }
    }
  }

  // The longest chain of nodes that depend on each other, groups apart.
  std::uint32_t deepest() const { return m_deepest; }

 private:
  using Node = std::uint32_t;  // a symbol, or behind the symbols an expression

  struct Frame {
    Node node;
    std::size_t firstEdge;  // in m_edges; those of frames above lie behind
    std::size_t nextEdge;
  };

  static constexpr std::uint32_t finished = ~std::uint32_t{0};

  void visit(Node root);
  void enter(Node node);
  void leave(Frame const& frame);
  void pushEdges(Node node);
  void pushSymbolEdges(SymbolId symbol);
  void pushExpression(ExpressionId id) {
    if (id != noExpression) {
      m_edges.push_back(m_symbols + id);
    }
  }
  void emit(Node root);

  ExpressionPool const& m_pool;
  CompiledTree const& m_compiled;
  EvaluationOrder& m_order;
  Node m_symbols;
  std::vector<std::uint32_t> m_index;  // 0 not seen, finished when its group is known
  std::vector<std::uint32_t> m_low;
  std::vector<std::uint32_t> m_depth;
  std::vector<Frame> m_frames;
  std::vector<Node> m_edges;
  std::vector<Node> m_open;
  std::uint32_t m_next = 0;
  std::uint32_t m_deepest = 0;
};

void GroupSearch::visit(Node root) {
  enter(root);
  while (!m_frames.empty()) {
    Frame& frame = m_frames.back();
    if (frame.nextEdge == m_edges.size()) {
      Frame const done = frame;
      m_frames.pop_back();
      leave(done);
      continue;
    }
    Node const target = m_edges[frame.nextEdge++];
    if (m_index[target] == 0) {
      enter(target);
    } else if (m_index[target] != finished) {
      m_low[frame.node] = std::min(m_low[frame.node], m_index[target]);
    } else {
      m_depth[frame.node] = std::max(m_depth[frame.node], m_depth[target] + 1);
    }
  }
}

void GroupSearch::enter(Node node) {
  m_index[node] = m_low[node] = ++m_next;
  m_open.push_back(node);
  m_frames.push_back({node, m_edges.size(), m_edges.size()});
  pushEdges(node);
}

void GroupSearch::leave(Frame const& frame) {
  m_edges.resize(frame.firstEdge);
  if (!m_frames.empty()) {
    Node const parent = m_frames.back().node;
    m_low[parent] = std::min(m_low[parent], m_low[frame.node]);
    m_depth[parent] = std::max(m_depth[parent], m_depth[frame.node] + 1);
  }
  m_deepest = std::max(m_deepest, m_depth[frame.node]);
  if (m_low[frame.node] == m_index[frame.node]) {
    emit(frame.node);
  }
}

void GroupSearch::pushEdges(Node node) {
  if (node < m_symbols) {
    pushSymbolEdges(node);
    return;
  }
  ExpressionId const id = node - m_symbols;
  Operator const op = m_pool.op(id);
  if (isList(op)) {
    for (ExpressionId const operand : m_pool.operands(id)) {
      pushExpression(operand);
    }
  } else if (op == Operator::Not) {
    pushExpression(m_pool.operand(id));
  } else {
    m_edges.push_back(m_pool.left(id));
    if (op != Operator::Symbol) {
      m_edges.push_back(m_pool.right(id));
    }
  }
}

void GroupSearch::pushSymbolEdges(SymbolId symbol) {
  SymbolRules const& rules = m_compiled.symbols[symbol];
  for (EffectiveProperty const& property : m_compiled.propertiesOf(symbol)) {
    pushExpression(property.condition);
    pushExpression(property.value);
    if (property.kind == PropertyKind::Range) {
      m_edges.push_back(property.lower);
      m_edges.push_back(property.upper);
    }
  }
  pushExpression(rules.direct);
  pushExpression(rules.reverse);
  pushExpression(rules.implied);
  for (SymbolId const member : m_compiled.membersOf(symbol)) {
    m_edges.push_back(member);
  }
  if (rules.choice != noSymbol) {
    m_edges.push_back(rules.choice);
  }
}

// The nodes since root, in the order in which they were met, are a group.
void GroupSearch::emit(Node root) {
  auto const first = std::find(m_open.rbegin(), m_open.rend(), root).base() - 1;
  std::vector<SymbolId> group;
  for (auto node = first; node != m_open.end(); ++node) {
    m_index[*node] = finished;
    if (*node < m_symbols) {
      group.push_back(*node);
    }
  }
  bool const connected = m_open.end() - first > 1;
  m_open.erase(first, m_open.end());
  m_order.symbols.insert(m_order.symbols.end(), group.begin(), group.end());
  if (connected) {
    m_order.groups.push_back(std::move(group));
  }
}

// Looks for a loop in one group, where a choice is one node with its members.
class LoopSearch {
 public:
  LoopSearch(MenuTree const& tree, CompiledTree const& compiled, std::vector<SymbolId> const& group)
      : m_pool(tree.expressions), m_symbols(tree.symbols), m_compiled(compiled), m_group(group.begin(), group.end()) {}

  // The first loop found when starting at the group's symbols in turn.
  std::vector<SymbolId> find(std::vector<SymbolId> const& starts);

 private:
  struct Frame {
    SymbolId node;
    std::vector<SymbolId> targets;
    std::size_t next = 0;
  };

  SymbolId nodeOf(SymbolId symbol) const {
    SymbolId const choice = m_compiled.symbols[symbol].choice;
    return choice != noSymbol ? choice : symbol;
  }
  Frame open(SymbolId node);
  void addTargets(Frame& frame, SymbolId symbol, bool inChoice);
  void addTarget(Frame& frame, SymbolId owner, SymbolId target, bool inChoice);
  void addExpression(Frame& frame, SymbolId owner, ExpressionId id, bool inChoice);
  std::vector<SymbolId> searchFrom(SymbolId start);

  ExpressionPool const& m_pool;
  SymbolTable const& m_symbols;
  CompiledTree const& m_compiled;
  std::unordered_set<SymbolId> m_group;
  std::unordered_map<SymbolId, bool> m_seen;  // true while it is on the path
};

std::vector<SymbolId> LoopSearch::find(std::vector<SymbolId> const& starts) {
  for (SymbolId const start : starts) {
    if (m_seen.count(nodeOf(start)) == 0) {
      std::vector<SymbolId> loop = searchFrom(nodeOf(start));
      if (!loop.empty()) {
        return loop;
      }
    }
  }
  return {};
}

std::vector<SymbolId> LoopSearch::searchFrom(SymbolId start) {
  std::vector<Frame> path;
  path.push_back(open(start));
  while (!path.empty()) {
    Frame& frame = path.back();
    if (frame.next == frame.targets.size()) {
      m_seen[frame.node] = false;
      path.pop_back();
      continue;
    }
    SymbolId const target = frame.targets[frame.next++];
    auto const seen = m_seen.find(target);
    if (seen == m_seen.end()) {
      path.push_back(open(target));
    } else if (seen->second) {
      std::vector<SymbolId> loop;
      auto const first =
          std::find_if(path.begin(), path.end(), [target](Frame const& step) { return step.node == target; });
      std::transform(first, path.end(), std::back_inserter(loop), [](Frame const& step) { return step.node; });
      return loop;
    }
  }
  return {};
}

LoopSearch::Frame LoopSearch::open(SymbolId node) {
  m_seen[node] = true;
  Frame frame;
  frame.node = node;
  addTargets(frame, node, false);
  for (SymbolId const member : m_compiled.membersOf(node)) {
    addTargets(frame, member, true);
  }
  return frame;
}

void LoopSearch::addTargets(Frame& frame, SymbolId symbol, bool inChoice) {
  SymbolRules const& rules = m_compiled.symbols[symbol];
  bool const isChoice = m_symbols[symbol].kind == SymbolKind::Choice;
  addExpression(frame, symbol, rules.reverse, inChoice);
  addExpression(frame, symbol, rules.direct, inChoice);
  for (EffectiveProperty const& property : m_compiled.propertiesOf(symbol)) {
    addExpression(frame, symbol, property.condition, inChoice);
    if (property.kind == PropertyKind::Range) {
      addTarget(frame, symbol, property.lower, inChoice);
      addTarget(frame, symbol, property.upper, inChoice);
    } else if (!isChoice) {
      addExpression(frame, symbol, property.value, inChoice);
    }
  }
}

// That a member depends on its choice is how choices work.
void LoopSearch::addTarget(Frame& frame, SymbolId owner, SymbolId target, bool inChoice) {
  bool const ownChoice = inChoice && m_compiled.symbols[owner].choice == target;
  if (m_group.count(target) != 0 && !ownChoice) {
    frame.targets.push_back(nodeOf(target));
  }
}

void LoopSearch::addExpression(Frame& frame, SymbolId owner, ExpressionId id, bool inChoice) {
  forEachSymbol(m_pool, id, [&](SymbolId symbol) { addTarget(frame, owner, symbol, inChoice); });
}

std::vector<SymbolId> menuOrder(MenuTree const& tree, CompiledTree const& compiled) {
  std::vector<SymbolId> order;
  for (EntryId id = compiled.nodes[rootEntry].firstChild; id != noEntry; id = following(compiled, id)) {
    Entry const& entry = tree.entries[id];
    if (entry.symbol != noSymbol && entry.kind != EntryKind::Choice) {
      order.push_back(entry.symbol);
    }
  }
  return order;
}

}  // namespace

std::vector<SymbolId> visitingOrder(SymbolTable const& symbols) {
  constexpr std::uint32_t buckets = 9973;
  std::vector<std::uint32_t> ends(buckets + 1, 0);
  std::vector<std::uint32_t> bucket(symbols.size());
  for (SymbolId id = 0; id < symbols.size(); ++id) {
    bucket[id] = bucketOf(symbols[id].name);
    ++ends[bucket[id] + 1];
  }
  std::partial_sum(ends.begin(), ends.end(), ends.begin());
  // The latest comes first in its bucket.
  std::vector<SymbolId> order(symbols.size());
  for (SymbolId id = symbols.size(); id-- > 0;) {
    order[ends[bucket[id]]++] = id;
  }
  return order;
}

EvaluationOrder evaluationOrder(MenuTree const& tree, CompiledTree const& compiled) {
  EvaluationOrder order;
  order.visiting = visitingOrder(tree.symbols);
  order.symbols.reserve(order.visiting.size());
  GroupSearch search(tree, compiled, order);
  search.run();
  if (search.deepest() <= deepestChain) {
    order.symbols = order.visiting;
    order.menu = menuOrder(tree, compiled);
  } else {
    order.menu = order.symbols;
  }
  return order;
}

std::vector<std::vector<SymbolId>> findLoops(MenuTree const& tree, CompiledTree const& compiled,
                                             EvaluationOrder const& order) {
  std::vector<std::vector<SymbolId>> loops;
  for (std::vector<SymbolId> const& group : order.groups) {
    std::vector<SymbolId> loop = LoopSearch(tree, compiled, group).find(group);
    if (!loop.empty()) {
      loops.push_back(std::move(loop));
    }
  }
  return loops;
}

}  // namespace kconfig
