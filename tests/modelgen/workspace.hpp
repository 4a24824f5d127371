// A folder of its own for one test, and runs of the generator in it. The folder goes with the object. One thread.
#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "modelgen/Generator.hpp"

namespace modelgen::test {

struct Result {
  ExitStatus status;
  std::string out;
  std::string err;
};

Result generate(Options const& options);

std::string read(std::filesystem::path const& file);

class Workspace {
 public:
  Workspace();
  ~Workspace();
  Workspace(Workspace const&) = delete;
  Workspace& operator=(Workspace const&) = delete;

  std::filesystem::path path(std::string const& relative) const { return m_folder / relative; }
  void write(std::string const& relative, std::string const& text) const;
  void copy(std::filesystem::path const& file, std::string const& relative) const;

  // Text and time of change of every file below a folder.
  using Snapshot = std::map<std::string, std::pair<std::string, std::filesystem::file_time_type>>;
  Snapshot snapshot(std::string const& relative) const;

 private:
  std::filesystem::path m_folder;
};

// The tables of these tests: a good model of all schemes, and the model that it imports.
std::filesystem::path testTables();
// The good model with the templates of the generator, into `workspace`/out.
Options goodOptions(Workspace const& workspace);

}  // namespace modelgen::test
