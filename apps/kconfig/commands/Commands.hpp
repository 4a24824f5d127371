// The commands of the program. Each prints to standard output, tells what is wrong on standard error, and gives the
// exit code of the program.
#pragma once

#include <string>
#include <vector>

#include "commands/Workspace.hpp"

namespace kconfig {

enum ExitCode : int {
  exitDone = 0,
  exitInputErrors = 1,  // something was wrong with the input, or a setting has no effect; the rest was done
  exitUsage = 2,        // the command line makes no sense
  exitOutputFailed = 3  // a file or standard output could not be written
};

struct CommandOptions {
  std::string root = "Kconfig";
  std::string profile;                // empty: the one that the tree names, if any
  bool noProfile = false;             // nothing but what the tree says
  bool quiet = false;                 // tell errors only
  std::string configuration;          // of generate and set: the files to write, empty for not
  std::string header;                 // of generate
  bool all = false;                   // of tree: also what is hidden
  std::string symbol;                 // of show
  std::vector<std::string> settings;  // of set: NAME=VALUE
  bool dryRun = false;                // of set
  std::string other;                  // of diff: the second profile
};

// A workspace with the profile that the options ask for applied.
class Run {
 public:
  explicit Run(CommandOptions options);

  CommandOptions const& options() const { return m_options; }
  Workspace& workspace() { return m_workspace; }
  Progress const& progress() const { return m_progress; }
  ext::ConfigProfile const& profile() const { return m_profile; }
  // Whether the tree, and the profile where one was named, can be read: if not, nothing is written in their place.
  bool hasInputs() const;
  // Tells what is wrong and gives the exit code.
  int report();

 private:
  CommandOptions m_options;
  Surroundings m_surroundings;
  Progress m_progress;
  Workspace m_workspace;
  ext::ConfigProfile m_profile;
};

int runCheck(Run& run);
// Goes to the folder of the demonstration's tree; to be called before its run is made.
void enterDemo();
int runDemo(Run& run);
int runDiff(Run& run);
int runGenerate(Run& run);
int runSet(Run& run);
int runShow(Run& run);
int runSummary(Run& run);
int runTree(Run& run);

// What the commands print, for those that print several. print...() needs an applied profile.
void printSummary(Run& run);
void printTree(Workspace const& workspace, bool all);
void printSymbol(Workspace& workspace, SymbolId symbol);
// The lines of the configuration that differ: "-" before, "+" after.
void printDifferences(Workspace const& workspace, ShownValues const& before, ShownValues const& after);
// What verify finds, a line each; true if that is nothing.
bool printFindings(Workspace const& workspace);
// Puts NAME=VALUE into the form of a profile, strings into quotes. Raises std::invalid_argument without a "=".
Setting settingFrom(Workspace const& workspace, std::string const& text);

}  // namespace kconfig
