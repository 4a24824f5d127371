#include "loading/DefinitionWriter.hpp"

#include <algorithm>
#include <tessel_config_datamodel/runtime/Metadata.hpp>
#include <tessel_config_datamodel/schema/CategoryDef.hpp>
#include <tessel_config_datamodel/schema/FollowsDef.hpp>
#include <tessel_config_datamodel/schema/ParamDef.hpp>
#include <tessel_config_datamodel/schema/ProductionDef.hpp>
#include <tessel_config_datamodel/schema/TagDef.hpp>
#include <utility>

#include "loading/ModelText.hpp"
#include "loading/Vocabulary.hpp"

namespace kconfig {

namespace {

schema::EvalDef evalDef(std::u16string_view attribute, std::string_view code) {
  schema::EvalDef row;
  row.setAttribute(std::u16string(attribute));
  row.setCode(toModel(code));
  row.setConstant(true);
  return row;
}

// The one prompt of an entry that is without a condition; null where there is none or several.
Property const* constantPrompt(std::vector<Property> const& properties) {
  Property const* found = nullptr;
  for (Property const& property : properties) {
    if (property.kind == PropertyKind::Prompt) {
      if (found != nullptr || property.condition != noExpression) {
        return nullptr;
      }
      found = &property;
    }
  }
  return found;
}

}  // namespace

DefinitionWriter::DefinitionWriter(Lexicon const& words, plinth::Model const& model)
    : m_words(words), m_model(model), m_expressions(words, model), m_schema(schema::SchemaData::create(model)) {}

std::uint32_t DefinitionWriter::addFile(SourceFile const& file) {
  m_files.push_back(file);
  return static_cast<std::uint32_t>(m_files.size() - 1);
}

void DefinitionWriter::setRootPosition(Position position) { m_positions.front() = position; }

// Entries

void DefinitionWriter::addPredefined(SymbolId symbol, ExpressionId value) {
  NodeId const node = paramOf(symbol, std::string(m_words.symbols[symbol].name));
  addFollows(*wordFor(follows::words, PropertyKind::Environment), m_expressions.write(value), node);
  m_nodes[node].logic.push_back(evalDef(logic::option, logic::predefined));
}

DefinitionWriter::NodeId DefinitionWriter::addEntry(Entry const& entry, NodeId parent) {
  m_isNumbered = false;
  std::string const key = keyOf(entry);
  bool const plain = entry.kind == EntryKind::Config || entry.kind == EntryKind::MenuConfig;
  NodeId node = noNode;
  if (!plain) {
    node = addCategory(key);
    if (entry.symbol != noSymbol) {
      paramOf(entry.symbol, key);
    }
  } else {
    NodeId const own = paramOf(entry.symbol, std::string(m_words.symbols[entry.symbol].name));
    bool const isFirst = !m_words.symbols[entry.symbol].defined;
    node = isFirst ? own : addCategory(key);
    if (!isFirst) {
      m_nodes[node].contents.push_back(own);
    }
    // The folder at the top of the tree in which a symbol is declared first owns it.
    std::u16string const folder = isFirst ? toModel(ownerOf(m_files[entry.position.file])) : std::u16string();
    if (!folder.empty() && !m_schema->getTags()->find(folder)) {
      schema::TagDef const tag = schema::TagDef::create(m_model);
      tag->setId(folder);
      m_schema->getTagsMutable()->insert(tag);
    }
  }
  if (m_entries++ != rootEntry) {
    m_nodes[parent].contents.push_back(node);
  }
  if (entry.kind == EntryKind::MenuConfig) {
    m_nodes[node].logic.push_back(evalDef(logic::entry, logic::menuConfig));
  }
  m_positions.push_back(entry.position);
  return node;
}

std::string DefinitionWriter::keyOf(Entry const& entry) const {
  if (entry.kind == EntryKind::Root) {
    return std::string(key::tree);
  }
  EntryKind const kind = entry.kind == EntryKind::MenuConfig ? EntryKind::Config : entry.kind;
  std::string_view const name = kind == EntryKind::Choice ? m_words.symbols[entry.symbol].name : std::string_view();
  if (!name.empty()) {
    return std::string(key::choice).append(name);
  }
  auto const row =
      std::find_if(std::begin(key::kinds), std::end(key::kinds), [&](auto& each) { return each.first == kind; });
  std::string_view const beginning = kind == EntryKind::Choice ? key::nameless : row->second;
  return std::string(beginning) + std::to_string(m_entries);
}

DefinitionWriter::NodeId DefinitionWriter::paramOf(SymbolId symbol, std::string const& key) {
  m_params.resize(std::max<std::size_t>(m_params.size(), m_words.symbols.size()), noNode);
  if (m_params[symbol] == noNode) {
    schema::ParamDef const param = schema::ParamDef::create(m_model);
    m_params[symbol] = addNode(param, key, true);
    m_schema->getParamsMutable()->insert(param);
  }
  return m_params[symbol];
}

DefinitionWriter::NodeId DefinitionWriter::addCategory(std::string const& key) {
  schema::CategoryDef const category = schema::CategoryDef::create(m_model);
  m_schema->getCategoriesMutable()->add(category);
  return addNode(category, key, false);
}

DefinitionWriter::NodeId DefinitionWriter::addNode(schema::ControllableDef const& definition, std::string const& key,
                                                   bool isParam) {
  definition->setKey(toModel(key));
  m_nodes.push_back({definition, isParam, {}, {}, {}, {}, {}});
  return static_cast<NodeId>(m_nodes.size() - 1);
}

// Properties

void DefinitionWriter::addProperties(NodeId node, std::vector<Property> const& properties) {
  m_isNumbered = m_isNumbered && properties.empty();
  Property const* const constant = constantPrompt(properties);
  for (Property const& property : properties) {
    if (&property != constant) {
      addFollows(property, node);
    }
    noteDependencies(property, node);
  }
  if (constant != nullptr) {
    m_nodes[node].logic.push_back(evalDef(logic::name, constant->text));
  }
  for (Property const& property : properties) {
    addLogic(property, node);
  }
}

void DefinitionWriter::addFollows(Property const& property, NodeId node) {
  std::u16string_view const* const attribute = wordFor(follows::words, property.kind);
  bool const isUnknown = property.kind == PropertyKind::Environment && property.value == noExpression;
  if (attribute != nullptr && !isUnknown) {
    addFollows(*attribute, expressionOf(property), node);
    m_positions.push_back(property.position);
  }
}

expr::ExprValue DefinitionWriter::expressionOf(Property const& property) {
  switch (property.kind) {
    case PropertyKind::DependsOn:
    case PropertyKind::VisibleIf:
      return m_expressions.write(property.condition);
    case PropertyKind::Prompt:
      return m_expressions.writeConditional(property.condition, {m_expressions.writeText(property.text)});
    case PropertyKind::Select:
    case PropertyKind::Imply:
      return m_expressions.writeConditional(property.condition, {m_expressions.writeSymbol(property.symbol)});
    case PropertyKind::Range:
      return m_expressions.writeConditional(
          property.condition, {m_expressions.writeSymbol(property.symbol), m_expressions.writeSymbol(property.upper)});
    default:
      return m_expressions.writeConditional(property.condition, {m_expressions.write(property.value)});
  }
}

void DefinitionWriter::addFollows(std::u16string_view attribute, expr::ExprValue const& expression, NodeId node) {
  schema::FollowsDef const row = schema::FollowsDef::create(m_model);
  row->setAttribute(std::u16string(attribute));
  row->setExpr(expression);
  m_nodes[node].definition->getFollowsMutable()->add(row);
}

void DefinitionWriter::addLogic(Property const& property, NodeId node) {
  std::vector<schema::EvalDef>& logic = m_nodes[node].logic;
  if (std::string_view const* const word = wordFor(logic::options, property.kind)) {
    logic.push_back(evalDef(logic::option, *word));
  } else if (property.kind == PropertyKind::Environment) {
    logic.push_back(evalDef(logic::option, std::string(logic::environment).append(property.text)));
    if (property.value != noExpression) {
      SymbolId const value = m_words.expressions.left(property.value);
      setMetadata(std::u16string(metadata::environment) + toModel(property.text),
                  kestrel::createChar(toModel(m_words.symbols[value].name)));
    }
  }
}

// Dependencies

void DefinitionWriter::noteDependencies(Property const& property, NodeId node) {
  auto const note = [this, node](SymbolId symbol) { noteDependency(symbol, node); };
  forEachSymbol(m_words.expressions, property.condition, note);
  if (property.kind == PropertyKind::Default) {
    forEachSymbol(m_words.expressions, property.value, note);
  } else if (property.kind == PropertyKind::Range) {
    note(property.symbol);
    note(property.upper);
  }
}

void DefinitionWriter::noteDependency(SymbolId symbol, NodeId node) {
  std::vector<SymbolId>& required = m_nodes[node].required;
  if (!isTristateConstant(symbol) && m_words.symbols[symbol].kind == SymbolKind::Plain) {
    required.push_back(symbol);
  }
}

void DefinitionWriter::writeDependencies() {
  std::vector<NodeId> seen(m_words.symbols.size(), noNode);  // by symbol: the last that was found to depend on it
  for (NodeId node = 0; node < m_nodes.size(); ++node) {
    for (SymbolId const symbol : m_nodes[node].required) {
      NodeId const param = m_params[symbol];
      if (param != noNode && seen[symbol] != node) {
        seen[symbol] = node;
        m_nodes[node].requires_.push_back(refTo(param));
        m_nodes[param].successors.push_back(m_nodes[node].definition->getOrdinal());
      }
    }
  }
  for (Node& node : m_nodes) {
    if (!node.requires_.empty()) {
      node.definition->getRequiresMutable()->assign(std::move(node.requires_));
    }
    if (!node.successors.empty()) {
      node.definition->getSuccessorsMutable()->assign(std::move(node.successors));
    }
  }
}

// What belongs to no single definition

schema::SchemaData const& DefinitionWriter::number() {
  if (std::exchange(m_isNumbered, true)) {
    return m_schema;
  }
  m_params.resize(m_words.symbols.size(), noNode);
  std::uint32_t ordinal = 0;
  // Parameters in the order in which the text mentions their symbols, categories behind them.
  for (SymbolId symbol = 0; symbol < m_params.size(); ++symbol) {
    if (m_params[symbol] != noNode) {
      Node const& node = m_nodes[m_params[symbol]];
      std::vector<schema::EvalDef> logic = node.logic;
      if (m_words.symbols[symbol].type != SymbolType::Unknown) {
        logic.insert(logic.begin(), evalDef(logic::type, keywordOf(m_words.symbols[symbol].type)));
      }
      node.definition->setOrdinal(ordinal++);
      node.definition->getLogicMutable()->assign(std::move(logic));
    }
  }
  for (Node const& node : m_nodes) {
    if (!node.isParam) {
      node.definition->setOrdinal(ordinal++);
      node.definition->getLogicMutable()->assign(node.logic);
    }
  }
  for (Node const& node : m_nodes) {
    if (!node.contents.empty()) {
      std::vector<schema::GlobalNodeRef> contents;
      contents.reserve(node.contents.size());
      for (NodeId const member : node.contents) {
        contents.push_back(refTo(member));
      }
      auto const category = plinth::element_cast<schema::CategoryDef>(node.definition);
      category->getContentsMutable()->assign(std::move(contents));
    }
  }
  m_schema->setNodeCount(ordinal);
  writeMetadata();
  return m_schema;
}

schema::SchemaData DefinitionWriter::finish() {
  number();
  setMetadata(metadata::title, kestrel::createChar(toModel(m_title)));
  writeDependencies();
  addProductions();
  return m_schema;
}

void DefinitionWriter::addProductions() {
  std::uint32_t ordinal = m_schema->getNodeCount();
  for (std::u16string_view const name : {key::configuration, key::header}) {
    schema::ProductionDef const production = schema::ProductionDef::create(m_model);
    production->setKey(std::u16string(name));
    production->setOrdinal(ordinal++);
    production->setProducerClass(u"tessel-kconfig");
    schema::CategoryDef const root = m_schema->getCategoriesMutable()->at(0);
    schema::GlobalNodeRef whole;
    whole.setKey(root->getKey());
    whole.setOrdinal(root->getOrdinal());
    production->getContributorsMutable()->push_back(whole);
    m_schema->getProductionsMutable()->insert(production);
  }
  m_schema->setNodeCount(ordinal);
}

void DefinitionWriter::writeMetadata() {
  std::vector<std::u16string> names;
  auto const columns = [](std::size_t count) { return kestrel::createNumeric<std::uint32_t>({2, count}); };
  auto const put = [](kestrel::OwnedArray const& array, std::size_t column, Position position) {
    kestrel::mutableData<std::uint32_t>(*array)[2 * column] = position.file;
    kestrel::mutableData<std::uint32_t>(*array)[2 * column + 1] = position.line;
  };
  kestrel::OwnedArray const sources = columns(m_files.size());
  for (std::size_t file = 0; file < m_files.size(); ++file) {
    names.push_back(toModel(m_files[file].name));
    put(sources, file, m_files[file].sourcedFrom);
  }
  kestrel::OwnedArray const positions = columns(m_positions.size());
  for (std::size_t at = 0; at < m_positions.size(); ++at) {
    put(positions, at, m_positions[at]);
  }
  setMetadata(metadata::title, kestrel::createChar(toModel(m_title)));
  setMetadata(metadata::files, kestrel::createStringRow(names));
  setMetadata(metadata::sourcedFrom, sources);
  setMetadata(metadata::positions, positions);
}

void DefinitionWriter::setMetadata(std::u16string_view name, kestrel::OwnedArray const& value) {
  runtime::Metadata row = m_schema->getMetadata()->find(name);
  if (!row) {
    row = runtime::Metadata::create(m_model);
    row->setProperty(std::u16string(name));
    m_schema->getMetadataMutable()->insert(row);
  }
  row->setValue(value.get());
}

schema::GlobalNodeRef DefinitionWriter::refTo(NodeId node) const {
  schema::GlobalNodeRef ref;
  ref.setKey(m_nodes[node].definition->getKey());
  ref.setOrdinal(m_nodes[node].definition->getOrdinal());
  return ref;
}

}  // namespace kconfig
