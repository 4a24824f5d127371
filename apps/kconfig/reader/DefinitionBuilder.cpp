#include "reader/DefinitionBuilder.hpp"

#include <sys/utsname.h>

#include <utility>

#include "evaluation/CompiledTree.hpp"
#include "evaluation/EvaluationOrder.hpp"
#include "evaluation/Evaluator.hpp"
#include "evaluation/UserValues.hpp"
#include "loading/DefinitionReader.hpp"
#include "loading/ModelText.hpp"

namespace kconfig {

namespace {

constexpr bool isVariableCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

Property propertyOf(PropertyKind kind, Position position) {
  Property property;
  property.kind = kind;
  property.position = position;
  return property;
}

}  // namespace

DefinitionBuilder::DefinitionBuilder(plinth::Model const& model, Surroundings const& surroundings,
                                     Diagnostics& diagnostics)
    : m_surroundings(surroundings), m_diagnostics(diagnostics), m_writer(m_words, model) {
  addPredefined();
  m_node = m_writer.addEntry(m_entry, m_node);
  openBlock();
}

// One symbol is always there: the release of the running system.
void DefinitionBuilder::addPredefined() {
  utsname system{};
  if (uname(&system) != 0) {
    return;
  }
  SymbolId const id = m_words.symbols.plain("UNAME_RELEASE");
  m_words.symbols[id].type = SymbolType::String;
  SymbolId const release = m_words.symbols.constant(m_words.texts.intern(system.release));
  m_writer.addPredefined(id, m_words.expressions.symbol(release));
}

std::uint32_t DefinitionBuilder::addFile(std::string_view name, Position from) {
  return m_writer.addFile({m_words.texts.intern(name), from});
}

void DefinitionBuilder::warning(Position position, std::string message) {
  m_diagnostics.warning(m_writer.file(position.file).name, position.line, std::move(message));
}

void DefinitionBuilder::error(Position position, std::string message) {
  m_diagnostics.error(m_writer.file(position.file).name, position.line, std::move(message));
}

void DefinitionBuilder::addEntry(EntryKind kind, SymbolId symbol, Position position) {
  endEntry();
  m_entry = Entry();
  m_entry.kind = kind;
  m_entry.position = position;
  m_entry.symbol = symbol;
  m_node = m_writer.addEntry(m_entry, m_open.back().node);
  ++m_entryId;
  if (symbol != noSymbol) {
    m_words.symbols[symbol].defined = true;
  }
}

void DefinitionBuilder::endEntry() {
  for (Property const& property : m_properties) {
    if (property.kind == PropertyKind::Help) {
      m_helps[m_entryId] = toModel(property.text);
    }
    noteFirstValue(property);
  }
  m_writer.addProperties(m_node, std::exchange(m_properties, {}));
}

void DefinitionBuilder::noteFirstValue(Property const& property) {
  if (property.kind == PropertyKind::Default) {
    m_firstValues.emplace(m_entry.symbol, noSymbol);
  } else if (property.kind == PropertyKind::Environment && property.value != noExpression) {
    m_firstValues.emplace(m_entry.symbol, m_words.expressions.left(property.value));
  }
}

bool DefinitionBuilder::setTitle(std::string_view title, Position position) {
  if (m_entryId != rootEntry || m_entry.position.line != 0) {
    return false;
  }
  m_title = title;
  m_entry.position = position;
  m_writer.setRootPosition(position);
  return true;
}

void DefinitionBuilder::setType(SymbolType type, Position position) {
  Symbol& symbol = m_words.symbols[m_entry.symbol];
  if (symbol.type == SymbolType::Unknown) {
    symbol.type = type;
  } else if (symbol.type != type) {
    warning(position, "'" + std::string(symbol.name) + "' is " + keywordOf(symbol.type) + " already, the type " +
                          keywordOf(type) + " is ignored");
  }
}

void DefinitionBuilder::importVariable(std::string_view variable, Position position) {
  Property import = propertyOf(PropertyKind::Environment, position);
  import.text = variable;
  std::optional<std::string> const value = m_surroundings.variable(std::string(variable));
  if (value) {
    import.value = m_words.expressions.symbol(m_words.symbols.constant(m_words.texts.intern(*value)));
  } else {
    warning(position, "the environment has no variable " + std::string(variable));
  }
  addProperty(import);
}

void DefinitionBuilder::claimRole(PropertyKind role, std::string_view name, Position position) {
  SymbolId const holder = m_roles.emplace(role, m_entry.symbol).first->second;
  if (holder != m_entry.symbol) {
    error(position,
          "'" + std::string(m_words.symbols[holder].name) + "' is the " + std::string(name) + " symbol already");
    return;
  }
  addProperty(propertyOf(role, position));
}

std::string DefinitionBuilder::expand(std::string_view text) {
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
    SymbolId const symbol = m_words.symbols.find(text.substr(start, at - start));
    expanded += symbol != noSymbol ? earlyText(symbol) : std::string_view();
  }
  return expanded;
}

// Once it was asked for it stays the same, whatever is declared later. What is only mentioned reads as its name.
std::string_view DefinitionBuilder::earlyText(SymbolId symbol) {
  auto const known = m_earlyTexts.find(symbol);
  if (known != m_earlyTexts.end()) {
    return known->second;
  }
  endEntry();
  auto const first = m_firstValues.find(symbol);
  bool const isImported =
      first != m_firstValues.end() && first->second != noSymbol && m_words.symbols[symbol].type == SymbolType::String;
  // What was imported first is the value of a string; the rest takes an evaluation of all that has been read.
  std::string_view const text = isImported ? m_words.symbols[first->second].name : workOutEarly(symbol);
  return m_earlyTexts.emplace(symbol, text).first->second;
}

std::string_view DefinitionBuilder::workOutEarly(SymbolId symbol) {
  Definitions definitions = readDefinitions(m_writer.number());
  MenuTree& tree = definitions.tree;
  std::string_view const name = m_words.symbols[symbol].name;
  SymbolId const declared = tree.symbols.find(name);
  if (declared == noSymbol) {
    return name;
  }
  CompiledTree const compiled = compileAsDeclared(tree);
  EvaluationOrder const onlyWhatIsAskedFor;
  Evaluator evaluator(tree, compiled, onlyWhatIsAskedFor);
  evaluator.evaluate(UserValues(tree, compiled));
  evaluator.valueOf(tree.expressions.symbol(declared));
  return m_words.texts.intern(evaluator.textOf(declared));
}

ReadTree DefinitionBuilder::finish() {
  endEntry();
  if (m_title.data() != nullptr) {
    m_writer.setTitle(m_words.texts.intern(expand(m_title)));
  }
  return {m_writer.finish(), std::move(m_helps)};
}

}  // namespace kconfig
