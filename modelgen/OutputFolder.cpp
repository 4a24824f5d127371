#include "modelgen/OutputFolder.hpp"

#include <algorithm>
#include <fstream>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace modelgen {
namespace {

namespace fs = std::filesystem;

std::optional<std::string> readFile(fs::path const& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return std::nullopt;
  std::ostringstream content;
  content << stream.rdbuf();
  return content.str();
}

}  // namespace

void writeIfChanged(fs::path const& file, std::string const& text) {
  if (readFile(file) == text) return;
  if (file.has_parent_path()) fs::create_directories(file.parent_path());
  fs::path temporary = file;
  temporary += ".new";
  try {
    std::ofstream stream(temporary, std::ios::binary | std::ios::trunc);
    stream << text;
    stream.close();
    if (!stream) throw std::runtime_error("cannot write " + temporary.string());
    fs::rename(temporary, file);
  } catch (...) {
    std::error_code ignored;
    fs::remove(temporary, ignored);
    throw;
  }
}

OutputFolder::OutputFolder(fs::path folder, std::string const& listName)
    : m_folder(std::move(folder)), m_list(".modelgen-" + listName + ".list") {}

std::vector<std::string> OutputFolder::listed() const {
  std::vector<std::string> result;
  std::istringstream stream(readFile(m_folder / m_list).value_or(""));
  for (std::string line; std::getline(stream, line);) {
    // Nothing outside the folder is ever deleted, whatever somebody wrote into the list.
    fs::path const path = fs::path(line).lexically_normal();
    if (!line.empty() && path.is_relative() && *path.begin() != "..") result.push_back(line);
  }
  return result;
}

void OutputFolder::writeList(std::vector<std::string> const& paths) const {
  std::string text;
  for (std::string const& each : paths) text += each + '\n';
  writeIfChanged(m_folder / m_list, text);
}

std::vector<Difference> OutputFolder::compare(std::vector<OutputFile> const& files) const {
  std::vector<Difference> result;
  std::set<std::string> made;
  for (OutputFile const& file : files) {
    made.insert(file.path);
    auto const present = readFile(m_folder / file.path);
    if (!present) {
      result.push_back({Difference::Kind::missing, file.path});
    } else if (*present != file.text) {
      result.push_back({Difference::Kind::changed, file.path});
    }
  }
  for (std::string const& path : listed()) {
    if (made.count(path) == 0 && fs::exists(m_folder / path)) result.push_back({Difference::Kind::stale, path});
  }
  std::sort(result.begin(), result.end(), [](Difference const& a, Difference const& b) { return a.path < b.path; });
  return result;
}

std::vector<Difference> OutputFolder::write(std::vector<OutputFile> const& files) const {
  std::vector<Difference> const result = compare(files);
  std::vector<std::string> made;
  for (OutputFile const& file : files) made.push_back(file.path);
  // While files are written the list names old and new ones, so that a run that was cut off leaves none behind.
  std::vector<std::string> both = listed();
  both.insert(both.end(), made.begin(), made.end());
  std::sort(both.begin(), both.end());
  both.erase(std::unique(both.begin(), both.end()), both.end());
  writeList(both);
  for (OutputFile const& file : files) writeIfChanged(m_folder / file.path, file.text);
  for (Difference const& each : result) {
    if (each.kind == Difference::Kind::stale) remove(each.path);
  }
  writeList(made);
  return result;
}

// Deletes the file, and the folders above it that are then empty.
void OutputFolder::remove(std::string const& path) const {
  fs::remove(m_folder / path);
  for (fs::path above = fs::path(path).parent_path(); !above.empty(); above = above.parent_path()) {
    std::error_code notEmpty;
    if (!fs::remove(m_folder / above, notEmpty) || notEmpty) return;
  }
}

}  // namespace modelgen
