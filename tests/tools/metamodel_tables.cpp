#include "metamodel_tables.hpp"

#include <yaml-cpp/yaml.h>

#include <boost/uuid/uuid_io.hpp>
#include <map>
#include <stdexcept>

#include "groundwork/NameUuid.hpp"

namespace tables {
namespace {

struct Type {
  std::string name;  ///< qualified
  std::string package;
  YAML::Node row;
};

bool flag(YAML::Node const& row, char const* key) { return row[key] && row[key].as<bool>(); }
std::string text(YAML::Node const& row, char const* key, std::string const& otherwise) {
  return row[key] ? row[key].as<std::string>() : otherwise;
}

/// All tables of a model and of those it builds on, and what follows from them for its types.
class Tables {
 public:
  explicit Tables(std::string const& repository) {
    load(repository + "/siblings/utils/");
    load(repository + "/siblings/form/");
    m_model = load(repository + "/src/");
  }

  Json document() const;

 private:
  YAML::Node load(std::string const& folder);
  void loadTypes(std::string const& package, YAML::Node const& rows);
  Json packages() const;
  Json list(char const* kind, Json (Tables::*print)(Type const&) const) const;
  Json classJson(Type const& type) const;
  Json dataTypeJson(Type const& type) const;
  Json enumJson(Type const& type) const;
  Json propertyJson(Type const& owner, YAML::Node const& row, int index) const;

  std::string resolved(Type const& user, std::string const& name) const;
  Type const& baseOf(Type const& type) const { return m_types.at(resolved(type, type.row["base"].as<std::string>())); }
  bool isRoot(Type const& type) const { return type.row["base"].as<std::string>() == "plinth.ModelElement"; }
  int lastIndex(Type const& type) const;
  Json declared(Type const& type, std::string const& property) const;

  YAML::Node m_model;
  std::map<std::string, Type> m_types;
  std::map<std::string, YAML::Node> m_packages;
};

YAML::Node Tables::load(std::string const& folder) {
  YAML::Node const model = YAML::LoadFile(folder + "model.yaml");
  for (YAML::Node const& row : model["packages"]) {
    YAML::Node const package = YAML::LoadFile(folder + row["folder"].as<std::string>() + "/package.yaml");
    auto const name = row["name"].as<std::string>();
    m_packages[name] = package;
    for (char const* kind : {"classes", "datatypes", "enums"}) loadTypes(name, package[kind]);
  }
  return model;
}

void Tables::loadTypes(std::string const& package, YAML::Node const& rows) {
  if (!rows) return;
  for (YAML::Node const& row : rows) {
    std::string const name = package + "." + row["name"].as<std::string>();
    m_types[name] = {name, package, row};
  }
}

/// A name in a table is one of the same package, or qualified, or a primitive type's.
std::string Tables::resolved(Type const& user, std::string const& name) const {
  std::string const local = user.package + "." + name;
  return m_types.count(local) != 0 ? local : name;
}

int Tables::lastIndex(Type const& type) const {
  int last = isRoot(type) ? 0 : lastIndex(baseOf(type));
  for (YAML::Node const& row : type.row["properties"]) last += row["derived"] ? 0 : 1;
  return last;
}

/// The qualified name of a property that the class has from itself or from a base.
Json Tables::declared(Type const& type, std::string const& property) const {
  for (YAML::Node const& row : type.row["properties"]) {
    if (row["name"].as<std::string>() == property) return type.name + "." + property;
  }
  if (isRoot(type)) throw std::runtime_error(type.name + " has no property " + property);
  return declared(baseOf(type), property);
}

Json Tables::propertyJson(Type const& owner, YAML::Node const& row, int index) const {
  static std::map<std::string, int> const flags{
      {"optional", 0}, {"single", 1}, {"sequence", 2}, {"set", 4}, {"map", 6}};
  std::string const name = owner.name + "." + row["name"].as<std::string>();
  std::string const type = resolved(owner, row["type"].as<std::string>());
  std::string const shape = text(row, "shape", "single");
  bool const isDerived = static_cast<bool>(row["derived"]);
  bool const uniqueByRule = shape != "sequence" && shape != "map";
  Json opposite;
  if (row["opposite"]) {
    auto const far = row["opposite"].as<std::string>();
    auto const point = far.rfind('.');
    opposite = resolved(owner, far.substr(0, point)) + far.substr(point);
  }
  return {{"name", name},
          {"uuid", nameUuid(name)},
          {"type", type},
          {"flags", flags.at(shape)},
          {"composite", text(row, "kind", "attribute") == "containment"},
          {"ordered", shape != "set" && shape != "map" && !isDerived},
          {"unique", row["unique"] ? row["unique"].as<bool>() : uniqueByRule},
          {"default", row["default"] ? Json(row["default"].as<std::string>()) : Json()},
          {"derived", isDerived},
          {"transient", flag(row, "transient")},
          {"hidden", flag(row, "hidden")},
          {"index", index == 0 ? Json() : Json(index)},
          {"qualifiedBy", row["qualifier"] ? declared(m_types.at(type), row["qualifier"].as<std::string>()) : Json()},
          {"qualificationUnique", true},
          {"opposite", opposite}};
}

Json Tables::classJson(Type const& type) const {
  int index = isRoot(type) ? 0 : lastIndex(baseOf(type));
  Json properties = Json::array();
  for (YAML::Node const& row : type.row["properties"]) {
    properties.push_back(propertyJson(type, row, row["derived"] ? 0 : ++index));
  }
  return {{"name", type.name},
          {"uuid", nameUuid(type.name)},
          {"superclass", isRoot(type) ? "plinth.ModelElement" : baseOf(type).name},
          {"abstract", flag(type.row, "abstract")},
          {"hidden", flag(type.row, "hidden")},
          {"properties", std::move(properties)}};
}

Json Tables::dataTypeJson(Type const& type) const {
  Json properties = Json::array();
  for (YAML::Node const& row : type.row["properties"]) properties.push_back(propertyJson(type, row, 0));
  Json operations = Json::array();
  for (YAML::Node const& row : type.row["operations"]) {
    std::string const name = type.name + "." + row["name"].as<std::string>();
    operations.push_back({{"name", name},
                          {"uuid", nameUuid(name)},
                          {"type", resolved(type, row["type"].as<std::string>())},
                          {"abstract", false},
                          {"static", false},
                          {"public", true},
                          {"lower", 1},
                          {"upper", 1}});
  }
  return {{"name", type.name},
          {"uuid", nameUuid(type.name)},
          {"properties", std::move(properties)},
          {"operations", std::move(operations)}};
}

Json Tables::enumJson(Type const& type) const {
  Json literals = Json::array();
  for (YAML::Node const& row : type.row["literals"]) {
    std::string const name = type.name + "." + row["name"].as<std::string>();
    literals.push_back({{"name", name}, {"value", row["value"].as<int>()}, {"uuid", nameUuid(name)}});
  }
  return {
      {"name", type.name}, {"uuid", nameUuid(type.name)}, {"underlying", "Integer"}, {"literals", std::move(literals)}};
}

/// Package by package in the order of the model, each in name order.
Json Tables::list(char const* kind, Json (Tables::*print)(Type const&) const) const {
  Json result = Json::array();
  for (YAML::Node const& package : m_model["packages"]) {
    auto const name = package["name"].as<std::string>();
    std::map<std::string, Type> sorted;
    for (YAML::Node const& row : m_packages.at(name)[kind]) {
      auto const simpleName = row["name"].as<std::string>();
      sorted[simpleName] = m_types.at(name + "." + simpleName);
    }
    for (auto const& [simpleName, type] : sorted) result.push_back((this->*print)(type));
  }
  return result;
}

Json Tables::packages() const {
  auto const model = m_model["model"].as<std::string>();
  std::string const root =
      "/plinth/" + model + "/" + m_model["release"].as<std::string>() + text(m_model, "revision", "");
  Json result = Json::array();
  result.push_back({{"name", ""}, {"uri", root}, {"uuid", nameUuid(model)}, {"parent", nullptr}});
  std::map<std::string, bool> present;
  for (YAML::Node const& package : m_model["packages"]) {
    auto const name = package["name"].as<std::string>();
    for (std::size_t end = name.find('.');; end = name.find('.', end + 1)) {
      std::string const part = name.substr(0, end);
      if (!std::exchange(present[part], true)) {
        auto const point = part.rfind('.');
        result.push_back({{"name", part},
                          {"uri", root + "/" + part},
                          {"uuid", nullptr},
                          {"parent", point == std::string::npos ? "" : part.substr(0, point)}});
      }
      if (end == std::string::npos) break;
    }
  }
  return result;
}

Json Tables::document() const {
  return {{"packages", packages()},
          {"classes", list("classes", &Tables::classJson)},
          {"datatypes", list("datatypes", &Tables::dataTypeJson)},
          {"enums", list("enums", &Tables::enumJson)}};
}

}  // namespace

std::string nameUuid(std::string const& name) { return to_string(groundwork::nameUuid(name)); }

Json expectedDocument(std::string const& repository) { return Tables(repository).document(); }

}  // namespace tables
