#include "modelgen/TableReader.hpp"

#include <array>
#include <filesystem>
#include <utility>

#include "modelgen/YamlReader.hpp"

namespace modelgen {
namespace {

template <class Enum, std::size_t Size>
using Words = std::array<std::pair<char const*, Enum>, Size>;

constexpr Words<Shape, 5> shapes{{{"optional", Shape::optional},
                                  {"single", Shape::single},
                                  {"sequence", Shape::sequence},
                                  {"set", Shape::set},
                                  {"map", Shape::map}}};

constexpr Words<Kind, 3> kinds{
    {{"attribute", Kind::attribute}, {"reference", Kind::reference}, {"containment", Kind::containment}}};

// Reads `key` as one of `words` into `target`, which keeps its value where the key is absent. False for another word.
template <class Enum, std::size_t Size>
bool readWord(MapReader& map, char const* key, Words<Enum, Size> const& words, Located<Enum>& target,
              Diagnostics& diagnostics) {
  target.at = map.start();
  auto const found = map.text(key);
  if (!found) return true;
  target.at = found->at;
  std::vector<std::string> known;
  for (auto const& [word, value] : words) {
    if (found->value == word) {
      target.value = value;
      return true;
    }
    known.emplace_back(word);
  }
  diagnostics.report(found->at, "unknown " + std::string(key) + " '" + found->value + "'", alternatives(known));
  return false;
}

class TableReader {
 public:
  explicit TableReader(Diagnostics& diagnostics) : m_diagnostics(diagnostics) {}

  PropertyRow classProperty(MapReader& map) {
    PropertyRow row = plainProperty(map);
    if (!readWord(map, "kind", kinds, row.kind, m_diagnostics)) passOver(row);
    row.derived = map.text("derived");
    row.qualifier = map.text("qualifier");
    row.opposite = map.text("opposite");
    row.ordered = map.flag("ordered");
    row.unique = map.flag("unique");
    row.queryable = map.flag("queryable");
    row.transient = map.flagOr("transient", false);
    row.hidden = map.flagOr("hidden", false);
    map.refuseOtherKeys();
    return row;
  }

  ClassRow classRow(MapReader& map) {
    ClassRow row;
    row.name = map.requiredText("name");
    row.base = map.requiredText("base");
    row.abstract = map.flagOr("abstract", false);
    row.hidden = map.flagOr("hidden", false);
    row.doc = map.requiredText("doc");
    row.stamps = map.textMap("stamps");
    for (MapReader& each : map.rows("properties", "a property")) row.properties.push_back(classProperty(each));
    map.refuseOtherKeys();
    return row;
  }

  DataTypeRow dataTypeRow(MapReader& map) {
    DataTypeRow row;
    row.name = map.requiredText("name");
    row.doc = map.requiredText("doc");
    for (MapReader& each : map.rows("properties", "a property of a datatype")) {
      row.properties.push_back(plainProperty(each));
      each.refuseOtherKeys();
    }
    for (MapReader& each : map.rows("operations", "an operation")) {
      row.operations.push_back({each.requiredText("name"), each.requiredText("type"), each.requiredText("doc")});
      each.refuseOtherKeys();
    }
    map.refuseOtherKeys();
    return row;
  }

  EnumRow enumRow(MapReader& map) {
    EnumRow row;
    row.name = map.requiredText("name");
    row.doc = map.requiredText("doc");
    for (MapReader& each : map.requiredRows("literals", "a literal")) {
      Text const name = each.requiredText("name");
      auto const value = each.requiredInteger("value");
      Text const doc = each.requiredText("doc");
      each.refuseOtherKeys();
      if (value) row.literals.push_back({name, *value, doc});
    }
    map.refuseOtherKeys();
    return row;
  }

  void packageFile(MapReader& map, PackageRow& row) {
    Text const name = map.requiredText("package");
    if (!name.value.empty() && name.value != row.name.value) {
      m_diagnostics.report(name.at, "the package is called '" + name.value + "'",
                           "'" + row.name.value + "', as the model lists it");
    }
    row.doc = map.requiredText("doc");
    for (MapReader& each : map.rows("classes", "a class")) row.classes.push_back(classRow(each));
    for (MapReader& each : map.rows("datatypes", "a datatype")) row.dataTypes.push_back(dataTypeRow(each));
    for (MapReader& each : map.rows("enums", "an enumeration")) row.enums.push_back(enumRow(each));
    map.refuseOtherKeys();
  }

  ModelRow modelFile(MapReader& map, std::string const& file) {
    ModelRow row;
    row.file = file;
    row.name = map.requiredText("model");
    row.release = map.requiredText("release");
    row.revision = map.text("revision").value_or(Text{});
    row.include = map.text("include").value_or(row.name);
    row.imports = map.textList("imports");
    for (MapReader& each : map.rows("packages", "a package of the model")) {
      PackageRow package;
      package.name = each.requiredText("name");
      package.folder = each.requiredText("folder");
      each.refuseOtherKeys();
      row.packages.push_back(std::move(package));
    }
    map.refuseOtherKeys();
    return row;
  }

 private:
  // Every check passes over a property without a type: with a guessed shape or kind it would only mislead.
  static void passOver(PropertyRow& row) { row.type.value.clear(); }

  PropertyRow plainProperty(MapReader& map) {
    PropertyRow row;
    row.name = map.requiredText("name");
    row.type = map.requiredText("type");
    if (!readWord(map, "shape", shapes, row.shape, m_diagnostics)) passOver(row);
    row.defaultText = map.text("default");
    row.doc = map.requiredText("doc");
    row.kind.at = map.start();
    return row;
  }

  Diagnostics& m_diagnostics;
};

}  // namespace

std::optional<ModelRow> readModel(std::string const& file, Diagnostics& diagnostics,
                                  std::vector<std::string>& filesRead) {
  auto const document = loadYaml(file, {file, 0, 0}, diagnostics);
  if (!document) return std::nullopt;
  filesRead.push_back(file);
  TableReader reader(diagnostics);
  MapReader map(*document, {file, 1, 1}, "a model", diagnostics);
  ModelRow model = reader.modelFile(map, file);
  bool complete = map.isWhole();
  for (PackageRow& package : model.packages) {
    if (package.folder.value.empty()) continue;
    auto const folder = std::filesystem::path(file).parent_path() / package.folder.value;
    package.file = (folder / "package.yaml").lexically_normal().generic_string();
    auto const packageDocument = loadYaml(package.file, package.folder.at, diagnostics);
    complete = complete && packageDocument.has_value();
    if (!packageDocument) continue;
    filesRead.push_back(package.file);
    MapReader packageMap(*packageDocument, {package.file, 1, 1}, "a package", diagnostics);
    reader.packageFile(packageMap, package);
    complete = complete && packageMap.isWhole();
  }
  if (!complete) return std::nullopt;
  return model;
}

}  // namespace modelgen
