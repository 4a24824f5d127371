// tessel-script: runs Lua on the classes of the configuration data model, from a file or at a prompt.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "Interpreter.hpp"
#include "Prompt.hpp"
#include "corvid/Host.hpp"
#include "plinth/diagnostics/Census.hpp"

// The library's entries for a host.
extern "C" void MLInitialize_tessel_config_datamodel();
extern "C" void MLTerminate_tessel_config_datamodel();

namespace {

constexpr int WRONG_USAGE = 2;

struct Options {
  std::string file;
  std::vector<std::string> arguments;
  std::vector<std::string> statements;
  std::string historyFile;
  bool interactive = false;
  bool census = false;
};

std::string defaultHistoryFile() {
  char const* const home = std::getenv("HOME");
  return home != nullptr ? std::string(home) + "/.tessel_script_history" : std::string();
}

bool prompt(luafront::Interpreter& interpreter, Options const& options) {
  if (isatty(STDIN_FILENO) != 0)
    return runPrompt(interpreter, *luafront::terminalLines(interpreter.state(), options.historyFile));
  luafront::StreamLines lines(std::cin);
  return runPrompt(interpreter, lines);
}

bool run(luafront::Interpreter& interpreter, Options const& options) {
  for (std::string const& statement : options.statements)
    if (!interpreter.runText(statement, "=(command line)")) return false;
  if (!options.file.empty() && !interpreter.runFile(options.file, options.arguments)) return false;
  if (options.interactive) return prompt(interpreter, options);
  if (!options.file.empty() || !options.statements.empty()) return true;
  return isatty(STDIN_FILENO) != 0 ? prompt(interpreter, options) : interpreter.runFile("-", {});
}

void defineOptions(CLI::App& app, Options& options) {
  app.add_option("file", options.file, "Lua file to run, - for standard input");
  app.add_option("arguments", options.arguments, "What the file finds in the table arg and as ...");
  app.add_option("-e,--execute", options.statements, "Statement to run before the file; may be repeated")
      ->allow_extra_args(false);
  app.add_flag("-i,--interactive", options.interactive, "Prompt after the file and the statements");
  app.add_flag("--census", options.census, "Fail if the run leaves objects, elements or models behind");
  app.add_option("--history", options.historyFile, "File that keeps the entries of the prompt; empty for none");
  app.set_version_flag("--version", TESSEL_VERSION);
  app.positionals_at_end();
  app.footer("The exit status is 0, 1 after an error of a script, and 2 for options that are not known.");
}

// What is there once the script has been closed, told on the standard error.
bool isNothingLeft() {
  plinth::Census const left = plinth::census();
  std::ptrdiff_t const objects = corvid::liveObjectCount();
  if (left.elements() == 0 && left.models == 0 && left.others == 0 && objects == 0) return true;
  std::cerr << "tessel-script: left behind: " << objects << " script objects, and\n" << left.text();
  return false;
}

bool runOnLibrary(Options const& options) {
  MLInitialize_tessel_config_datamodel();
  bool succeeded = false;
  {
    luafront::Interpreter interpreter(std::cout, std::cerr);
    succeeded = run(interpreter, options);
  }
  if (options.census && !isNothingLeft()) succeeded = false;
  MLTerminate_tessel_config_datamodel();
  return succeeded;
}

}  // namespace

int main(int argc, char** argv) try {
  Options options;
  options.historyFile = defaultHistoryFile();
  CLI::App app("Runs Lua on the classes of the configuration data model: a file, statements, or at a prompt.");
  defineOptions(app, options);
  try {
    app.parse(argc, argv);
  } catch (CLI::ParseError const& error) {
    return app.exit(error) == EXIT_SUCCESS ? EXIT_SUCCESS : WRONG_USAGE;
  }
  if (!options.arguments.empty() && options.arguments.front() == "--")
    options.arguments.erase(options.arguments.begin());
  return runOnLibrary(options) ? EXIT_SUCCESS : EXIT_FAILURE;
} catch (std::exception const& error) {
  std::cerr << "tessel-script: " << error.what() << '\n';
  return EXIT_FAILURE;
}
