// Feeds arbitrary text to the configuration tool: a tree, behind a line "====" a second file that the tree may source
// as "other", and behind another such line a saved configuration. Whatever the text is, everything up to the generated
// files has to end without a crash and within the limits of time and memory, and leave a sound model. Each file under
// regressions/ is text that once did harm, or that reaches far into the program.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <plinth/diagnostics/Verify.hpp>
#include <string>
#include <vector>

#include "commands/Workspace.hpp"

namespace {

std::vector<std::string> split(std::string const& input) {
  std::string const separator = "\n====\n";
  std::vector<std::string> parts;
  std::size_t start = 0;
  for (std::size_t at = input.find(separator); at != std::string::npos; at = input.find(separator, start)) {
    parts.push_back(input.substr(start, at - start) + "\n");
    start = at + separator.size();
  }
  parts.push_back(input.substr(start));
  parts.resize(3);
  return parts;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  using namespace kconfig;
  std::vector<std::string> const parts = split(std::string(data, data + size));
  Surroundings surroundings;
  surroundings.variable = [](std::string const& name) {
    return name == "PLACE" ? std::optional<std::string>("other") : std::nullopt;
  };
  surroundings.file = [&parts](std::string const& path, std::string& problem) -> std::optional<std::string> {
    problem = "there is no such file";
    std::vector<std::string> const names{"Kconfig", "other", "profile"};
    for (std::size_t at = 0; at < names.size(); ++at) {
      if (path == names[at]) {
        return parts[at];
      }
    }
    return std::nullopt;
  };
  Progress progress;
  Workspace workspace("Kconfig", surroundings, progress);
  workspace.apply(workspace.load("profile"));
  workspace.produce();
  workspace.publishMessages();
  if (workspace.writer().countDeviations() != 0 || !plinth::verify(workspace.model()).empty()) {
    std::abort();
  }
  return 0;
}
