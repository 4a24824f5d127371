#include "modelgen/YamlReader.hpp"

#include <charconv>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <utility>

#include "modelgen/Text.hpp"

namespace modelgen {
namespace {

Position positionOfMark(std::string const& file, YAML::Mark const& mark) {
  return mark.is_null() ? Position{file, 1, 1} : Position{file, mark.line + 1, mark.column + 1};
}

Position positionInText(std::string const& file, std::string const& text, std::size_t offset) {
  Position result{file, 1, 1};
  for (std::size_t i = 0; i < offset; ++i) {
    ++result.column;
    if (text[i] == '\n') result = {file, result.line + 1, 1};
  }
  return result;
}

}  // namespace

MapReader::MapReader(YAML::Node const& node, Position start, std::string what, Diagnostics& diagnostics)
    : m_node(node), m_start(std::move(start)), m_what(std::move(what)), m_diagnostics(&diagnostics) {
  if (!m_node.IsMap()) reportMissingRows(m_start, "this is not a map", m_what + ", written as key: value");
}

void MapReader::reportMissingRows(Position const& at, std::string const& wrong, std::string const& expected) {
  m_diagnostics->report(at, wrong, expected);
  m_whole = false;
}

Position MapReader::positionOf(YAML::Node const& node) const { return positionOfMark(m_start.file, node.Mark()); }

std::optional<MapReader::Entry> MapReader::find(std::string const& key) {
  m_known.insert(key);
  if (!m_node.IsMap()) return std::nullopt;
  for (auto const& pair : m_node) {
    if (!pair.first.IsScalar() || pair.first.Scalar() != key) continue;
    Position const keyAt = positionOf(pair.first);
    return Entry{keyAt, pair.second.IsNull() ? keyAt : positionOf(pair.second), pair.second};
  }
  return std::nullopt;
}

std::optional<Text> MapReader::scalar(Entry const& entry, std::string const& key) {
  if (entry.value.IsScalar()) return Text{entry.value.Scalar(), entry.valueAt};
  m_diagnostics->report(entry.valueAt, "'" + key + "' of " + m_what + " has no text",
                        "a text (in quotes where it is empty or reads as null)");
  return std::nullopt;
}

std::optional<Text> MapReader::text(std::string const& key) {
  auto const entry = find(key);
  return entry ? scalar(*entry, key) : std::nullopt;
}

Text MapReader::requiredText(std::string const& key) {
  auto const entry = find(key);
  if (!entry) {
    if (m_node.IsMap()) m_diagnostics->report(m_start, m_what + " has no '" + key + "'", "the key '" + key + "'");
    return {"", m_start};
  }
  auto const found = scalar(*entry, key);
  if (!found) return {"", m_start};
  if (found->value.find_first_not_of(" \t\r\n") == std::string::npos) {
    m_diagnostics->report(found->at, "'" + key + "' of " + m_what + " is empty", "a text");
  } else if (firstBadCharacter(found->value) != found->value.size()) {
    m_diagnostics->report(found->at, "'" + key + "' of " + m_what + " holds a control character",
                          "none but tabs and line ends");
  }
  return *found;
}

std::optional<Flag> MapReader::flag(std::string const& key) {
  auto const found = text(key);
  if (!found) return std::nullopt;
  if (found->value == "true" || found->value == "false") return Flag{found->value == "true", found->at};
  m_diagnostics->report(found->at, "'" + key + "' is '" + found->value + "'", "true or false");
  return std::nullopt;
}

bool MapReader::flagOr(std::string const& key, bool absent) {
  auto const found = flag(key);
  return found ? found->value : absent;
}

std::optional<Located<std::int32_t>> MapReader::requiredInteger(std::string const& key) {
  Text const found = requiredText(key);
  if (found.value.empty()) return std::nullopt;
  char const* const end = found.value.data() + found.value.size();
  std::int32_t number = 0;
  auto const read = std::from_chars(found.value.data(), end, number);
  if (read.ec == std::errc() && read.ptr == end) return Located<std::int32_t>{number, found.at};
  m_diagnostics->report(found.at, "'" + key + "' is '" + found.value + "'", "a whole number of 32 bits");
  return std::nullopt;
}

std::vector<Text> MapReader::textList(std::string const& key) {
  std::vector<Text> result;
  auto const entry = find(key);
  if (!entry) return result;
  if (!entry->value.IsSequence()) {
    m_diagnostics->report(entry->valueAt, "'" + key + "' of " + m_what + " is not a list", "a list of names");
    return result;
  }
  for (YAML::Node const& node : entry->value) {
    if (node.IsScalar()) {
      result.push_back({node.Scalar(), positionOf(node)});
    } else {
      m_diagnostics->report(positionOf(node), "an entry of '" + key + "' is not a text", "a name");
    }
  }
  return result;
}

std::vector<std::pair<Text, Text>> MapReader::textMap(std::string const& key) {
  std::vector<std::pair<Text, Text>> result;
  auto const entry = find(key);
  if (!entry) return result;
  if (!entry->value.IsMap()) {
    m_diagnostics->report(entry->valueAt, "'" + key + "' of " + m_what + " is not a map", "a map of names");
    return result;
  }
  std::set<std::string> seen;
  for (auto const& pair : entry->value) {
    Position const at = positionOf(pair.first);
    if (!pair.first.IsScalar() || !pair.second.IsScalar()) {
      m_diagnostics->report(at, "an entry of '" + key + "' is not a pair of texts", "name: name");
    } else if (!seen.insert(pair.first.Scalar()).second) {
      m_diagnostics->report(at, "the key '" + pair.first.Scalar() + "' stands twice in '" + key + "' of " + m_what,
                            "it once");
    } else {
      result.push_back({{pair.first.Scalar(), at}, {pair.second.Scalar(), positionOf(pair.second)}});
    }
  }
  return result;
}

std::vector<MapReader> MapReader::rows(std::string const& key, std::string const& what) {
  std::vector<MapReader> result;
  auto const entry = find(key);
  if (!entry) return result;
  if (!entry->value.IsSequence()) {
    reportMissingRows(entry->valueAt, "'" + key + "' of " + m_what + " is not a list",
                      "a list in which each entry is " + what);
    return result;
  }
  for (YAML::Node const& node : entry->value) result.emplace_back(node, positionOf(node), what, *m_diagnostics);
  return result;
}

std::vector<MapReader> MapReader::requiredRows(std::string const& key, std::string const& what) {
  auto const entry = find(key);
  if (m_node.IsMap() && (!entry || (entry->value.IsSequence() && entry->value.size() == 0))) {
    m_diagnostics->report(entry ? entry->valueAt : m_start, m_what + " has no '" + key + "'",
                          "a list with at least one entry");
  }
  return rows(key, what);
}

void MapReader::refuseOtherKeys() {
  if (!m_node.IsMap()) return;
  std::set<std::string> seen;
  for (auto const& pair : m_node) {
    std::string const key = pair.first.IsScalar() ? pair.first.Scalar() : "?";
    if (m_known.count(key) == 0) {
      reportMissingRows(positionOf(pair.first), "unknown key '" + key + "' in " + m_what,
                        alternatives({m_known.begin(), m_known.end()}));
    } else if (!seen.insert(key).second) {
      reportMissingRows(positionOf(pair.first), "the key '" + key + "' stands twice in " + m_what, "it once");
    }
  }
}

std::optional<YAML::Node> loadYaml(std::string const& file, Position const& namedAt, Diagnostics& diagnostics) {
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream content;
  if (!std::filesystem::is_regular_file(file) || !stream || (stream.peek() != EOF && !(content << stream.rdbuf()))) {
    diagnostics.report(namedAt, "cannot read the file " + file, "a readable file");
    return std::nullopt;
  }
  std::string const text = content.str();
  if (std::size_t const bad = firstBadCharacter(text); bad != text.size()) {
    Position const at = positionInText(file, text, bad);
    diagnostics.report(at, "this byte is no text", "UTF-8 without control characters");
    return std::nullopt;
  }
  try {
    std::vector<YAML::Node> const documents = YAML::LoadAll(text);
    if (documents.size() < 2) return documents.empty() ? YAML::Node() : documents.front();
    diagnostics.report(positionOfMark(file, documents[1].Mark()), "a second document begins here", "one in each file");
  } catch (YAML::Exception const& error) {
    diagnostics.report(positionOfMark(file, error.mark), "not well-formed: " + error.msg, "YAML");
  }
  return std::nullopt;
}

}  // namespace modelgen
