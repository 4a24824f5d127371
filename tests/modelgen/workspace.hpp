// A folder of its own for one test, and runs of the generator in it. The folder goes with the object. One thread.
#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "modelgen/generator.hpp"

namespace modelgen::test {

struct Result {
  ExitStatus status;
  std::string out;
  std::string err;
};

Result generate(const Options& options);

std::string read(const std::filesystem::path& file);

class Workspace {
 public:
  Workspace();
  ~Workspace();
  Workspace(const Workspace&) = delete;
  Workspace& operator=(const Workspace&) = delete;

  std::filesystem::path path(const std::string& relative) const { return m_folder / relative; }
  void write(const std::string& relative, const std::string& text) const;
  void copy(const std::filesystem::path& file, const std::string& relative) const;

  // Text and time of change of every file below a folder.
  using Snapshot = std::map<std::string, std::pair<std::string, std::filesystem::file_time_type>>;
  Snapshot snapshot(const std::string& relative) const;

 private:
  std::filesystem::path m_folder;
};

// The tables of these tests: a good model of all schemes, and the model that it imports.
std::filesystem::path testTables();
// The good model with the templates of the generator, into `workspace`/out.
Options goodOptions(const Workspace& workspace);

}  // namespace modelgen::test
