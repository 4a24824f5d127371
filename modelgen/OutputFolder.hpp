// The folder that generated files are written to. A file whose text stays the same is not touched, so that whatever was
// built from it stays built; a file that was written once and is not made any more is deleted. Which files were written
// is kept in the folder itself, in one list for each model, so that several models can share a folder. One process at a
// time may write for a model.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace modelgen {

struct OutputFile {
  std::string path;  // relative to the folder, with slashes
  std::string text;
};

struct Difference {
  enum class Kind { missing, changed, stale };
  Kind kind;
  std::string path;
};

class OutputFolder {
 public:
  // The folder need not exist yet. `listName` tells this model's list from those of others.
  OutputFolder(std::filesystem::path folder, std::string const& listName);

  // What write() would change, by path. Reads only.
  std::vector<Difference> compare(std::vector<OutputFile> const& files) const;

  // Brings the folder up to date and gives what was changed. Each file appears at once in full: its text goes to a
  // temporary file first, which is then renamed. Raises std::runtime_error with the path in its text where the file
  // system refuses; the folder is then in between, and the next call mends it.
  std::vector<Difference> write(std::vector<OutputFile> const& files) const;

 private:
  std::vector<std::string> listed() const;
  void writeList(std::vector<std::string> const& paths) const;
  void remove(std::string const& path) const;

  std::filesystem::path m_folder;
  std::string m_list;
};

// Writes `text` to `file` by way of a temporary file, unless it holds that text already; makes the folder as needed.
// Raises std::runtime_error with the path in its text; the file is then as it was, and no temporary one stays.
void writeIfChanged(std::filesystem::path const& file, std::string const& text);

}  // namespace modelgen
