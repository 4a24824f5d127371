#include "state/StateBuilder.hpp"

#include <tessel_config_datamodel/data/EnumParamData.hpp>
#include <tessel_config_datamodel/data/UserVisibleData.hpp>
#include <tessel_config_datamodel/runtime/PerspectiveState.hpp>
#include <tessel_config_datamodel/runtime/ProductionState.hpp>
#include <tessel_config_datamodel/runtime/TagState.hpp>
#include <tessel_config_datamodel/schema/CategoryDef.hpp>
#include <tessel_config_datamodel/schema/ParamDef.hpp>
#include <tessel_config_datamodel/schema/PerspectiveDef.hpp>
#include <tessel_config_datamodel/schema/ProductionDef.hpp>
#include <tessel_config_datamodel/schema/TagDef.hpp>

#include "loading/ModelText.hpp"
#include "loading/Vocabulary.hpp"
#include "state/ValueData.hpp"

namespace kconfig {

namespace {

tessel::internal::util::DocRef docRef(MenuTree const& tree, Position position) {
  tessel::internal::util::DocRef place;
  place.setDocument(toModel(tree.files[position.file].name));
  place.setTopic(toModel(std::to_string(position.line)));
  return place;
}

class StateBuilder {
 public:
  StateBuilder(plinth::Model const& model, schema::SchemaData const& schema, Definitions const& definitions,
               CompiledTree const& compiled, HelpTexts const& helps)
      : m_model(model), m_schema(schema), m_definitions(definitions), m_compiled(compiled), m_helps(helps) {}

  States build();

 private:
  void addTags();
  void addParams();
  void addParam(SymbolId symbol);
  void describe(data::UserVisibleData const& data, EntryId entry);
  void addOptions(runtime::ParamState const& param, SymbolId symbol);
  void addMenu();
  runtime::CategoryState categoryOf(EntryId id);
  void place(EntryId id);
  void addPerspective();
  void addProductions();

  MenuTree const& tree() const { return m_definitions.tree; }
  std::string_view promptOf(EntryId id) const {
    PropertyId const prompt = m_compiled.nodes[id].prompt;
    return prompt != noProperty ? tree().properties[prompt].text : std::string_view();
  }

  plinth::Model m_model;
  schema::SchemaData m_schema;
  Definitions const& m_definitions;
  CompiledTree const& m_compiled;
  HelpTexts const& m_helps;
  States m_states;
  std::vector<std::vector<EntryId>> m_entries;  // of each symbol, in the order of the text
};

States StateBuilder::build() {
  m_states.root = runtime::ConfigurationState::create(m_model);
  m_states.params.resize(tree().symbols.size());
  m_states.categories.resize(tree().entries.size());
  m_entries.resize(tree().symbols.size());
  for (EntryId id = 0; id < tree().entries.size(); ++id) {
    if (tree().entries[id].symbol != noSymbol) {
      m_entries[tree().entries[id].symbol].push_back(id);
    }
  }
  addTags();
  addParams();
  addMenu();
  addPerspective();
  addProductions();
  m_schema->setRuntimeState(m_states.root);
  return std::move(m_states);
}

void StateBuilder::addTags() {
  for (schema::TagDef const& definition : *m_schema->getTags()) {
    runtime::TagState const tag = runtime::TagState::create(m_model);
    tag->setId(definition->getId());
    tag->setName(definition->getId());
    tag->setType(runtime::TagType::OWNER);
    m_states.root->getTagsMutable()->insert(tag);
    definition->setInitialState(tag);
  }
}

void StateBuilder::addParams() {
  for (SymbolId symbol = 0; symbol < tree().symbols.size(); ++symbol) {
    if (m_definitions.params[symbol]) {
      addParam(symbol);
    }
  }
  // Options name other parameters, so these are there first.
  for (SymbolId symbol = 0; symbol < tree().symbols.size(); ++symbol) {
    if (m_states.params[symbol]) {
      addOptions(m_states.params[symbol], symbol);
    }
  }
}

void StateBuilder::addParam(SymbolId symbol) {
  schema::ParamDef const& definition = m_definitions.params[symbol];
  Symbol const& row = tree().symbols[symbol];
  runtime::ParamState const param = runtime::ParamState::create(m_model);
  param->setKey(definition->getKey());
  param->setTypeName(toModel(typeNameOf(row)));
  data::ParamData const data = createData(m_model, row);
  bool prompted = false;
  for (EntryId const entry : m_entries[symbol]) {
    describe(data, entry);
    prompted = prompted || m_compiled.nodes[entry].prompt != noProperty;
  }
  param->setInternal(!prompted);
  param->setData(data);
  m_states.root->getParamsMutable()->insert(param);
  if (!m_entries[symbol].empty()) {
    Entry const& first = tree().entries[m_entries[symbol].front()];
    runtime::TagState const tag = m_states.root->getTags()->find(toModel(ownerOf(tree().files[first.position.file])));
    if (tag) {
      param->getTagsMutable()->add(tag);
    }
  }
  definition->setInitialState(param);
  m_states.params[symbol] = param;
}

// Texts that an earlier entry gave stay.
void StateBuilder::describe(data::UserVisibleData const& data, EntryId entry) {
  if (!data->getHelp()) {
    data->setHelp(docRef(tree(), tree().entries[entry].position));
  }
  if (!data->getName() && !promptOf(entry).empty()) {
    data->setName(toModel(promptOf(entry)));
  }
  if (data->getDescription()) {
    return;
  }
  auto const help = m_helps.find(entry);
  if (help != m_helps.end()) {
    data->setDescription(help->second);
  }
}

void StateBuilder::addOptions(runtime::ParamState const& param, SymbolId symbol) {
  auto const enumeration = plinth::element_cast<data::EnumParamData>(param->getData());
  if (!enumeration) {
    return;
  }
  std::vector<data::EnumOption> options;
  auto const add = [&options](std::u16string const& value, boost::optional<std::u16string> const& shown) {
    options.emplace_back();
    options.back().setValue(value);
    options.back().setDisplayValue(shown);
  };
  if (tree().symbols[symbol].kind == SymbolKind::Choice) {
    for (SymbolId const member : m_compiled.membersOf(symbol)) {
      add(m_definitions.params[member]->getKey(), m_states.params[member]->getData()->getName());
    }
  } else {
    for (char16_t const* value : {u"n", u"m", u"y"}) {
      add(value, boost::none);
    }
  }
  enumeration->getAllowedValuesMutable()->assign(std::move(options));
}

// The menu

void StateBuilder::addMenu() {
  EntryId id = rootEntry;
  while (id != noEntry) {
    place(id);
    id = following(m_compiled, id);
  }
}

// A menu, a comment or a choice is a category; a symbol is one beside itself where others lie below it.
void StateBuilder::place(EntryId id) {
  Entry const& entry = tree().entries[id];
  EntryId const parent = m_compiled.nodes[id].parent;
  runtime::CategoryState const category = categoryOf(id);
  if (category) {
    m_states.root->getCategoriesMutable()->add(category);
    m_states.categories[id] = category;
  }
  if (parent == noEntry) {
    return;
  }
  runtime::CategoryState const around = m_states.categories[parent];
  if (entry.symbol != noSymbol && !m_states.params[entry.symbol]->hasCategory()) {
    bool const choice = entry.kind == EntryKind::Choice;
    (choice ? category : around)->getContentsMutable()->add(m_states.params[entry.symbol]);
  }
  if (category) {
    around->getContentsMutable()->add(category);
  }
}

runtime::CategoryState StateBuilder::categoryOf(EntryId id) {
  Entry const& entry = tree().entries[id];
  schema::ControllableDef const& definition = m_definitions.entries[id];
  bool const plain = entry.kind == EntryKind::Config || entry.kind == EntryKind::MenuConfig;
  if (entry.kind == EntryKind::If || (plain && m_compiled.nodes[id].firstChild == noEntry)) {
    return {};
  }
  runtime::CategoryState const category = runtime::CategoryState::create(m_model);
  data::UserVisibleData const data = data::UserVisibleData::create(m_model);
  describe(data, id);
  if (id == rootEntry) {
    data->setName(toModel(tree().title));
  }
  category->setData(data);
  if (plain) {
    category->setKey(toModel(std::string(key::below).append(tree().symbols[entry.symbol].name)));
  } else {
    category->setKey(definition->getKey());
    plinth::element_cast<schema::CategoryDef>(definition)->setInitialState(category);
  }
  return category;
}

// What a user can set

void StateBuilder::addPerspective() {
  schema::PerspectiveDef const definition = schema::PerspectiveDef::create(m_model);
  runtime::PerspectiveState const perspective = runtime::PerspectiveState::create(m_model);
  std::u16string const id(key::settable);
  definition->setId(id);
  perspective->setId(id);
  perspective->setName(std::u16string(u"What a user can set"));
  perspective->setIsDefault(true);
  perspective->setIsActive(true);
  std::vector<unsigned int> inside;
  std::vector<unsigned int> outside;
  for (SymbolId symbol = 0; symbol < m_states.params.size(); ++symbol) {
    runtime::ParamState const& param = m_states.params[symbol];
    if (!param) {
      continue;
    }
    bool const settable = !param->getInternal() && tree().symbols[symbol].kind == SymbolKind::Plain;
    (settable ? inside : outside).push_back(m_definitions.params[symbol]->getOrdinal());
    param->setInPerspective(settable);
    if (settable) {
      perspective->getMembersMutable()->add(param);
    }
  }
  definition->getMemberOrdinalsMutable()->assign(std::move(inside));
  m_schema->getNonPerspectiveOrdinalsMutable()->assign(std::move(outside));
  definition->setInitialState(perspective);
  m_schema->getPerspectivesMutable()->insert(definition);
  m_states.root->getPerspectivesMutable()->insert(perspective);
}

void StateBuilder::addProductions() {
  for (schema::ProductionDef const& definition : *m_schema->getProductions()) {
    runtime::ProductionState const production = runtime::ProductionState::create(m_model);
    production->setKey(definition->getKey());
    production->setProductionClass(definition->getProducerClass());
    m_states.root->getProductionsMutable()->insert(production);
    definition->setInitialState(production);
  }
}

}  // namespace

States buildStates(plinth::Model const& model, schema::SchemaData const& schema, Definitions const& definitions,
                   CompiledTree const& compiled, HelpTexts const& helps) {
  return StateBuilder(model, schema, definitions, compiled, helps).build();
}

}  // namespace kconfig
