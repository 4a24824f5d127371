#include "commands/Workspace.hpp"

#include <tessel_config_datamodel/runtime/MetaMessage.hpp>
#include <tessel_config_datamodel/runtime/ProfileState.hpp>

#include "checks/TreeChecks.hpp"
#include "checks/ValueChecks.hpp"
#include "evaluation/Output.hpp"
#include "loading/ModelText.hpp"
#include "profiles/ProfileApplication.hpp"
#include "writing/Productions.hpp"

namespace kconfig {

Workspace::Workspace(std::string const& root, Surroundings const& surroundings, Progress& progress)
    : m_surroundings(surroundings),
      m_progress(progress),
      m_prefix(surroundings.variable("CONFIG_").value_or("CONFIG_")),
      m_model(plinth::Model::create()),
      m_loading(m_model.beginTransaction()),
      m_source((progress.begin("reading the tree"), readTree(root, surroundings, m_diagnostics, m_model))),
      m_schema(m_source.schema),
      m_definitions((progress.begin("compiling the definitions"), readDefinitions(m_schema))),
      m_compiled(compile(m_definitions.tree)),
      m_order(evaluationOrder(m_definitions.tree, m_compiled)),
      m_evaluator(m_definitions.tree, m_compiled, m_order),
      m_states(buildStates()),
      m_store(ext::ConfigStore::create(m_model)),
      m_writer(m_definitions, m_compiled, m_states) {
  m_states.root->setConfigStore(m_store);
  m_progress.begin("checking the definitions");
  checkEntries(m_definitions.tree, m_compiled, m_diagnostics);
  checkLoops(m_definitions.tree, m_compiled, m_order, m_diagnostics);
  m_progress.begin("evaluating");
  UserValues const nothing(m_definitions.tree, m_compiled);
  m_evaluator.evaluate(nothing);
  m_writer.write(m_evaluator, nothing);
  m_loading->commit();
  m_loading.reset();
  m_progress.finish();
}

States Workspace::buildStates() {
  m_progress.begin("building the state");
  States states = kconfig::buildStates(m_model, m_schema, m_definitions, m_compiled, m_source.helps);
  m_source = {};
  return states;
}

// Profiles

ext::ConfigProfile Workspace::load(std::string const& file) {
  ext::ConfigProfile const known = m_store->getProfiles()->find(toModel(file));
  if (known) {
    return known;
  }
  m_progress.begin("reading " + file);
  UserValues users(m_definitions.tree, m_compiled);
  std::string problem;
  std::optional<std::string> text;
  if (!file.empty()) {
    text = m_surroundings.file(file, problem);
    if (!text) {
      m_diagnostics.error(file, 0, "the profile can't be read: " + problem);
    }
  }
  // The lines refer to the text.
  std::string const content = text.value_or("");
  std::vector<ProfileLine> const lines = readProfile(content, m_prefix, file, m_diagnostics);
  applyProfile(lines, file, m_definitions.tree.symbols, users, m_diagnostics);
  ext::ConfigProfile const profile = storeProfile(m_store, file, m_definitions, users);
  m_progress.finish();
  return profile;
}

std::string Workspace::defaultProfile() {
  MenuTree const& tree = m_definitions.tree;
  for (Entry const& entry : tree.entries) {
    for (Property const& property : propertiesOf(tree, entry)) {
      if (property.kind != PropertyKind::DefconfigList) {
        continue;
      }
      for (EffectiveProperty const& row : m_compiled.propertiesOf(entry.symbol)) {
        bool const named = row.kind == PropertyKind::Default && m_evaluator.valueOf(row.condition) != Tristate::No &&
                           tree.expressions.op(row.value) == Operator::Symbol;
        std::string const file(named ? m_evaluator.textOf(tree.expressions.left(row.value)) : std::string_view());
        std::string problem;
        if (named && m_surroundings.file(file, problem)) {
          return file;
        }
      }
    }
  }
  return {};
}

void Workspace::apply(ext::ConfigProfile const& profile) {
  m_progress.begin("evaluating");
  ShownValues before = m_writer.shown();
  plinth::Transaction transaction = m_model.beginTransaction();
  try {
    activate(profile);
    evaluate(readProfileValues(profile, m_definitions, m_compiled), fromModel(profile->getId()));
    transaction.commit();
  } catch (...) {
    m_writer.restore(std::move(before));
    throw;
  }
  m_progress.finish();
}

void Workspace::activate(ext::ConfigProfile const& profile) {
  auto& profiles = *m_states.root->getProfilesMutable();
  for (runtime::ProfileState const& other : profiles) {
    other->setIsActive(other->getProfile() == profile);
  }
  if (!profiles.find(profile->getId())) {
    runtime::ProfileState const state = runtime::ProfileState::create(m_model);
    state->setId(profile->getId());
    state->setName(profile->getName());
    state->setProfile(profile);
    state->setIsActive(true);
    profiles.insert(state);
  }
  m_store->setActiveProfile(profile);
}

void Workspace::evaluate(UserValues const& users, std::string_view profileName) {
  m_evaluator.evaluate(users);
  m_writer.write(m_evaluator, users);
  checkSelections(m_definitions.tree, m_compiled, m_evaluator, m_diagnostics);
  checkRanges(m_definitions.tree, m_evaluator, users, profileName, m_diagnostics);
}

void Workspace::tryOut(ext::ConfigProfile const& base, std::vector<Setting> const& settings, bool keep,
                       std::function<void()> const& look) {
  constexpr std::string_view name = "the command line";
  ShownValues before = m_writer.shown();
  plinth::Transaction transaction = m_model.beginTransaction();
  auto const usersWith = [&](std::vector<Setting> const& taken, Diagnostics& diagnostics) {
    UserValues users = readProfileValues(base, m_definitions, m_compiled);
    takeSettings(taken, name, m_definitions.tree, m_compiled, users, diagnostics);
    return users;
  };
  m_evaluator.evaluate(usersWith(settings, m_diagnostics));
  // A number out of its range leaves what stood there before. All that is wrong besides has been told.
  Diagnostics toldBefore;
  std::vector<Setting> const taken = withinRanges(settings, m_definitions.tree, m_compiled, m_evaluator);
  ext::ConfigProfile const trial = storeProfile(m_store, name, m_definitions, usersWith(taken, toldBefore));
  apply(trial);
  checkSettings(settings, name, m_definitions.tree, m_compiled, m_evaluator, m_diagnostics);
  look();
  if (keep) {
    transaction.commit();
  } else {
    m_writer.restore(std::move(before));
    m_evaluator.evaluate(readProfileValues(base, m_definitions, m_compiled));
  }
}

// Results

void Workspace::produce() {
  kconfig::produce(m_states.root, collectOutput(m_definitions.tree, m_compiled, m_evaluator, m_prefix));
}

void Workspace::publishMessages() {
  plinth::Transaction transaction = m_model.beginTransaction();
  for (; m_published < m_diagnostics.entries().size(); ++m_published) {
    Diagnostic const& diagnostic = m_diagnostics.entries()[m_published];
    bool const error = diagnostic.severity == Severity::Error;
    runtime::MetaMessage const message = runtime::MetaMessage::create(m_model);
    message->setCode(error ? u"error" : u"warning");
    message->setSeverity(error ? 2 : 1);
    message->setText(toModel(diagnostic.message));
    message->setDetail(toModel(diagnostic.file + ":" + std::to_string(diagnostic.line)));
    m_states.root->getGlobalMessagesMutable()->add(message);
  }
  transaction.commit();
}

std::string Workspace::settingOf(SymbolId symbol, ShownValue const& value) const {
  Symbol const& row = m_definitions.tree.symbols[symbol];
  if (!value.written || row.kind == SymbolKind::Choice) {
    return {};
  }
  OutputItem item;
  item.type = row.type;
  item.name = row.name;
  item.text = value.text;
  item.value = value.text == "y" ? Tristate::Yes : value.text == "m" ? Tristate::Mod : Tristate::No;
  std::string line = formatSetting(m_prefix, item);
  line.resize(line.empty() ? 0 : line.size() - 1);
  return line;
}

}  // namespace kconfig
