#include "commands/Commands.hpp"

#include <chrono>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "loading/Vocabulary.hpp"
#include "writing/Productions.hpp"

namespace kconfig {

namespace {

// The old file stays as it is until the new one is complete.
bool writeFile(std::string const& name, std::string const& text) {
  std::string const temporary = name + ".new";
  std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
  file << text;
  file.close();
  if (!file || std::rename(temporary.c_str(), name.c_str()) != 0) {
    std::perror(("can't write " + name).c_str());
    std::remove(temporary.c_str());
    return false;
  }
  return true;
}

// Makes the productions and writes those that have a file to go to.
bool writeProductions(Workspace& workspace, CommandOptions const& options) {
  workspace.produce();
  runtime::ConfigurationState const& state = workspace.states().root;
  bool const written =
      options.configuration.empty() || writeFile(options.configuration, scriptOf(state, key::configuration));
  return (options.header.empty() || writeFile(options.header, scriptOf(state, key::header))) && written;
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
  bool const written = writeProductions(run.workspace(), run.options());
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
    workspace.diagnostics().error(run.options().root, 0, "there is no symbol '" + name + "'");
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
  std::vector<Workspace::Setting> settings;
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
    printDifferences(workspace, before, workspace.writer().shown());
    written = run.options().dryRun || writeProductions(workspace, run.options());
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

Workspace::Setting settingFrom(Workspace const& workspace, std::string const& text) {
  std::size_t const sign = text.find('=');
  if (sign == std::string::npos || sign == 0) {
    throw std::invalid_argument("'" + text + "' is not of the form SYMBOL=VALUE");
  }
  Workspace::Setting setting{text.substr(0, sign), text.substr(sign + 1)};
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
