#include "reader/TreeReader.hpp"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <unordered_map>
#include <vector>

#include "reader/DefinitionBuilder.hpp"
#include "reader/FileParser.hpp"

namespace kconfig {

namespace {

// One reading: the files that are open inside each other, and the texts of those read before.
class Reading {
 public:
  Reading(plinth::Model const& model, Surroundings const& surroundings, Diagnostics& diagnostics)
      : m_builder(model, surroundings, diagnostics), m_surroundings(surroundings), m_diagnostics(diagnostics) {}

  ReadTree readRoot(std::string const& path);

 private:
  static constexpr std::size_t deepestFile = 100;

  void parse(std::string_view name, std::string_view text, Position from);
  void source(std::string_view name, Position from);
  std::optional<std::string_view> textOf(std::string const& name, std::string& problem);

  DefinitionBuilder m_builder;
  Surroundings const& m_surroundings;
  Diagnostics& m_diagnostics;
  std::vector<std::string> m_open;
  std::unordered_map<std::string, std::string_view> m_texts;
};

ReadTree Reading::readRoot(std::string const& path) {
  std::string problem;
  std::optional<std::string_view> const text = textOf(path, problem);
  if (!text) {
    m_diagnostics.error(path, 0, "the file can't be read: " + problem);
  }
  parse(path, text.value_or(""), {});
  return m_builder.finish();
}

void Reading::parse(std::string_view name, std::string_view text, Position from) {
  std::uint32_t const file = m_builder.addFile(name, from);
  m_open.emplace_back(name);
  FileParser(m_builder, file, text, [this](std::string_view inner, Position position) {
    source(inner, position);
  }).parse();
  m_open.pop_back();
}

void Reading::source(std::string_view name, Position from) {
  std::string const expanded = m_builder.expand(name);
  std::string const shown = "'" + expanded + "'" + (expanded == name ? "" : " ('" + std::string(name) + "')");
  for (std::string const& open : m_open) {
    if (open == expanded) {
      m_builder.error(from, "the file " + shown + " sources itself, directly or through others");
      return;
    }
  }
  if (m_open.size() == deepestFile) {
    m_builder.error(from, "files source each other too deeply, " + shown + " is left out");
    return;
  }
  std::string problem;
  std::optional<std::string_view> const text = textOf(expanded, problem);
  if (!text) {
    m_builder.error(from, "the file " + shown + " can't be read: " + problem);
    return;
  }
  parse(expanded, *text, from);
}

std::optional<std::string_view> Reading::textOf(std::string const& name, std::string& problem) {
  auto const known = m_texts.find(name);
  if (known != m_texts.end()) {
    return known->second;
  }
  std::optional<std::string> text = m_surroundings.file(name, problem);
  std::optional<std::string> const sourceTree = m_surroundings.variable("srctree");
  if (!text && sourceTree && !name.empty() && name.front() != '/') {
    std::string other;
    text = m_surroundings.file(*sourceTree + "/" + name, other);
  }
  if (!text) {
    return std::nullopt;
  }
  return m_texts.emplace(name, m_builder.words().texts.adopt(std::move(*text))).first->second;
}

}  // namespace

Surroundings processSurroundings() {
  auto const variable = [](std::string const& name) -> std::optional<std::string> {
    char const* value = std::getenv(name.c_str());
    return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
  };
  return {variable, readFile};
}

std::optional<std::string> readFile(std::string const& path, std::string& problem) {
  // A pipe is not opened: that could wait for ever.
  std::error_code error;
  std::filesystem::file_status const status = std::filesystem::status(path, error);
  if (!error && !std::filesystem::is_regular_file(status)) {
    problem = "it is not a regular file";
    return std::nullopt;
  }
  std::ifstream file(path, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(file), {}};
  if (error || !file.is_open() || file.bad()) {
    problem = error ? error.message() : std::strerror(errno);
    return std::nullopt;
  }
  return text;
}

ReadTree readTree(std::string const& rootPath, Surroundings const& surroundings, Diagnostics& diagnostics,
                  plinth::Model const& model) {
  return Reading(model, surroundings, diagnostics).readRoot(rootPath);
}

}  // namespace kconfig
