#include "evaluation/CompiledTree.hpp"

#include <algorithm>

#include "evaluation/Propagation.hpp"

namespace kconfig {

namespace {

// How many rows each symbol has becomes where its rows begin.
void startRows(std::vector<SymbolRules>& symbols, std::uint32_t SymbolRules::*first,
               std::uint32_t SymbolRules::*count) {
  std::uint32_t total = 0;
  for (SymbolRules& rules : symbols) {
    rules.*first = total;
    total += rules.*count;
    rules.*count = 0;
  }
}

template <class Visit>
void forEachOwnProperty(MenuTree const& tree, Visit visit) {
  for (Property const& property : tree.predefined) {
    visit(property.symbol, property, noProperty);
  }
  for (Entry const& entry : tree.entries) {
    for (PropertyId at = entry.firstProperty; at < entry.firstProperty + entry.propertyCount; ++at) {
      Property const& property = tree.properties[at];
      bool const own = property.kind == PropertyKind::Prompt || property.kind == PropertyKind::Default ||
                       property.kind == PropertyKind::Range ||
                       (property.kind == PropertyKind::Environment && property.value != noExpression);
      if (own && entry.symbol != noSymbol) {
        visit(entry.symbol, property, at);
      }
    }
  }
}

// Conditions are given by PropertyId.
void fillProperties(MenuTree const& tree, std::vector<ExpressionId> const& conditions, CompiledTree& compiled) {
  std::uint32_t total = 0;
  forEachOwnProperty(tree, [&](SymbolId symbol, Property const&, PropertyId) {
    ++compiled.symbols[symbol].propertyCount;
    ++total;
  });
  startRows(compiled.symbols, &SymbolRules::firstProperty, &SymbolRules::propertyCount);
  compiled.properties.resize(total);
  forEachOwnProperty(tree, [&](SymbolId symbol, Property const& property, PropertyId at) {
    SymbolRules& rules = compiled.symbols[symbol];
    EffectiveProperty& row = compiled.properties[rules.firstProperty + rules.propertyCount++];
    // What the environment gives counts without any condition.
    bool const imported = property.kind == PropertyKind::Environment;
    row.kind = imported ? PropertyKind::Default : property.kind;
    row.condition = imported ? noExpression : conditions[at];
    row.value = property.value;
    row.lower = property.symbol;
    row.upper = property.upper;
    row.source = at;
  });
}

void fillMembers(Propagation const& propagation, CompiledTree& compiled) {
  for (SymbolId symbol = 0; symbol < compiled.symbols.size(); ++symbol) {
    SymbolRules& rules = compiled.symbols[symbol];
    rules.choice = propagation.choiceOf[symbol];
    rules.firstMember = static_cast<std::uint32_t>(compiled.members.size());
    rules.memberCount = static_cast<std::uint32_t>(propagation.members[symbol].size());
    compiled.members.insert(compiled.members.end(), propagation.members[symbol].begin(),
                            propagation.members[symbol].end());
  }
}

void sortByTarget(std::vector<Selection>& selections) {
  std::stable_sort(selections.begin(), selections.end(),
                   [](Selection const& a, Selection const& b) { return a.target < b.target; });
}

void fillDependencies(ExpressionPool& pool, Propagation& propagation, CompiledTree& compiled) {
  std::vector<std::vector<ExpressionId>> impliedTerms(compiled.symbols.size());
  for (Selection const& selection : propagation.selects) {
    propagation.reverseTerms[selection.target].push_back(selection.condition);
  }
  for (Selection const& selection : propagation.implies) {
    impliedTerms[selection.target].push_back(selection.condition);
  }
  auto const anyOf = [&pool](std::vector<ExpressionId> const& terms) {
    return terms.empty() ? noExpression : pool.list(Operator::Or, terms);
  };
  for (SymbolId symbol = 0; symbol < compiled.symbols.size(); ++symbol) {
    SymbolRules& rules = compiled.symbols[symbol];
    rules.reverse = anyOf(propagation.reverseTerms[symbol]);
    rules.implied = anyOf(impliedTerms[symbol]);
    rules.direct = anyOf(propagation.directTerms[symbol]);
  }
}

}  // namespace

CompiledTree compile(MenuTree& tree) {
  Propagation propagation(tree);
  propagation.run();
  CompiledTree compiled;
  compiled.symbols.resize(tree.symbols.size());
  compiled.modules = propagation.modules;
  fillProperties(tree, propagation.conditions, compiled);
  fillMembers(propagation, compiled);
  fillDependencies(tree.expressions, propagation, compiled);
  for (MenuNode& node : propagation.nodes) {
    node.promptCondition = node.prompt != noProperty ? propagation.conditions[node.prompt] : noExpression;
  }
  compiled.nodes = std::move(propagation.nodes);
  compiled.selects = std::move(propagation.selects);
  compiled.implies = std::move(propagation.implies);
  sortByTarget(compiled.selects);
  sortByTarget(compiled.implies);
  return compiled;
}

CompiledTree compileAsDeclared(MenuTree const& tree) {
  std::vector<ExpressionId> conditions;
  conditions.reserve(tree.properties.size());
  for (Property const& property : tree.properties) {
    conditions.push_back(property.condition);
  }
  CompiledTree compiled;
  compiled.symbols.resize(tree.symbols.size());
  fillProperties(tree, conditions, compiled);
  return compiled;
}

EntryId following(CompiledTree const& compiled, EntryId id) {
  MenuNode const& node = compiled.nodes[id];
  if (node.firstChild != noEntry) {
    return node.firstChild;
  }
  while (id != noEntry && compiled.nodes[id].next == noEntry) {
    id = compiled.nodes[id].parent;
  }
  return id == noEntry ? noEntry : compiled.nodes[id].next;
}

}  // namespace kconfig
