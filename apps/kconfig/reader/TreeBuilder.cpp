#include "reader/TreeBuilder.hpp"

#include <sys/utsname.h>

#include "evaluation/CompiledTree.hpp"
#include "evaluation/EvaluationOrder.hpp"
#include "evaluation/Evaluator.hpp"
#include "evaluation/UserValues.hpp"

namespace kconfig {

namespace {

constexpr bool isVariableCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

}  // namespace

TreeBuilder::TreeBuilder(MenuTree& tree, Surroundings const& surroundings, Diagnostics& diagnostics)
    : m_tree(tree), m_surroundings(surroundings), m_diagnostics(diagnostics) {
  Entry root;
  root.propertyCount = 0;
  m_tree.entries.push_back(root);
  m_open.push_back(rootEntry);
  addPredefined();
}

// One symbol is always there: the release of the running system.
void TreeBuilder::addPredefined() {
  utsname system{};
  if (uname(&system) != 0) {
    return;
  }
  SymbolId const id = m_tree.symbols.plain("UNAME_RELEASE");
  Symbol& symbol = m_tree.symbols[id];
  symbol.type = SymbolType::String;
  symbol.automatic = true;
  Property release = property(PropertyKind::Environment, {});
  release.symbol = id;
  release.value = m_tree.expressions.symbol(m_tree.symbols.constant(m_tree.texts.intern(system.release)));
  m_tree.predefined.push_back(release);
}

void TreeBuilder::warning(Position position, std::string message) {
  m_diagnostics.warning(m_tree.files[position.file].name, position.line, std::move(message));
}

void TreeBuilder::error(Position position, std::string message) {
  m_diagnostics.error(m_tree.files[position.file].name, position.line, std::move(message));
}

EntryId TreeBuilder::addEntry(EntryKind kind, SymbolId symbol, Position position) {
  EntryId const id = static_cast<EntryId>(m_tree.entries.size());
  Entry entry;
  entry.kind = kind;
  entry.position = position;
  entry.symbol = symbol;
  entry.parent = m_open.back();
  entry.end = id + 1;
  entry.firstProperty = static_cast<PropertyId>(m_tree.properties.size());
  m_tree.entries.push_back(entry);
  if (symbol != noSymbol) {
    m_tree.symbols[symbol].defined = true;
  }
  return id;
}

void TreeBuilder::addProperty(Property const& property) {
  Entry& entry = m_tree.entries.back();
  m_tree.properties.push_back(property);
  ++entry.propertyCount;
}

void TreeBuilder::setTitle(std::string_view title, Position position) {
  m_tree.title = title;
  m_tree.entries[rootEntry].position = position;
}

void TreeBuilder::setType(SymbolType type, Position position) {
  Symbol& symbol = m_tree.symbols[m_tree.entries.back().symbol];
  if (symbol.type == SymbolType::Unknown) {
    symbol.type = type;
  } else if (symbol.type != type) {
    warning(position, "'" + std::string(symbol.name) + "' is " + keywordOf(symbol.type) + " already, the type " +
                          keywordOf(type) + " is ignored");
  }
}

void TreeBuilder::importVariable(std::string_view variable, Position position) {
  SymbolId const symbol = m_tree.entries.back().symbol;
  m_tree.symbols[symbol].automatic = true;
  Property import = property(PropertyKind::Environment, position);
  import.text = variable;
  std::optional<std::string> const value = m_surroundings.variable(std::string(variable));
  if (value) {
    import.value = m_tree.expressions.symbol(m_tree.symbols.constant(m_tree.texts.intern(*value)));
  } else {
    warning(position, "the environment has no variable " + std::string(variable));
  }
  addProperty(import);
}

void TreeBuilder::declareModules(Position position) {
  if (claim(m_tree.modules, "modules", position)) {
    addProperty(property(PropertyKind::Modules, position));
  }
}

void TreeBuilder::declareDefconfigList(Position position) {
  if (claim(m_defconfigList, "defconfig_list", position)) {
    addProperty(property(PropertyKind::DefconfigList, position));
  }
}

// Makes the last entry's symbol the one that a role is for, unless another has it.
bool TreeBuilder::claim(SymbolId& holder, char const* role, Position position) {
  SymbolId const symbol = m_tree.entries.back().symbol;
  if (holder != noSymbol && holder != symbol) {
    error(position, "'" + std::string(m_tree.symbols[holder].name) + "' is the " + role + " symbol already");
    return false;
  }
  holder = symbol;
  return true;
}

void TreeBuilder::closeBlock() {
  m_tree.entries[m_open.back()].end = static_cast<EntryId>(m_tree.entries.size());
  m_open.pop_back();
}

std::string TreeBuilder::expand(std::string_view text) {
  std::string expanded;
  for (std::size_t at = 0; at < text.size();) {
    if (text[at] != '$') {
      expanded += text[at++];
      continue;
    }
    std::size_t const start = ++at;
    while (at < text.size() && isVariableCharacter(text[at])) {
      ++at;
    }
    SymbolId const symbol = m_tree.symbols.find(text.substr(start, at - start));
    expanded += symbol != noSymbol ? earlyText(symbol) : std::string_view();
  }
  return expanded;
}

// Once it was asked for it stays the same, whatever is declared later.
std::string_view TreeBuilder::earlyText(SymbolId symbol) {
  auto const known = m_earlyTexts.find(symbol);
  if (known != m_earlyTexts.end()) {
    return known->second;
  }
  CompiledTree const compiled = compileAsDeclared(m_tree);
  EvaluationOrder const onlyWhatIsAskedFor;
  Evaluator evaluator(m_tree, compiled, onlyWhatIsAskedFor);
  evaluator.evaluate(UserValues(m_tree, compiled));
  evaluator.valueOf(m_tree.expressions.symbol(symbol));
  return m_earlyTexts.emplace(symbol, m_tree.texts.intern(evaluator.textOf(symbol))).first->second;
}

void TreeBuilder::finish() {
  m_tree.title = m_tree.texts.intern(expand(m_tree.title));
  closeBlock();
}

Property TreeBuilder::property(PropertyKind kind, Position position) const {
  Property property;
  property.kind = kind;
  property.position = position;
  return property;
}

}  // namespace kconfig
