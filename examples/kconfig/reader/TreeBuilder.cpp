#include "reader/TreeBuilder.hpp"

#include <sys/utsname.h>

namespace kconfig {

namespace {

constexpr bool isVariableCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

}  // namespace

TreeBuilder::TreeBuilder(MenuTree& tree, const Surroundings& surroundings, Diagnostics& diagnostics)
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
  const SymbolId id = m_tree.symbols.plain("UNAME_RELEASE");
  Symbol& symbol = m_tree.symbols[id];
  symbol.type = SymbolType::String;
  symbol.automatic = true;
  Property release = property(PropertyKind::Environment, {});
  release.symbol = id;
  const std::string_view text = m_tree.texts.intern(system.release);
  release.value = m_tree.expressions.symbol(m_tree.symbols.constant(text));
  m_earlyValues.emplace(id, text);
  m_tree.predefined.push_back(release);
}

void TreeBuilder::warning(Position position, std::string message) {
  m_diagnostics.warning(m_tree.files[position.file].name, position.line, std::move(message));
}

void TreeBuilder::error(Position position, std::string message) {
  m_diagnostics.error(m_tree.files[position.file].name, position.line, std::move(message));
}

EntryId TreeBuilder::addEntry(EntryKind kind, SymbolId symbol, Position position) {
  const EntryId id = static_cast<EntryId>(m_tree.entries.size());
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

void TreeBuilder::addProperty(const Property& property) {
  Entry& entry = m_tree.entries.back();
  m_tree.properties.push_back(property);
  ++entry.propertyCount;
  const bool plainDefault = property.kind == PropertyKind::Default && property.condition == noExpression &&
                            m_tree.expressions.op(property.value) == Operator::Symbol;
  if (plainDefault && entry.kind != EntryKind::Choice) {
    const Symbol& value = m_tree.symbols[m_tree.expressions.left(property.value)];
    m_earlyValues.emplace(entry.symbol, value.name);
  }
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
  const SymbolId symbol = m_tree.entries.back().symbol;
  m_tree.symbols[symbol].automatic = true;
  Property import = property(PropertyKind::Environment, position);
  import.text = variable;
  const std::optional<std::string> value = m_surroundings.variable(std::string(variable));
  if (value) {
    const std::string_view text = m_tree.texts.intern(*value);
    import.value = m_tree.expressions.symbol(m_tree.symbols.constant(text));
    m_earlyValues.emplace(symbol, text);
  } else {
    warning(position, "the environment has no variable " + std::string(variable));
  }
  addProperty(import);
}

void TreeBuilder::declareModules(Position position) {
  const SymbolId symbol = m_tree.entries.back().symbol;
  if (m_tree.modules != noSymbol && m_tree.modules != symbol) {
    error(position, "'" + std::string(m_tree.symbols[m_tree.modules].name) + "' is the modules symbol already");
    return;
  }
  m_tree.modules = symbol;
  addProperty(property(PropertyKind::Modules, position));
}

void TreeBuilder::closeBlock() {
  m_tree.entries[m_open.back()].end = static_cast<EntryId>(m_tree.entries.size());
  m_open.pop_back();
}

std::string TreeBuilder::expand(std::string_view text) const {
  std::string expanded;
  for (std::size_t at = 0; at < text.size();) {
    if (text[at] != '$') {
      expanded += text[at++];
      continue;
    }
    const std::size_t start = ++at;
    while (at < text.size() && isVariableCharacter(text[at])) {
      ++at;
    }
    const SymbolId symbol = m_tree.symbols.find(text.substr(start, at - start));
    const auto value = m_earlyValues.find(symbol);
    if (value != m_earlyValues.end()) {
      expanded += value->second;
    } else if (symbol != noSymbol && m_tree.symbols[symbol].type == SymbolType::Unknown) {
      expanded += m_tree.symbols[symbol].name;
    }
  }
  return expanded;
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
