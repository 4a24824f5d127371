#include "loading/SchemaWriter.hpp"

#include <kestrel/array.hpp>
#include <tessel_config_datamodel/runtime/Metadata.hpp>
#include <tessel_config_datamodel/schema/CategoryDef.hpp>
#include <tessel_config_datamodel/schema/FollowsDef.hpp>
#include <tessel_config_datamodel/schema/ParamDef.hpp>
#include <tessel_config_datamodel/schema/ProductionDef.hpp>
#include <tessel_config_datamodel/schema/TagDef.hpp>

#include "loading/ExpressionElements.hpp"
#include "loading/ModelText.hpp"
#include "loading/Vocabulary.hpp"

namespace kconfig {

namespace {

constexpr std::uint32_t noOrdinal = ~std::uint32_t{0};

// What is known of one definition besides its element.
struct Node {
  schema::ControllableDef definition;
  std::vector<schema::GlobalNodeRef> contents;  // of a category
};

class SchemaWriter {
 public:
  SchemaWriter(MenuTree const& tree, plinth::Model const& model)
      : m_tree(tree),
        m_model(model),
        m_expressions(tree, model),
        m_schema(schema::SchemaData::create(model)),
        m_symbolOrdinals(tree.symbols.size(), noOrdinal),
        m_seen(tree.symbols.size(), noOrdinal) {}

  schema::SchemaData write();

 private:
  void addParams();
  schema::ParamDef addParam(SymbolId symbol, std::u16string key);
  void addEntry(EntryId id);
  PropertyId constantPrompt(Entry const& entry) const;
  std::uint32_t definitionOf(EntryId id);
  std::uint32_t addCategory(std::string key);
  std::string keyOf(EntryId id) const;
  void writeFollows(Property const& property, std::uint32_t ordinal);
  void addFollows(std::uint32_t ordinal, std::u16string_view attribute, expr::ExprValue const& expression,
                  Position position);
  void writeLogic(Entry const& entry, std::uint32_t ordinal, PropertyId constant);
  void noteDependencies(Property const& property, std::uint32_t ordinal);
  void noteDependency(SymbolId symbol, std::uint32_t ordinal);
  void noteExpression(ExpressionId id, std::uint32_t ordinal);
  void writeDependencies();
  void addTag(Entry const& entry);
  void addProductions();
  void writeMetadata();
  void addMetadata(std::u16string_view name, kestrel::OwnedArray const& value);
  void addPosition(Position position);

  schema::GlobalNodeRef refTo(std::uint32_t ordinal) const {
    schema::GlobalNodeRef ref;
    ref.setKey(m_nodes[ordinal].definition->getKey());
    ref.setOrdinal(ordinal);
    return ref;
  }

  MenuTree const& m_tree;
  plinth::Model m_model;
  ExpressionWriter m_expressions;
  schema::SchemaData m_schema;
  std::vector<std::uint32_t> m_symbolOrdinals;  // of the symbols that have a ParamDef
  std::vector<std::uint32_t> m_seen;            // by symbol: the last definition that was noted to depend on it
  std::vector<bool> m_declared;                 // by ordinal: an entry has been met
  std::vector<Node> m_nodes;                    // by ordinal
  std::vector<std::vector<schema::GlobalNodeRef>> m_requires;
  std::vector<std::vector<unsigned int>> m_successors;
  std::vector<std::uint32_t> m_entryOrdinals;
  std::vector<std::uint32_t> m_positions;  // file and line in turn
};

schema::EvalDef evalDef(std::u16string_view attribute, std::string_view code) {
  schema::EvalDef row;
  row.setAttribute(std::u16string(attribute));
  row.setCode(toModel(code));
  row.setConstant(true);
  return row;
}

schema::SchemaData SchemaWriter::write() {
  addParams();
  m_entryOrdinals.resize(m_tree.entries.size(), noOrdinal);
  for (EntryId id = 0; id < m_tree.entries.size(); ++id) {
    addEntry(id);
  }
  for (Property const& property : m_tree.predefined) {
    std::uint32_t const ordinal = m_symbolOrdinals[property.symbol];
    writeFollows(property, ordinal);
    m_nodes[ordinal].definition->getLogicMutable()->push_back(evalDef(logic::option, logic::predefined));
  }
  writeDependencies();
  addProductions();
  writeMetadata();
  return m_schema;
}

// Parameters get their numbers first, in the order in which the text mentions their symbols.
void SchemaWriter::addParams() {
  std::vector<bool> wanted(m_tree.symbols.size(), false);
  std::vector<EntryId> entries(m_tree.symbols.size(), noEntry);
  for (EntryId id = static_cast<EntryId>(m_tree.entries.size()); id-- > 0;) {
    if (m_tree.entries[id].symbol != noSymbol) {
      entries[m_tree.entries[id].symbol] = id;
    }
  }
  for (Property const& property : m_tree.predefined) {
    wanted[property.symbol] = true;
  }
  for (SymbolId symbol = 0; symbol < m_tree.symbols.size(); ++symbol) {
    if (wanted[symbol] || entries[symbol] != noEntry) {
      bool const choice = m_tree.symbols[symbol].kind == SymbolKind::Choice;
      m_symbolOrdinals[symbol] = static_cast<std::uint32_t>(m_nodes.size());
      m_nodes.push_back({addParam(symbol, toModel(choice ? keyOf(entries[symbol]) : m_tree.symbols[symbol].name)), {}});
    }
  }
  m_requires.resize(m_nodes.size());
  m_successors.resize(m_nodes.size());
  m_declared.resize(m_nodes.size(), false);
}

schema::ParamDef SchemaWriter::addParam(SymbolId symbol, std::u16string key) {
  schema::ParamDef const param = schema::ParamDef::create(m_model);
  param->setKey(key);
  param->setOrdinal(static_cast<std::uint32_t>(m_nodes.size()));
  Symbol const& row = m_tree.symbols[symbol];
  if (row.type != SymbolType::Unknown) {
    param->getLogicMutable()->push_back(evalDef(logic::type, keywordOf(row.type)));
  }
  m_schema->getParamsMutable()->insert(param);
  return param;
}

void SchemaWriter::addEntry(EntryId id) {
  Entry const& entry = m_tree.entries[id];
  std::uint32_t const ordinal = definitionOf(id);
  m_entryOrdinals[id] = ordinal;
  addPosition(entry.position);
  PropertyId const constant = constantPrompt(entry);
  for (Property const& property : propertiesOf(m_tree, entry)) {
    if (&property != m_tree.properties.data() + constant) {
      writeFollows(property, ordinal);
    }
    noteDependencies(property, ordinal);
  }
  writeLogic(entry, ordinal, constant);
  if (entry.parent != noEntry) {
    m_nodes[m_entryOrdinals[entry.parent]].contents.push_back(refTo(ordinal));
  }
}

// The one prompt of an entry that is without a condition; noProperty where there is none or several.
PropertyId SchemaWriter::constantPrompt(Entry const& entry) const {
  PropertyId found = noProperty;
  for (PropertyId at = entry.firstProperty; at < entry.firstProperty + entry.propertyCount; ++at) {
    if (m_tree.properties[at].kind == PropertyKind::Prompt) {
      if (found != noProperty || m_tree.properties[at].condition != noExpression) {
        return noProperty;
      }
      found = at;
    }
  }
  return found;
}

// The first entry of a plain symbol is its ParamDef; everything else is a category.
std::uint32_t SchemaWriter::definitionOf(EntryId id) {
  Entry const& entry = m_tree.entries[id];
  if (entry.kind == EntryKind::Config || entry.kind == EntryKind::MenuConfig) {
    std::uint32_t const own = m_symbolOrdinals[entry.symbol];
    if (!m_declared[own]) {
      m_declared[own] = true;
      addTag(entry);
      return own;
    }
    std::uint32_t const ordinal = addCategory(keyOf(id));
    m_nodes[ordinal].contents.push_back(refTo(own));
    return ordinal;
  }
  return addCategory(keyOf(id));
}

std::string SchemaWriter::keyOf(EntryId id) const {
  Entry const& entry = m_tree.entries[id];
  auto const numbered = [id](std::string_view beginning) { return std::string(beginning) + std::to_string(id); };
  switch (entry.kind) {
    case EntryKind::Root:
      return std::string(key::tree);
    case EntryKind::Menu:
      return numbered(key::menu);
    case EntryKind::Comment:
      return numbered(key::comment);
    case EntryKind::If:
      return numbered(key::conditional);
    case EntryKind::Choice: {
      std::string_view const name = m_tree.symbols[entry.symbol].name;
      return name.empty() ? numbered(key::nameless) : std::string(key::choice).append(name);
    }
    case EntryKind::Config:
    case EntryKind::MenuConfig:
      break;
  }
  return numbered(key::entry);
}

std::uint32_t SchemaWriter::addCategory(std::string key) {
  auto const ordinal = static_cast<std::uint32_t>(m_nodes.size());
  schema::CategoryDef const category = schema::CategoryDef::create(m_model);
  category->setKey(toModel(key));
  category->setOrdinal(ordinal);
  m_schema->getCategoriesMutable()->add(category);
  m_nodes.push_back({category, {}});
  m_requires.emplace_back();
  m_successors.emplace_back();
  return ordinal;
}

void SchemaWriter::writeFollows(Property const& property, std::uint32_t ordinal) {
  auto const conditional = [&](std::u16string_view attribute, std::vector<expr::ExprValue> const& values) {
    addFollows(ordinal, attribute, m_expressions.writeConditional(property.condition, values), property.position);
  };
  switch (property.kind) {
    case PropertyKind::Prompt:
      conditional(follows::name, {m_expressions.writeText(property.text)});
      break;
    case PropertyKind::Default:
      conditional(follows::value, {m_expressions.write(property.value)});
      break;
    case PropertyKind::Select:
      conditional(follows::select, {m_expressions.writeSymbol(property.symbol)});
      break;
    case PropertyKind::Imply:
      conditional(follows::imply, {m_expressions.writeSymbol(property.symbol)});
      break;
    case PropertyKind::Range:
      conditional(follows::range,
                  {m_expressions.writeSymbol(property.symbol), m_expressions.writeSymbol(property.upper)});
      break;
    case PropertyKind::DependsOn:
      addFollows(ordinal, follows::enabled, m_expressions.write(property.condition), property.position);
      break;
    case PropertyKind::VisibleIf:
      addFollows(ordinal, follows::contentsVisible, m_expressions.write(property.condition), property.position);
      break;
    case PropertyKind::Environment:
      if (property.value != noExpression) {
        addFollows(ordinal, follows::imported, m_expressions.write(property.value), property.position);
      }
      break;
    default:
      break;
  }
}

void SchemaWriter::addFollows(std::uint32_t ordinal, std::u16string_view attribute, expr::ExprValue const& expression,
                              Position position) {
  schema::FollowsDef const row = schema::FollowsDef::create(m_model);
  row->setAttribute(std::u16string(attribute));
  row->setExpr(expression);
  m_nodes[ordinal].definition->getFollowsMutable()->add(row);
  addPosition(position);
}

void SchemaWriter::writeLogic(Entry const& entry, std::uint32_t ordinal, PropertyId constant) {
  auto& rows = *m_nodes[ordinal].definition->getLogicMutable();
  if (constant != noProperty) {
    rows.push_back(evalDef(logic::name, m_tree.properties[constant].text));
  }
  if (entry.kind == EntryKind::MenuConfig) {
    rows.push_back(evalDef(logic::entry, logic::menuConfig));
  }
  for (Property const& property : propertiesOf(m_tree, entry)) {
    switch (property.kind) {
      case PropertyKind::Optional:
        rows.push_back(evalDef(logic::option, logic::optional));
        break;
      case PropertyKind::Modules:
        rows.push_back(evalDef(logic::option, logic::modules));
        break;
      case PropertyKind::DefconfigList:
        rows.push_back(evalDef(logic::option, logic::defconfigList));
        break;
      case PropertyKind::AllNoConfigY:
        rows.push_back(evalDef(logic::option, logic::allNoConfigY));
        break;
      case PropertyKind::Environment:
        rows.push_back(evalDef(logic::option, std::string(logic::environment).append(property.text)));
        break;
      default:
        break;
    }
  }
}

// Dependencies

void SchemaWriter::noteDependencies(Property const& property, std::uint32_t ordinal) {
  noteExpression(property.condition, ordinal);
  if (property.kind == PropertyKind::Default) {
    noteExpression(property.value, ordinal);
  } else if (property.kind == PropertyKind::Range) {
    noteDependency(property.symbol, ordinal);
    noteDependency(property.upper, ordinal);
  }
}

void SchemaWriter::noteExpression(ExpressionId id, std::uint32_t ordinal) {
  ExpressionPool const& pool = m_tree.expressions;
  Operator const op = pool.op(id);
  if (isList(op)) {
    for (ExpressionId const operand : pool.operands(id)) {
      noteExpression(operand, ordinal);
    }
  } else if (op == Operator::Not) {
    noteExpression(pool.operand(id), ordinal);
  } else if (op != Operator::None) {
    noteDependency(pool.left(id), ordinal);
    if (op != Operator::Symbol) {
      noteDependency(pool.right(id), ordinal);
    }
  }
}

void SchemaWriter::noteDependency(SymbolId symbol, std::uint32_t ordinal) {
  std::uint32_t const required = m_symbolOrdinals[symbol];
  if (required != noOrdinal && m_seen[symbol] != ordinal) {
    m_seen[symbol] = ordinal;
    m_requires[ordinal].push_back(refTo(required));
    m_successors[required].push_back(ordinal);
  }
}

void SchemaWriter::writeDependencies() {
  for (std::uint32_t ordinal = 0; ordinal < m_nodes.size(); ++ordinal) {
    schema::ControllableDef const& definition = m_nodes[ordinal].definition;
    if (!m_requires[ordinal].empty()) {
      definition->getRequiresMutable()->assign(std::move(m_requires[ordinal]));
    }
    if (!m_successors[ordinal].empty()) {
      definition->getSuccessorsMutable()->assign(std::move(m_successors[ordinal]));
    }
    if (!m_nodes[ordinal].contents.empty()) {
      auto const category = plinth::element_cast<schema::CategoryDef>(definition);
      category->getContentsMutable()->assign(std::move(m_nodes[ordinal].contents));
    }
  }
}

// What belongs to no single definition

// The folder at the top of the tree in which a symbol is declared first owns it.
void SchemaWriter::addTag(Entry const& entry) {
  std::u16string const folder = toModel(ownerOf(m_tree, entry));
  if (!folder.empty() && !m_schema->getTags()->find(folder)) {
    schema::TagDef const tag = schema::TagDef::create(m_model);
    tag->setId(folder);
    m_schema->getTagsMutable()->insert(tag);
  }
}

void SchemaWriter::addProductions() {
  auto ordinal = static_cast<std::uint32_t>(m_nodes.size());
  for (std::u16string_view const name : {key::configuration, key::header}) {
    schema::ProductionDef const production = schema::ProductionDef::create(m_model);
    production->setKey(std::u16string(name));
    production->setOrdinal(ordinal++);
    production->setProducerClass(u"tessel-kconfig");
    production->getContributorsMutable()->push_back(refTo(m_entryOrdinals[rootEntry]));
    m_schema->getProductionsMutable()->insert(production);
  }
  m_schema->setNodeCount(ordinal);
}

void SchemaWriter::writeMetadata() {
  std::vector<std::u16string> names;
  std::size_t const count = m_tree.files.size();
  kestrel::OwnedArray const sources = kestrel::createNumeric<std::uint32_t>({2, count});
  for (std::size_t file = 0; file < count; ++file) {
    names.push_back(toModel(m_tree.files[file].name));
    kestrel::mutableData<std::uint32_t>(*sources)[2 * file] = m_tree.files[file].sourcedFrom.file;
    kestrel::mutableData<std::uint32_t>(*sources)[2 * file + 1] = m_tree.files[file].sourcedFrom.line;
  }
  kestrel::OwnedArray const positions = kestrel::createNumeric<std::uint32_t>({2, m_positions.size() / 2});
  std::copy(m_positions.begin(), m_positions.end(), kestrel::mutableData<std::uint32_t>(*positions));
  addMetadata(metadata::title, kestrel::createChar(toModel(m_tree.title)));
  addMetadata(metadata::files, kestrel::createStringRow(names));
  addMetadata(metadata::sourcedFrom, sources);
  addMetadata(metadata::positions, positions);
  for (Property const& property : m_tree.properties) {
    if (property.kind == PropertyKind::Environment && property.value != noExpression) {
      SymbolId const value = m_tree.expressions.left(property.value);
      addMetadata(std::u16string(metadata::environment) + toModel(property.text),
                  kestrel::createChar(toModel(m_tree.symbols[value].name)));
    }
  }
}

void SchemaWriter::addMetadata(std::u16string_view name, kestrel::OwnedArray const& value) {
  if (m_schema->getMetadata()->find(name)) {
    return;
  }
  runtime::Metadata const row = runtime::Metadata::create(m_model);
  row->setProperty(std::u16string(name));
  row->setValue(value.get());
  m_schema->getMetadataMutable()->insert(row);
}

void SchemaWriter::addPosition(Position position) {
  m_positions.push_back(position.file);
  m_positions.push_back(position.line);
}

}  // namespace

schema::SchemaData writeSchema(MenuTree const& tree, plinth::Model const& model) {
  return SchemaWriter(tree, model).write();
}

}  // namespace kconfig
