// What every command works on: a model that holds the definitions of a tree, the state of one configuration and a store
// of profiles, and the compact form of the definitions on which values are worked out. It owns all of it and stays
// where it was made, since its parts refer to each other. Used from one thread at a time.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "checks/SettingChecks.hpp"
#include "commands/Progress.hpp"
#include "evaluation/Evaluator.hpp"
#include "language/Diagnostics.hpp"
#include "profiles/ProfileStore.hpp"
#include "reader/TreeReader.hpp"
#include "state/StateWriter.hpp"
#include "writing/OutputItems.hpp"

namespace kconfig {

class Workspace {
 public:
  // Reads the tree whose first file is root, writes it to a new model and works out all values without a profile. What
  // is wrong with the tree goes to diagnostics().
  Workspace(std::string const& root, Surroundings const& surroundings, Progress& progress);
  Workspace(Workspace const&) = delete;
  Workspace& operator=(Workspace const&) = delete;

  // Reads a saved configuration into a profile of the store; an empty one if the file can't be read.
  ext::ConfigProfile load(std::string const& file);
  // The saved configuration that the tree itself names ("option defconfig_list"), empty if it names none that is there.
  std::string defaultProfile();
  // Makes the profile the active one, works out all values and writes them to the state, in one transaction.
  void apply(ext::ConfigProfile const& profile);
  // Adds settings to what a profile asks for and applies that as a new profile, calls look, and, unless keep, takes all
  // of it back. An error in diagnostics() tells of each setting that doesn't come to what it asks for, and why.
  void tryOut(ext::ConfigProfile const& base, std::vector<Setting> const& settings, bool keep,
              std::function<void()> const& look);
  // Writes the productions, whose scripts are the files.
  void produce();
  // Puts the diagnostics that are not there yet into the state's global messages.
  void publishMessages();

  plinth::Model const& model() const { return m_model; }
  schema::SchemaData const& schema() const { return m_schema; }
  States const& states() const { return m_states; }
  StateWriter const& writer() const { return m_writer; }
  MenuTree const& tree() const { return m_definitions.tree; }
  Definitions const& definitions() const { return m_definitions; }
  CompiledTree const& compiled() const { return m_compiled; }
  Evaluator& values() { return m_evaluator; }
  Diagnostics& diagnostics() { return m_diagnostics; }
  // What stands in front of every symbol in a file: "CONFIG_", or what the environment variable of that name says.
  std::string const& prefix() const { return m_prefix; }
  // The line that the configuration has for a symbol, by what the state says of it; empty for none.
  std::string settingOf(SymbolId symbol, ShownValue const& value) const;

 private:
  States buildStates();
  void evaluate(UserValues const& users, std::string_view profileName);
  void activate(ext::ConfigProfile const& profile);

  Diagnostics m_diagnostics;
  Surroundings const& m_surroundings;
  Progress& m_progress;
  std::string m_prefix;
  plinth::Model m_model;
  // Open while the constructor works: what comes into being inside it needs no old values.
  std::optional<plinth::Transaction> m_loading;
  ReadTree m_source;  // its texts until the state has them
  schema::SchemaData m_schema;
  Definitions m_definitions;
  CompiledTree m_compiled;
  EvaluationOrder m_order;
  Evaluator m_evaluator;
  States m_states;
  ext::ConfigStore m_store;
  StateWriter m_writer;
  std::size_t m_published = 0;
};

}  // namespace kconfig
