// The demonstration: every command in turn on the small tree that comes with the program.
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <stdexcept>

#include "commands/Commands.hpp"
#include "loading/Vocabulary.hpp"
#include "writing/Productions.hpp"

namespace kconfig {

namespace {

void title(char const* text) { std::cout << "\n== " << text << "\n"; }

}  // namespace

void enterDemo() {
  if (chdir(KCONFIG_DEMO) != 0) {
    throw std::runtime_error("the demonstration's tree is not in " KCONFIG_DEMO);
  }
  // The tree names its edition after this variable.
  setenv("WEATHER_EDITION", "2", 0);
}

int runDemo(Run& run) {
  Workspace& workspace = run.workspace();
  std::cout << "tessel-kconfig on its small tree, " KCONFIG_DEMO "/Kconfig; --help lists the commands.\n";
  title("tree: what is shown, with values; * where the profile says so");
  printTree(workspace, false);
  title("show TEMPERATURE");
  printSymbol(workspace, workspace.tree().symbols.find("TEMPERATURE"));
  title("set READING_PERIOD=300 RADIO=y --dry-run: what would change");
  ShownValues const before = workspace.writer().shown();
  auto const show = [&] { printDifferences(workspace, before, workspace.writer().shown()); };
  workspace.tryOut(run.profile(), {{"READING_PERIOD", "300"}, {"RADIO", "y"}}, false, show);
  std::cout << (workspace.writer().countDeviations() == 0 ? "taken back\n" : "NOT taken back\n");
  title("diff profiles/garden.defconfig profiles/roof.defconfig");
  workspace.apply(workspace.load("profiles/roof.defconfig"));
  show();
  title("generate: the header of the roof");
  workspace.produce();
  std::cout << scriptOf(workspace.states().root, key::header);
  title("check: the model's own verification");
  bool const sound = printFindings(workspace);
  title("summary");
  printSummary(run);
  int const result = run.report();
  return sound ? result : exitInputErrors;
}

}  // namespace kconfig
