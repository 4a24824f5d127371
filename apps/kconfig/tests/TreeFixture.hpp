// Trees and profiles from text, for tests: files in memory, an environment of one's own, and the whole way from the
// text to the completed configuration.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "commands/Workspace.hpp"
#include "loading/Vocabulary.hpp"
#include "reader/TreeReader.hpp"
#include "writing/Productions.hpp"

namespace kconfig::test {

struct Input {
  std::map<std::string, std::string> files;  // "Kconfig" is the first
  std::map<std::string, std::string> variables = {};
  std::string profile = "";
};

inline Surroundings surroundingsOf(Input const& input) {
  Surroundings surroundings;
  surroundings.variable = [&input](std::string const& name) {
    auto const found = input.variables.find(name);
    return found != input.variables.end() ? std::optional<std::string>(found->second) : std::nullopt;
  };
  surroundings.file = [&input](std::string const& path, std::string& problem) {
    auto const found = input.files.find(path);
    problem = "no such file";
    return found != input.files.end() ? std::optional<std::string>(found->second) : std::nullopt;
  };
  return surroundings;
}

inline std::vector<std::string> textsOf(Diagnostics const& diagnostics) {
  std::vector<std::string> texts;
  for (Diagnostic const& diagnostic : diagnostics.entries()) {
    texts.push_back(diagnostic.text());
  }
  return texts;
}

struct Completed {
  std::string configuration;
  std::string header;
  std::vector<std::string> messages;
};

// A workspace on texts in memory, with the input's profile applied as "profile".
class Bench {
 public:
  explicit Bench(Input input) : m_input(withProfile(std::move(input))), m_surroundings(surroundingsOf(m_input)) {
    profile = workspace.load("profile");
    workspace.apply(profile);
  }

 private:
  static Input withProfile(Input input) {
    input.files["profile"] = input.profile;
    return input;
  }

  Input m_input;
  Surroundings m_surroundings;
  Progress m_progress;

 public:
  Workspace workspace{"Kconfig", m_surroundings, m_progress};
  ext::ConfigProfile profile;
};

inline Completed complete(Input const& input) {
  Bench bench(input);
  bench.workspace.produce();
  runtime::ConfigurationState const& state = bench.workspace.states().root;
  return {scriptOf(state, key::configuration), scriptOf(state, key::header), textsOf(bench.workspace.diagnostics())};
}

// Only the lines that set or unset a symbol, without the prefix.
inline std::vector<std::string> settingsOf(std::string const& configuration) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  for (std::size_t end = configuration.find('\n'); end != std::string::npos; end = configuration.find('\n', start)) {
    std::string const line = configuration.substr(start, end - start);
    start = end + 1;
    std::size_t const prefix = line.find("CONFIG_");
    if (prefix == 0) {
      lines.push_back(line.substr(7));
    } else if (prefix == 2) {
      lines.push_back(line.substr(9, line.find(' ', 9) - 9) + " unset");
    }
  }
  return lines;
}

}  // namespace kconfig::test
