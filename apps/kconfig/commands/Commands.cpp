#include "commands/Commands.hpp"

#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <iostream>
#include <stdexcept>

#include "checks/SettingChecks.hpp"
#include "loading/Vocabulary.hpp"
#include "writing/FileOutput.hpp"
#include "writing/Productions.hpp"

namespace kconfig {

namespace {

// Writes a production that has a file to go to; tells what went wrong.
bool writeProduction(runtime::ConfigurationState const& state, std::u16string_view production,
                     std::string const& file) {
  try {
    if (!file.empty()) {
      writeFile(file, scriptOf(state, production));
    }
    return true;
  } catch (OutputError const& error) {
    std::cerr << "tessel-kconfig: " << error.what() << '\n';
    return false;
  }
}

// Makes the productions and writes those that have a file to go to.
bool writeProductions(Run& run) {
  if (!run.hasInputs()) return true;
  Workspace& workspace = run.workspace();
  CommandOptions const& options = run.options();
  workspace.produce();
  runtime::ConfigurationState const& state = workspace.states().root;
  bool const written = writeProduction(state, key::configuration, options.configuration);
  return writeProduction(state, key::header, options.header) && written;
}

}  // namespace

Run::Run(CommandOptions options)
    : m_options(std::move(options)),
      m_surroundings(processSurroundings()),
      m_workspace(m_options.root, m_surroundings, m_progress) {
  bool const named = !m_options.profile.empty() || m_options.noProfile;
  m_profile = m_workspace.load(named ? m_options.profile : m_workspace.defaultProfile());
  m_workspace.apply(m_profile);
}

bool Run::hasInputs() const {
  // Not opened: a pipe has been read by now.
  auto const canBeRead = [](std::string const& file) {
    return ::access(file.c_str(), R_OK) == 0 && !std::filesystem::is_directory(file);
  };
  return canBeRead(m_options.root) && (m_options.profile.empty() || canBeRead(m_options.profile));
}

int Run::report() {
  m_workspace.publishMessages();
  Diagnostics const& diagnostics = m_workspace.diagnostics();
  for (Diagnostic const& diagnostic : diagnostics.entries()) {
    if (!m_options.quiet || diagnostic.severity == Severity::Error) {
      std::cerr << diagnostic.text() << '\n';
    }
  }
  return diagnostics.hasErrors() ? exitInputErrors : exitDone;
}

int runCheck(Run& run) {
  int const result = run.report();
  return printFindings(run.workspace()) ? result : exitInputErrors;
}

int runGenerate(Run& run) {
  bool const written = writeProductions(run);
  int const result = run.report();
  return written ? result : exitOutputFailed;
}

int runSummary(Run& run) {
  int const result = run.report();
  printSummary(run);
  return result;
}

int runTree(Run& run) {
  printTree(run.workspace(), run.options().all);
  return run.report();
}

int runShow(Run& run) {
  Workspace& workspace = run.workspace();
  std::string name = run.options().symbol;
  if (name.compare(0, workspace.prefix().size(), workspace.prefix()) == 0) {
    name.erase(0, workspace.prefix().size());
  }
  SymbolId const symbol = workspace.tree().symbols.find(name);
  if (symbol == noSymbol || !workspace.definitions().params[symbol]) {
    workspace.diagnostics().error(run.options().root, 0, unknownSymbol(workspace.tree().symbols, name));
    return run.report();
  }
  printSymbol(workspace, symbol);
  return run.report();
}

int runDiff(Run& run) {
  Workspace& workspace = run.workspace();
  ShownValues const before = workspace.writer().shown();
  workspace.apply(workspace.load(run.options().other));
  printDifferences(workspace, before, workspace.writer().shown());
  return run.report();
}

int runSet(Run& run) {
  Workspace& workspace = run.workspace();
  std::vector<Setting> settings;
  try {
    for (std::string const& text : run.options().settings) {
      settings.push_back(settingFrom(workspace, text));
    }
  } catch (std::invalid_argument const& error) {
    std::cerr << "tessel-kconfig: " << error.what() << '\n';
    return exitUsage;
  }
  ShownValues const before = workspace.writer().shown();
  bool written = true;
  auto const start = std::chrono::steady_clock::now();
  workspace.tryOut(run.profile(), settings, !run.options().dryRun, [&] {
    written = run.options().dryRun || writeProductions(run);
    printDifferences(workspace, before, workspace.writer().shown());
  });
  std::chrono::duration<double, std::milli> const took = std::chrono::steady_clock::now() - start;
  int result = run.report();
  if (run.options().dryRun) {
    std::cout << "evaluated again and rolled back in " << took.count() << " ms\n";
    std::size_t const left = workspace.writer().countDeviations();
    std::cout << (left == 0 ? "taken back: the state is as it was\n"
                            : "NOT taken back: " + std::to_string(left) + " parameters differ\n");
    result = left == 0 ? result : exitInputErrors;
  }
  return written ? result : exitOutputFailed;
}

Setting settingFrom(Workspace const& workspace, std::string const& text) {
  std::size_t const sign = text.find('=');
  if (sign == std::string::npos || sign == 0) {
    throw std::invalid_argument("'" + text + "' is not of the form SYMBOL=VALUE");
  }
  Setting setting{text.substr(0, sign), text.substr(sign + 1)};
  if (setting.symbol.compare(0, workspace.prefix().size(), workspace.prefix()) == 0) {
    setting.symbol.erase(0, workspace.prefix().size());
  }
  SymbolTable const& symbols = workspace.tree().symbols;
  SymbolId const symbol = symbols.find(setting.symbol);
  bool const quoted = !setting.value.empty() && setting.value.front() == '"';
  if (symbol != noSymbol && symbols[symbol].type == SymbolType::String && !quoted) {
    setting.value = quote(setting.value);
  }
  return setting;
}

}  // namespace kconfig
