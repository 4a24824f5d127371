#include "loading/DefinitionReader.hpp"

#include <kestrel/Array.hpp>
#include <stdexcept>
#include <tessel_config_datamodel/runtime/Metadata.hpp>
#include <tessel_config_datamodel/schema/CategoryDef.hpp>
#include <tessel_config_datamodel/schema/FollowsDef.hpp>

#include "loading/ExpressionElements.hpp"
#include "loading/ModelText.hpp"
#include "loading/Vocabulary.hpp"

namespace kconfig {

namespace {

constexpr bool startsWith(std::string_view text, std::string_view beginning) {
  return text.substr(0, beginning.size()) == beginning;
}

EntryKind kindOf(std::string_view key) {
  for (auto const& [kind, beginning] : key::kinds) {
    if (startsWith(key, beginning)) {
      return kind;
    }
  }
  if (key == key::tree) {
    return EntryKind::Root;
  }
  throw std::runtime_error("the definitions have a category of an unknown kind, '" + std::string(key) + "'");
}

SymbolType typeOf(std::string_view keyword) {
  for (SymbolType const type :
       {SymbolType::Boolean, SymbolType::Tristate, SymbolType::Integer, SymbolType::Hexadecimal, SymbolType::String}) {
    if (keyword == keywordOf(type)) {
      return type;
    }
  }
  throw std::runtime_error("the definitions have a parameter of an unknown type, '" + std::string(keyword) + "'");
}

bool isPredefined(schema::ControllableDef const& definition) {
  for (schema::EvalDef const& row : *definition->getLogic()) {
    if (row.getAttribute() == logic::option && fromModel(row.getCode()) == logic::predefined) {
      return true;
    }
  }
  return false;
}

class DefinitionReader {
 public:
  explicit DefinitionReader(schema::SchemaData const& schema) : m_schema(schema), m_expressions(m_result.tree) {}

  Definitions read();

 private:
  void readMetadata();
  void collectNodes();
  void addSymbols();
  void addEntry(schema::ControllableDef const& definition, EntryId parent);
  void addContents(schema::CategoryDef const& category, EntryId id);
  SymbolId symbolOf(schema::ControllableDef const& definition, EntryKind kind);
  void readFollows(schema::FollowsDef const& row, Position position, EntryId id);
  void readLogic(schema::ControllableDef const& definition, EntryId id);
  void readOption(std::string_view option, EntryId id);
  void addPredefined();
  void add(EntryId id, Property const& property);
  Position nextPosition();
  kestrel_array const* metadataOf(std::u16string_view name) const;
  std::string_view intern(std::u16string_view text) { return m_result.tree.texts.intern(fromModel(text)); }

  schema::SchemaData m_schema;
  Definitions m_result;
  ExpressionReader m_expressions;
  std::vector<schema::ControllableDef> m_nodes;  // by ordinal
  std::vector<SymbolId> m_symbols;               // by ordinal
  std::uint32_t const* m_position = nullptr;
  std::uint32_t const* m_lastPosition = nullptr;
};

Definitions DefinitionReader::read() {
  readMetadata();
  collectNodes();
  addSymbols();
  addEntry(m_schema->getCategoriesMutable()->at(0), noEntry);
  addPredefined();
  m_result.params.resize(m_result.tree.symbols.size());
  return std::move(m_result);
}

void DefinitionReader::readMetadata() {
  MenuTree& tree = m_result.tree;
  tree.title = intern(kestrel::charText(*metadataOf(metadata::title)));
  kestrel_array const& files = *metadataOf(metadata::files);
  std::uint32_t const* from = kestrel::data<std::uint32_t>(*metadataOf(metadata::sourcedFrom));
  for (std::size_t file = 0; file < kestrel::numberOfElements(files); ++file) {
    tree.files.push_back({intern(*kestrel::stringElement(files, file)), {from[2 * file], from[2 * file + 1]}});
  }
  kestrel_array const& positions = *metadataOf(metadata::positions);
  m_position = kestrel::data<std::uint32_t>(positions);
  m_lastPosition = m_position + kestrel::numberOfElements(positions);
}

kestrel_array const* DefinitionReader::metadataOf(std::u16string_view name) const {
  runtime::Metadata const row = m_schema->getMetadata()->find(name);
  if (!row || row->getValue() == nullptr) {
    throw std::runtime_error("the definitions lack the metadata '" + fromModel(name) + "'");
  }
  return row->getValue();
}

Position DefinitionReader::nextPosition() {
  if (m_position == m_lastPosition) {
    throw std::runtime_error("the definitions have fewer positions than entries and properties");
  }
  Position const position{m_position[0], m_position[1]};
  m_position += 2;
  return position;
}

void DefinitionReader::collectNodes() {
  m_nodes.resize(m_schema->getNodeCount());
  auto const enter = [this](schema::ControllableDef const& definition) {
    m_nodes.at(definition->getOrdinal()) = definition;
  };
  for (schema::ParamDef const& param : *m_schema->getParams()) {
    enter(param);
  }
  for (schema::CategoryDef const& category : *m_schema->getCategories()) {
    enter(category);
  }
}

// Symbols get their numbers in the order in which the text mentions them: the order of evaluation hangs on it.
void DefinitionReader::addSymbols() {
  SymbolTable& symbols = m_result.tree.symbols;
  m_symbols.resize(m_nodes.size(), noSymbol);
  for (std::size_t ordinal = 0; ordinal < m_nodes.size(); ++ordinal) {
    auto const param = plinth::element_cast<schema::ParamDef>(m_nodes[ordinal]);
    if (!param) {
      continue;
    }
    std::string_view const name = intern(param->getKey());
    SymbolId symbol = noSymbol;
    if (startsWith(name, key::choice)) {
      symbol = symbols.choice(startsWith(name, key::nameless) ? "" : name.substr(key::choice.size()));
    } else {
      symbol = symbols.plain(name);
    }
    m_symbols[ordinal] = symbol;
    m_result.params.resize(symbols.size());
    m_result.params[symbol] = param;
    for (schema::EvalDef const& row : *param->getLogic()) {
      if (row.getAttribute() == logic::type) {
        symbols[symbol].type = typeOf(fromModel(row.getCode()));
      }
    }
  }
}

void DefinitionReader::addEntry(schema::ControllableDef const& definition, EntryId parent) {
  MenuTree& tree = m_result.tree;
  auto const id = static_cast<EntryId>(tree.entries.size());
  auto const category = plinth::element_cast<schema::CategoryDef>(definition);
  Entry entry;
  entry.kind = category ? kindOf(fromModel(definition->getKey())) : EntryKind::Config;
  entry.position = nextPosition();
  entry.symbol = symbolOf(definition, entry.kind);
  entry.parent = parent;
  entry.firstProperty = static_cast<PropertyId>(tree.properties.size());
  if (entry.symbol != noSymbol) {
    tree.symbols[entry.symbol].defined = true;
  }
  tree.entries.push_back(entry);
  m_result.entries.push_back(definition);
  if (definition->hasFollows()) {
    // The first row of what the tool gives itself stands in no file.
    bool given = isPredefined(definition);
    for (schema::FollowsDef const& row : *definition->getFollows()) {
      readFollows(row, given ? entry.position : nextPosition(), id);
      given = false;
    }
  }
  readLogic(definition, id);
  if (category && entry.kind != EntryKind::Config) {
    addContents(category, id);
  }
  tree.entries[id].end = static_cast<EntryId>(tree.entries.size());
}

void DefinitionReader::addContents(schema::CategoryDef const& category, EntryId id) {
  if (category->hasContents()) {
    for (schema::GlobalNodeRef const& ref : *category->getContents()) {
      addEntry(m_nodes.at(ref.getOrdinal()), id);
    }
  }
}

SymbolId DefinitionReader::symbolOf(schema::ControllableDef const& definition, EntryKind kind) {
  if (kind == EntryKind::Choice) {
    schema::ParamDef const param = m_schema->getParams()->find(definition->getKey());
    return param ? m_symbols[param->getOrdinal()] : noSymbol;
  }
  if (kind != EntryKind::Config) {
    return noSymbol;
  }
  auto const category = plinth::element_cast<schema::CategoryDef>(definition);
  return m_symbols.at(category ? (*category->getContents())[0].getOrdinal() : definition->getOrdinal());
}

void DefinitionReader::readFollows(schema::FollowsDef const& row, Position position, EntryId id) {
  PropertyKind const* const kind = kindFor(follows::words, row->getAttribute());
  if (kind == nullptr) {
    throw std::runtime_error("the definitions have an unknown attribute, '" + fromModel(row->getAttribute()) + "'");
  }
  Property property;
  property.kind = *kind;
  property.position = position;
  if (*kind == PropertyKind::DependsOn || *kind == PropertyKind::VisibleIf) {
    property.condition = m_expressions.read(row->getExpr());
    add(id, property);
    return;
  }
  ConditionalElements const parts = m_expressions.readConditional(row->getExpr());
  property.condition = parts.condition;
  expr::ExprValue const& value = parts.values.at(0);
  if (*kind == PropertyKind::Prompt) {
    property.text = m_result.tree.texts.intern(textOf(value));
  } else if (*kind == PropertyKind::Default || *kind == PropertyKind::Environment) {
    property.value = m_expressions.read(value);
  } else {
    property.symbol = m_expressions.readSymbol(value);
    property.upper = *kind == PropertyKind::Range ? m_expressions.readSymbol(parts.values.at(1)) : noSymbol;
  }
  add(id, property);
}

void DefinitionReader::readLogic(schema::ControllableDef const& definition, EntryId id) {
  if (!definition->hasLogic()) {
    return;
  }
  for (schema::EvalDef const& row : *definition->getLogic()) {
    if (row.getAttribute() == logic::name) {
      Property prompt;
      prompt.kind = PropertyKind::Prompt;
      prompt.position = m_result.tree.entries[id].position;
      prompt.text = intern(row.getCode());
      add(id, prompt);
    } else if (row.getAttribute() == logic::entry) {
      m_result.tree.entries[id].kind = EntryKind::MenuConfig;
    } else if (row.getAttribute() == logic::option) {
      readOption(fromModel(row.getCode()), id);
    }
  }
}

void DefinitionReader::readOption(std::string_view option, EntryId id) {
  MenuTree& tree = m_result.tree;
  Entry const& entry = tree.entries[id];
  PropertyKind const* const kind = kindFor(logic::options, option);
  if (kind == nullptr) {
    tree.symbols[entry.symbol].automatic = true;  // imported, or predefined
    return;
  }
  Property property;
  property.kind = *kind;
  property.position = entry.position;
  if (*kind == PropertyKind::Optional) {
    tree.symbols[entry.symbol].optional = true;
  } else if (*kind == PropertyKind::Modules) {
    tree.modules = entry.symbol;
  }
  add(id, property);
}

void DefinitionReader::add(EntryId id, Property const& property) {
  m_result.tree.properties.push_back(property);
  ++m_result.tree.entries[id].propertyCount;
}

// Parameters that no entry declares.
void DefinitionReader::addPredefined() {
  MenuTree& tree = m_result.tree;
  for (std::size_t ordinal = 0; ordinal < m_nodes.size(); ++ordinal) {
    SymbolId const symbol = m_symbols[ordinal];
    if (symbol == noSymbol || tree.symbols[symbol].defined) {
      continue;
    }
    tree.symbols[symbol].automatic = true;
    for (schema::FollowsDef const& row : *m_nodes[ordinal]->getFollows()) {
      Property property;
      property.kind = PropertyKind::Environment;
      property.symbol = symbol;
      property.value = m_expressions.read(row->getExpr());
      tree.predefined.push_back(property);
    }
  }
}

}  // namespace

Definitions readDefinitions(schema::SchemaData const& schema) { return DefinitionReader(schema).read(); }

}  // namespace kconfig
