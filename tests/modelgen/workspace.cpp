#include "workspace.hpp"

#include <stdlib.h>

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace modelgen::test {

namespace fs = std::filesystem;

Result generate(Options const& options) {
  std::ostringstream out;
  std::ostringstream err;
  ExitStatus const status = run(options, out, err);
  return {status, out.str(), err.str()};
}

std::string read(fs::path const& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw std::runtime_error("cannot read " + file.string());
  std::ostringstream content;
  content << stream.rdbuf();
  return content.str();
}

Workspace::Workspace() {
  std::string name = (fs::temp_directory_path() / "modelgen-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("cannot make " + name);
  m_folder = name;
}

Workspace::~Workspace() {
  std::error_code ignored;
  fs::remove_all(m_folder, ignored);
}

void Workspace::write(std::string const& relative, std::string const& text) const {
  fs::create_directories(path(relative).parent_path());
  std::ofstream(path(relative), std::ios::binary) << text;
}

void Workspace::copy(fs::path const& file, std::string const& relative) const { write(relative, read(file)); }

Workspace::Snapshot Workspace::snapshot(std::string const& relative) const {
  Snapshot result;
  if (!fs::exists(path(relative))) return result;
  for (auto const& each : fs::recursive_directory_iterator(path(relative))) {
    if (!each.is_regular_file()) continue;
    result[each.path().string()] = {read(each.path()), each.last_write_time()};
  }
  return result;
}

fs::path testTables() { return fs::path(MODELGEN_TEST_DIR) / "tables"; }

Options goodOptions(Workspace const& workspace) {
  Options options;
  options.model = (testTables() / "good/model.yaml").string();
  options.imports = {(testTables() / "base/model.yaml").string()};
  options.templates = MODELGEN_TEMPLATES;
  options.out = workspace.path("out").string();
  return options;
}

}  // namespace modelgen::test
