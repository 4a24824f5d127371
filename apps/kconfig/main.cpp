// tessel-kconfig: reads a Kconfig tree into a model, completes a saved configuration by its rules, shows it and
// generates files from it.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <iostream>

#include "commands/Commands.hpp"
#include "language/Nearest.hpp"

namespace {

constexpr char const* exitCodes =
    "Without a command it shows what it does on a small tree of its own.\n"
    "Exit codes: 0 done; 1 the input has errors or a setting has no effect, what could be done was done; 2 wrong "
    "usage; "
    "3 a file or standard output could not be written.";

using Command = int (*)(kconfig::Run&);

// Runs a command and ends the process with its code. The model is not taken down first: the system takes its memory
// back at once, element by element it would last as long as a short command.
[[noreturn]] void finish(Command command, kconfig::CommandOptions const& options) {
  kconfig::Run run(options);
  int const code = command(run);
  std::cout.flush();
  std::_Exit(code);
}

// The command line: fills options and finds the command that it asks for.
bool namesSameFile(std::string const& left, std::string const& right) {
  std::error_code ignored;
  auto const resolved = [&](std::string const& file) {
    return std::filesystem::weakly_canonical(std::filesystem::absolute(file), ignored);
  };
  return !left.empty() && !right.empty() && resolved(left) == resolved(right);
}

class CommandLine {
 public:
  CommandLine() {
    m_app.footer(exitCodes);
    m_app.require_subcommand(0, 1);
    m_app.set_version_flag("--version", KCONFIG_VERSION);
    add("check", "look for faults in the tree, the profile and the model", kconfig::runCheck);
    CLI::App& generate =
        add("generate", "complete the profile and write files from it, one at least", kconfig::runGenerate);
    generate.add_option("-o,--output", m_options.configuration, "write the completed configuration here");
    generate.add_option("-H,--header", m_options.header, "write a C header here");
    generate.final_callback([this] {
      if (m_options.configuration.empty() && m_options.header.empty()) {
        throw CLI::RequiredError("--output or --header");
      }
      if (namesSameFile(m_options.configuration, m_options.header)) {
        throw CLI::ValidationError("--output and --header name the same file");
      }
    });
    add("summary", "count what is in the tree and tell time and memory", kconfig::runSummary);
    CLI::App& tree = add("tree", "print the menu with its values", kconfig::runTree);
    tree.add_flag("-a,--all", m_options.all, "also what is hidden");
    CLI::App& show = add("show", "tell all about a symbol, and where its value comes from", kconfig::runShow);
    show.add_option("SYMBOL", m_options.symbol, "its name, with or without the prefix")->required();
    addDiff();
    addSet();
  }

  int run(int argc, char** argv) {
    if (argc > 1 && argv[1][0] != '-' && !isCommand(argv[1])) {
      return refuse(argv[1]);
    }
    try {
      m_app.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
      bool const isAnswered = m_app.exit(error) == 0;
      std::cout.flush();  // a full disk is told here
      return isAnswered ? kconfig::exitDone : kconfig::exitUsage;
    }
    for (auto const& [app, command] : m_commands) {
      if (app->parsed()) {
        finish(command, m_options);
      }
    }
    kconfig::enterDemo();
    finish(kconfig::runDemo, m_options);
  }

 private:
  CLI::App& add(char const* name, char const* description, Command command, bool takesProfile = true) {
    CLI::App& app = *m_app.add_subcommand(name, description);
    m_commands.emplace_back(&app, command);
    app.add_option("-k,--kconfig", m_options.root, "first file of the tree")->capture_default_str();
    if (takesProfile) {
      CLI::Option* named = app.add_option("-p,--profile", m_options.profile,
                                          "saved configuration to start from; else the one that the tree names");
      app.add_flag("-n,--no-profile", m_options.noProfile, "start from nothing but the tree")->excludes(named);
    }
    app.add_flag("-q,--quiet", m_options.quiet, "tell errors only, no warnings");
    return app;
  }

  void addDiff() {
    CLI::App& diff = add("diff", "complete two profiles and compare the results", kconfig::runDiff, false);
    diff.add_option("PROFILE", m_options.profile, "saved configuration whose lines are printed with -")->required();
    diff.add_option("OTHER", m_options.other, "saved configuration whose lines are printed with +")->required();
  }

  void addSet() {
    CLI::App& set = add("set", "change values and print what follows, to write it or to take it back", kconfig::runSet);
    set.add_option("SETTINGS", m_options.settings, "SYMBOL=VALUE, any number of them")->required();
    CLI::Option* dry = set.add_flag("-d,--dry-run", m_options.dryRun, "take all of it back");
    set.add_option("-o,--output", m_options.configuration, "write the completed configuration here")->excludes(dry);
    set.final_callback([this] {
      if (!m_options.dryRun && m_options.configuration.empty()) {
        throw CLI::RequiredError("--dry-run or --output");
      }
    });
  }

  bool isCommand(std::string_view name) const {
    return std::any_of(m_commands.begin(), m_commands.end(),
                       [name](auto const& each) { return each.first->get_name() == name; });
  }

  int refuse(std::string const& name) const {
    kconfig::Nearest nearest(name);
    std::string all;
    for (auto const& [app, command] : m_commands) {
      nearest.consider(app->get_name());
      all += (all.empty() ? "" : ", ") + app->get_name();
    }
    std::string const question = nearest.question();
    std::cerr << "tessel-kconfig: there is no command '" << name << "'"
              << (question.empty() ? "; the commands are " + all : question) << '\n';
    return kconfig::exitUsage;
  }

  CLI::App m_app{"Completes configurations by the rules of a Kconfig tree.", "tessel-kconfig"};
  std::vector<std::pair<CLI::App*, Command>> m_commands;
  kconfig::CommandOptions m_options;
};

}  // namespace

int main(int argc, char** argv) {
  std::cout.exceptions(std::ios::badbit);
  try {
    return CommandLine().run(argc, argv);
  } catch (std::ios_base::failure const&) {
    int const reason = errno;
    std::cout.exceptions(std::ios::goodbit);  // the end of the program flushes once more
    std::cerr << "tessel-kconfig: can't write to standard output: " << std::strerror(reason) << '\n';
    return kconfig::exitOutputFailed;
  } catch (std::exception const& error) {
    std::cerr << "tessel-kconfig: " << error.what() << '\n';
    return kconfig::exitInputErrors;
  }
}
