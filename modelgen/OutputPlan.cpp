#include "modelgen/OutputPlan.hpp"

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <utility>

#include "modelgen/LineFolding.hpp"
#include "modelgen/Text.hpp"
#include "modelgen/YamlReader.hpp"
#include "modelgen/context.hpp"

namespace modelgen {
namespace {

constexpr std::size_t lineWidth = 120;

constexpr std::array<std::pair<char const*, Scope>, 5> scopes{{{"model", Scope::model},
                                                               {"package", Scope::package},
                                                               {"class", Scope::classType},
                                                               {"datatype", Scope::dataType},
                                                               {"enum", Scope::enumeration}}};

bool readScope(Text const& text, Scope& scope, Diagnostics& diagnostics) {
  std::vector<std::string> known;
  for (auto const& [word, value] : scopes) {
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
bool isInside(std::string const& path) {
  std::filesystem::path const normal = std::filesystem::path(path).lexically_normal();
  return !path.empty() && normal.is_relative() && *normal.begin() != ".." && normal.has_filename() && normal != ".";
}

bool isCode(std::string const& path) {
  std::filesystem::path const extension = std::filesystem::path(path).extension();
  return extension == ".hpp" || extension == ".cpp";
}

// Templates need not know how code is set.
std::string layOut(std::string const& code) {
  return foldLongLines(shortenOwnNames(dropNeedlessBlankLines(sortRuns(code))), lineWidth);
}

class PlanRenderer {
 public:
  PlanRenderer(std::vector<PlanRow> const& plan, bool withText, TemplateSet& templates, Diagnostics& diagnostics)
      : m_plan(plan), m_withText(withText), m_templates(templates), m_diagnostics(diagnostics) {}

  // `make` gives the data of one thing; it is called only where some row wants it.
  template <class Make>
  void add(Scope scope, Make const& make) {
    auto const wants = [scope](PlanRow const& row) { return row.scope == scope; };
    if (std::none_of(m_plan.begin(), m_plan.end(), wants)) return;
    Data const data = make();
    for (PlanRow const& row : m_plan) {
      if (wants(row) && isWanted(row, data)) addFile(row, data);
    }
  }

  std::vector<OutputFile> take() {
    std::vector<OutputFile> result;
    for (auto& [path, text] : m_files) result.push_back({path, std::move(text)});
    return result;
  }

 private:
  bool isWanted(PlanRow const& row, Data const& data) {
    if (!row.when) return true;
    Data const* const flag = data.get(row.when->value);
    if (flag != nullptr && flag->is_bool()) return flag->is_true();
    m_diagnostics.report(row.when->at, "'" + row.when->value + "' is no flag of the data",
                         "a key whose value is true or false");
    return false;
  }

  void addFile(PlanRow const& row, Data const& data) {
    std::string const path = m_templates.renderText(row.path.value, row.path.at, data);
    if (!m_diagnostics.empty()) return;
    if (!isInside(path)) {
      m_diagnostics.report(row.path.at, "the path '" + path + "' leaves the output folder", "a relative path below it");
      return;
    }
    std::string const text = m_withText ? m_templates.render(row.templateFile.value, row.templateFile.at, data) : "";
    if (!m_files.emplace(path, isCode(path) ? layOut(text) : text).second) {
      m_diagnostics.report(row.path.at, "the path '" + path + "' is made twice", "a path for each file");
    }
  }

  std::vector<PlanRow> const& m_plan;
  bool m_withText;
  TemplateSet& m_templates;
  Diagnostics& m_diagnostics;
  std::map<std::string, std::string> m_files;
};

}  // namespace

std::vector<PlanRow> readPlan(std::string const& folder, Diagnostics& diagnostics) {
  std::vector<PlanRow> result;
  std::string const file = folder + "/outputs.yaml";
  auto const document = loadYaml(file, {file, 0, 0}, diagnostics);
  if (!document) return result;
  MapReader map(*document, {file, 1, 1}, "a table of outputs", diagnostics);
  for (MapReader& each : map.rows("outputs", "an output")) {
    PlanRow row;
    row.templateFile = each.requiredText("template");
    bool const known = readScope(each.requiredText("for"), row.scope, diagnostics);
    row.path = each.requiredText("path");
    row.when = each.text("when");
    each.refuseOtherKeys();
    if (known) result.push_back(row);
  }
  map.refuseOtherKeys();
  return result;
}

std::vector<OutputFile> renderPlan(std::vector<PlanRow> const& plan, Model const& model, std::string const& root,
                                   bool withText, TemplateSet& templates, Diagnostics& diagnostics) {
  PlanRenderer renderer(plan, withText, templates, diagnostics);
  renderer.add(Scope::model, [&] { return modelData(model, root); });
  for (Package const& package : model.packages) {
    renderer.add(Scope::package, [&] { return packageData(package, root); });
    for (Class const& each : package.classes) renderer.add(Scope::classType, [&] { return classData(each, root); });
    for (DataType const& each : package.dataTypes) {
      renderer.add(Scope::dataType, [&] { return dataTypeData(each, root); });
    }
    for (Enum const& each : package.enums) renderer.add(Scope::enumeration, [&] { return enumData(each, root); });
  }
  return renderer.take();
}

}  // namespace modelgen
