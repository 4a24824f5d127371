#include "evaluation/Propagation.hpp"

namespace kconfig {

namespace {

// Properties that count under a condition; the others describe the entry as a whole.
constexpr bool isConditional(PropertyKind kind) {
  return kind == PropertyKind::Prompt || kind == PropertyKind::Default || kind == PropertyKind::Select ||
         kind == PropertyKind::Imply || kind == PropertyKind::Range;
}

}  // namespace

Propagation::Propagation(MenuTree& tree)
    : conditions(tree.properties.size(), noExpression),
      nodes(tree.entries.size()),
      reverseTerms(tree.symbols.size()),
      directTerms(tree.symbols.size()),
      members(tree.symbols.size()),
      choiceOf(tree.symbols.size(), noSymbol),
      modules(tree.modules != noSymbol ? tree.modules : symbolNo),
      m_tree(tree),
      m_pool(tree.expressions),
      m_rules(tree.expressions, tree.symbols) {}

void Propagation::run() {
  link();
  for (EntryId id = 0; id < nodes.size(); ++id) {
    gatherConditions(id);
  }
  std::vector<Step> steps{begin(rootEntry)};
  while (!steps.empty()) {
    Step& step = steps.back();
    if (step.cursor != noEntry && takesCursor(step)) {
      steps.push_back(begin(step.cursor));
      continue;
    }
    finish(step);
    steps.pop_back();
    if (!steps.empty()) {
      moveOn(steps.back());
    }
  }
}

// The links of the tree as the text has it.
void Propagation::link() {
  std::vector<EntryId> lastChild(nodes.size(), noEntry);
  for (EntryId id = 1; id < nodes.size(); ++id) {
    EntryId const parent = entryAt(id).parent;
    nodes[id].parent = parent;
    (lastChild[parent] == noEntry ? nodes[parent].firstChild : nodes[lastChild[parent]].next) = id;
    lastChild[parent] = id;
  }
}

// What the entry says itself. Parents come first in the text, so their visibility is known.
void Propagation::gatherConditions(EntryId id) {
  Entry const& entry = entryAt(id);
  MenuNode& node = nodes[id];
  for (PropertyId at = entry.firstProperty; at < entry.firstProperty + entry.propertyCount; ++at) {
    Property const& property = m_tree.properties[at];
    if (property.kind == PropertyKind::VisibleIf) {
      node.visibility = m_pool.conjunction(node.visibility, property.condition);
      continue;
    }
    ExpressionId const condition = m_rules.withModules(property.condition, modules);
    if (property.kind == PropertyKind::DependsOn) {
      node.dependency = m_pool.conjunction(node.dependency, condition);
    } else if (property.kind == PropertyKind::Prompt) {
      node.prompt = at;
      conditions[at] = entry.symbol != noSymbol ? ancestorVisibility(id, condition) : condition;
    } else {
      conditions[at] = condition;
    }
  }
}

ExpressionId Propagation::ancestorVisibility(EntryId entry, ExpressionId condition) {
  for (EntryId at = entryAt(entry).parent; at != noEntry; at = entryAt(at).parent) {
    condition = m_pool.conjunction(condition, nodes[at].visibility);
  }
  return condition;
}

// An entry with contents goes through them; one without looks for successors that depend on it.
Propagation::Step Propagation::begin(EntryId id) {
  Step step;
  step.entry = id;
  MenuNode const& node = nodes[id];
  if (node.firstChild != noEntry) {
    if (isChoice(id)) {
      settleTypes(id);
    }
    handDown(id);
    step.cursor = node.firstChild;
  } else if (entryAt(id).symbol != noSymbol) {
    ExpressionId const own = node.prompt != noProperty ? conditions[node.prompt] : noExpression;
    step.base = m_rules.withoutDuplicates(m_rules.normalized(m_rules.differsFromNo(own)));
    step.cursor = node.next;
    step.takesSuccessors = true;
  }
  return step;
}

// Whether the entry at the cursor belongs below the step's. Contents always do. A successor does if it mentions the
// symbol and can't be seen without it, or is to be seen at most where the symbol is.
bool Propagation::takesCursor(Step const& step) {
  if (!step.takesSuccessors) {
    return true;
  }
  MenuNode const& node = nodes[step.cursor];
  SymbolId const symbol = entryAt(step.entry).symbol;
  ExpressionId const condition = node.prompt != noProperty ? conditions[node.prompt] : node.dependency;
  if (!m_rules.mentions(condition, symbol)) {
    return false;
  }
  return m_rules.dependsOn(condition, symbol) ||
         m_rules.coveredBy(step.base, m_rules.withoutDuplicates(m_rules.normalized(m_rules.differsFromNo(condition))));
}

void Propagation::moveOn(Step& step) {
  if (step.takesSuccessors) {
    nodes[step.cursor].parent = step.entry;
    step.last = step.cursor;
  }
  step.cursor = nodes[step.cursor].next;
}

void Propagation::finish(Step const& step) {
  MenuNode& node = nodes[step.entry];
  SymbolId const symbol = entryAt(step.entry).symbol;
  if (step.takesSuccessors) {
    if (step.last != noEntry) {
      node.firstChild = node.next;
      node.next = nodes[step.last].next;
      nodes[step.last].next = noEntry;
    }
    if (node.dependency != noExpression) {
      directTerms[symbol].push_back(node.dependency);
    }
  }
  for (EntryId child = node.firstChild; child != noEntry; child = nodes[child].next) {
    if (isChoice(step.entry)) {
      addMember(step.entry, child);
    }
    if (nodes[child].prompt == noProperty) {
      spliceContents(child);
    }
  }
  // A choice that is shown and must have a value is at least m.
  if (symbol != noSymbol && !m_tree.symbols[symbol].optional && node.prompt != noProperty) {
    reverseTerms[symbol].push_back(m_pool.conjunction(conditions[node.prompt], m_pool.symbol(symbolMod)));
  }
}

// A choice without a type has that of its first member that has one, and members without a type have the choice's.
void Propagation::settleTypes(EntryId choice) {
  SymbolId const symbol = entryAt(choice).symbol;
  for (EntryId child = nodes[choice].firstChild; child != noEntry; child = nodes[child].next) {
    SymbolId const member = entryAt(child).symbol;
    if (m_tree.symbols[symbol].type == SymbolType::Unknown && member != noSymbol) {
      m_tree.symbols[symbol].type = m_tree.symbols[member].type;
    }
  }
  for (EntryId child = nodes[choice].firstChild; child != noEntry; child = nodes[child].next) {
    SymbolId const member = entryAt(child).symbol;
    if (member != noSymbol && m_tree.symbols[member].type == SymbolType::Unknown) {
      m_tree.symbols[member].type = m_tree.symbols[symbol].type;
      m_rules.forget();
    }
  }
}

void Propagation::handDown(EntryId parent) {
  MenuNode const& node = nodes[parent];
  ExpressionId inherited = node.dependency;
  if (isChoice(parent)) {
    inherited = m_pool.symbol(entryAt(parent).symbol);
  } else if (node.prompt != noProperty) {
    inherited = conditions[node.prompt];
  }
  for (EntryId child = node.firstChild; child != noEntry; child = nodes[child].next) {
    inherit(child, inherited);
  }
}

void Propagation::inherit(EntryId id, ExpressionId inherited) {
  Entry const& entry = entryAt(id);
  MenuNode& node = nodes[id];
  node.dependency = m_rules.withoutDuplicates(m_pool.conjunction(inherited, m_rules.normalized(node.dependency)));
  bool const boolean = entry.symbol != noSymbol && m_tree.symbols[entry.symbol].type != SymbolType::Tristate;
  for (PropertyId at = entry.firstProperty; at < entry.firstProperty + entry.propertyCount; ++at) {
    Property const& property = m_tree.properties[at];
    if (!isConditional(property.kind)) {
      continue;
    }
    ExpressionId condition =
        m_rules.withoutDuplicates(m_pool.conjunction(node.dependency, m_rules.normalized(conditions[at])));
    condition = boolean ? m_rules.forBoolean(condition) : condition;
    conditions[at] = condition;
    if (property.kind == PropertyKind::Select || property.kind == PropertyKind::Imply) {
      ExpressionId const term = m_pool.conjunction(m_pool.symbol(entry.symbol), condition);
      (property.kind == PropertyKind::Select ? selects : implies).push_back({property.symbol, entry.symbol, at, term});
    }
  }
}

// A member that knows only y and n can be had only while a tristate choice is y.
void Propagation::addMember(EntryId choiceEntry, EntryId memberEntry) {
  SymbolId const choice = entryAt(choiceEntry).symbol;
  Entry const& entry = entryAt(memberEntry);
  if (entry.symbol == noSymbol || choiceOf[entry.symbol] != noSymbol) {
    return;
  }
  choiceOf[entry.symbol] = choice;
  members[choice].push_back(entry.symbol);
  if (m_tree.symbols[choice].type != SymbolType::Tristate ||
      m_tree.symbols[entry.symbol].type == SymbolType::Tristate) {
    return;
  }
  ExpressionId const chosen = m_pool.comparison(Operator::Equal, choice, symbolYes);
  nodes[memberEntry].dependency = m_pool.conjunction(chosen, nodes[memberEntry].dependency);
  for (PropertyId at = entry.firstProperty; at < entry.firstProperty + entry.propertyCount; ++at) {
    if (isConditional(m_tree.properties[at].kind)) {
      conditions[at] = m_pool.conjunction(chosen, conditions[at]);
    }
  }
}

// The contents of an entry that no menu shows stand behind it on its own level.
void Propagation::spliceContents(EntryId id) {
  MenuNode& node = nodes[id];
  if (node.firstChild == noEntry) {
    return;
  }
  EntryId last = node.firstChild;
  for (;; last = nodes[last].next) {
    nodes[last].parent = node.parent;
    if (nodes[last].next == noEntry) {
      break;
    }
  }
  nodes[last].next = node.next;
  node.next = node.firstChild;
  node.firstChild = noEntry;
}

}  // namespace kconfig
