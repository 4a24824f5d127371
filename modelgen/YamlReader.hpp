// Reads one YAML map key by key and remembers which keys were asked for, so that a row's reader is at the same time the
// list of the keys that a row may have. Every departure from the expected form is reported with its position.
#pragma once

#include <yaml-cpp/yaml.h>

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "modelgen/Diagnostic.hpp"
#include "modelgen/Tables.hpp"

namespace modelgen {

class MapReader {
 public:
  // `what` names the row in messages, with its article: "a class". `node` need not be a map; that is reported, and all
  // keys then read as absent.
  MapReader(YAML::Node const& node, Position start, std::string what, Diagnostics& diagnostics);

  // An absent key gives nothing; a key without a text is reported and gives nothing.
  std::optional<Text> text(std::string const& key);
  // Absent or empty is reported, and the result is then the empty text at the row's own position; so is a control
  // character, which would end a line of generated code.
  Text requiredText(std::string const& key);
  std::optional<Flag> flag(std::string const& key);
  bool flagOr(std::string const& key, bool absent);
  std::optional<Located<std::int32_t>> requiredInteger(std::string const& key);
  std::vector<Text> textList(std::string const& key);
  std::vector<std::pair<Text, Text>> textMap(std::string const& key);

  // One reader for each entry of a list of maps; `what` names an entry.
  std::vector<MapReader> rows(std::string const& key, std::string const& what);
  // The same; an absent or empty list is reported.
  std::vector<MapReader> requiredRows(std::string const& key, std::string const& what);

  // To be called after the last read: reports each key that nobody asked for, and each key given twice.
  void refuseOtherKeys();

  // False once it was reported that this is no map, that a list is none, or that a key is unknown or stands twice: rows
  // that were meant to be here are then missing.
  bool isWhole() const { return m_whole; }

  Position const& start() const { return m_start; }

 private:
  struct Entry {
    Position keyAt;
    Position valueAt;
    YAML::Node value;
  };

  std::optional<Entry> find(std::string const& key);
  Position positionOf(YAML::Node const& node) const;
  void reportMissingRows(Position const& at, std::string const& wrong, std::string const& expected);
  std::optional<Text> scalar(Entry const& entry, std::string const& key);

  YAML::Node m_node;
  Position m_start;
  std::string m_what;
  Diagnostics* m_diagnostics;
  std::set<std::string> m_known;
  bool m_whole = true;
};

// The document of a file. An unreadable file, a syntax error, bytes that are no UTF-8 and a second document are
// reported and give nothing.
std::optional<YAML::Node> loadYaml(std::string const& file, Position const& namedAt, Diagnostics& diagnostics);

}  // namespace modelgen
