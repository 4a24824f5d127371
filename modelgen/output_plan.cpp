#include "modelgen/output_plan.hpp"

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <utility>

#include "modelgen/context.hpp"
#include "modelgen/line_folding.hpp"
#include "modelgen/text.hpp"
#include "modelgen/yaml_reader.hpp"

namespace modelgen {
namespace {

constexpr std::size_t lineWidth = 120;

constexpr std::array<std::pair<const char*, Scope>, 5> scopes{{{"model", Scope::model},
                                                               {"package", Scope::package},
                                                               {"class", Scope::classType},
                                                               {"datatype", Scope::dataType},
                                                               {"enum", Scope::enumeration}}};

bool readScope(const Text& text, Scope& scope, Diagnostics& diagnostics) {
  std::vector<std::string> known;
  for (const auto& [word, value] : scopes) {
    scope = value;
    if (text.value == word) return true;
    known.emplace_back(word);
  }
  if (!text.value.empty()) {
    diagnostics.report(text.at, "unknown scope '" + text.value + "'", alternatives(known));
  }
  return false;
}

// A path that stays below the output folder.
bool isInside(const std::string& path) {
  const std::filesystem::path normal = std::filesystem::path(path).lexically_normal();
  return !path.empty() && normal.is_relative() && *normal.begin() != ".." && normal.has_filename() && normal != ".";
}

bool isCode(const std::string& path) {
  const std::filesystem::path extension = std::filesystem::path(path).extension();
  return extension == ".hpp" || extension == ".cpp";
}

class PlanRenderer {
 public:
  PlanRenderer(const std::vector<PlanRow>& plan, bool withText, TemplateSet& templates, Diagnostics& diagnostics)
      : m_plan(plan), m_withText(withText), m_templates(templates), m_diagnostics(diagnostics) {}

  // `make` gives the data of one thing; it is called only where some row wants it.
  template <class Make>
  void add(Scope scope, const Make& make) {
    const auto wants = [scope](const PlanRow& row) { return row.scope == scope; };
    if (std::none_of(m_plan.begin(), m_plan.end(), wants)) return;
    const Data data = make();
    for (const PlanRow& row : m_plan) {
      if (wants(row) && isWanted(row, data)) addFile(row, data);
    }
  }

  std::vector<OutputFile> take() {
    std::vector<OutputFile> result;
    for (auto& [path, text] : m_files) result.push_back({path, std::move(text)});
    return result;
  }

 private:
  bool isWanted(const PlanRow& row, const Data& data) {
    if (!row.when) return true;
    const Data* const flag = data.get(row.when->value);
    if (flag != nullptr && flag->is_bool()) return flag->is_true();
    m_diagnostics.report(row.when->at, "'" + row.when->value + "' is no flag of the data",
                         "a key whose value is true or false");
    return false;
  }

  void addFile(const PlanRow& row, const Data& data) {
    const std::string path = m_templates.renderText(row.path.value, row.path.at, data);
    if (!m_diagnostics.empty()) return;
    if (!isInside(path)) {
      m_diagnostics.report(row.path.at, "the path '" + path + "' leaves the output folder", "a relative path below it");
      return;
    }
    const std::string text = m_withText ? m_templates.render(row.templateFile.value, row.templateFile.at, data) : "";
    if (!m_files.emplace(path, isCode(path) ? foldLongLines(shortenOwnNames(text), lineWidth) : text).second) {
      m_diagnostics.report(row.path.at, "the path '" + path + "' is made twice", "a path for each file");
    }
  }

  const std::vector<PlanRow>& m_plan;
  bool m_withText;
  TemplateSet& m_templates;
  Diagnostics& m_diagnostics;
  std::map<std::string, std::string> m_files;
};

}  // namespace

std::vector<PlanRow> readPlan(const std::string& folder, Diagnostics& diagnostics) {
  std::vector<PlanRow> result;
  const std::string file = folder + "/outputs.yaml";
  const auto document = loadYaml(file, {file, 0, 0}, diagnostics);
  if (!document) return result;
  MapReader map(*document, {file, 1, 1}, "a table of outputs", diagnostics);
  for (MapReader& each : map.rows("outputs", "an output")) {
    PlanRow row;
    row.templateFile = each.requiredText("template");
    const bool known = readScope(each.requiredText("for"), row.scope, diagnostics);
    row.path = each.requiredText("path");
    row.when = each.text("when");
    each.refuseOtherKeys();
    if (known) result.push_back(row);
  }
  map.refuseOtherKeys();
  return result;
}

std::vector<OutputFile> renderPlan(const std::vector<PlanRow>& plan, const Model& model, const std::string& root,
                                   bool withText, TemplateSet& templates, Diagnostics& diagnostics) {
  PlanRenderer renderer(plan, withText, templates, diagnostics);
  renderer.add(Scope::model, [&] { return modelData(model, root); });
  for (const Package& package : model.packages) {
    renderer.add(Scope::package, [&] { return packageData(package, root); });
    for (const Class& each : package.classes) renderer.add(Scope::classType, [&] { return classData(each, root); });
    for (const DataType& each : package.dataTypes) {
      renderer.add(Scope::dataType, [&] { return dataTypeData(each, root); });
    }
    for (const Enum& each : package.enums) renderer.add(Scope::enumeration, [&] { return enumData(each, root); });
  }
  return renderer.take();
}

}  // namespace modelgen
