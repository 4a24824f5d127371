#include "modelgen/Generator.hpp"

#include <exception>
#include <filesystem>
#include <optional>
#include <ostream>
#include <utility>

#include "modelgen/Checks.hpp"
#include "modelgen/Linker.hpp"
#include "modelgen/OutputFolder.hpp"
#include "modelgen/OutputPlan.hpp"
#include "modelgen/Summary.hpp"
#include "modelgen/TableReader.hpp"
#include "modelgen/TemplateSet.hpp"
#include "modelgen/derivation.hpp"

namespace modelgen {
namespace {

ExitStatus refuse(Diagnostics const& diagnostics, std::ostream& err) {
  for (Diagnostic const& each : diagnostics.sorted()) err << each << '\n';
  return ExitStatus::refused;
}

std::string rootOf(Options const& options) {
  auto const modelFolder = std::filesystem::path(options.model).parent_path();
  auto const root = options.root.empty() ? modelFolder / ".." : std::filesystem::path(options.root);
  return root.lexically_normal().generic_string();
}

// Escapes what separates names in a makefile.
std::string escapedForMake(std::string const& path) {
  std::string result;
  for (char const c : path) {
    if (c == ' ' || c == '#') result += '\\';
    if (c == '$') result += '$';
    result += c;
  }
  return result;
}

void writeDepfile(Options const& options, std::vector<OutputFile> const& files,
                  std::vector<std::string> const& filesRead) {
  std::string text;
  for (OutputFile const& each : files) text += escapedForMake(options.out + "/" + each.path) + " ";
  text += ":";
  for (std::string const& each : filesRead) text += " \\\n  " + escapedForMake(each);
  writeIfChanged(options.depfile, text + '\n');
}

char const* describe(Difference::Kind kind) {
  if (kind == Difference::Kind::missing) return "missing";
  return kind == Difference::Kind::changed ? "changed" : "stale";
}

ExitStatus checkFolder(OutputFolder const& folder, std::vector<OutputFile> const& files, std::ostream& out) {
  std::vector<Difference> const differences = folder.compare(files);
  for (Difference const& each : differences) out << describe(each.kind) << ' ' << each.path << '\n';
  return differences.empty() ? ExitStatus::done : ExitStatus::outOfDate;
}

ExitStatus runChecked(Options const& options, std::ostream& out, std::ostream& err) {
  Diagnostics diagnostics;
  std::vector<std::string> filesRead;
  ModelSet set;
  loadModels(options, set, diagnostics, filesRead);
  if (!diagnostics.empty()) return refuse(diagnostics, err);
  Model const& model = set.generated();
  if (options.mode == Mode::summary) {
    writeSummary(model, out);
    return ExitStatus::done;
  }

  std::vector<PlanRow> const plan = readPlan(options.templates, diagnostics);
  if (!diagnostics.empty()) return refuse(diagnostics, err);
  TemplateSet templates(options.templates, diagnostics);
  bool const withText = options.mode != Mode::listOutputs;
  auto const files = renderPlan(plan, model, rootOf(options), withText, templates, diagnostics);
  if (!diagnostics.empty()) return refuse(diagnostics, err);

  if (options.mode == Mode::listOutputs) {
    for (OutputFile const& each : files) out << each.path << '\n';
    return ExitStatus::done;
  }
  OutputFolder const folder(options.out, model.name);
  if (options.mode == Mode::check) return checkFolder(folder, files, out);
  folder.write(files);
  if (!options.depfile.empty()) {
    filesRead.push_back(options.templates + "/outputs.yaml");
    for (std::string const& each : templates.filesRead()) filesRead.push_back(each);
    writeDepfile(options, files, filesRead);
  }
  return ExitStatus::done;
}

}  // namespace

void loadModels(Options const& options, ModelSet& set, Diagnostics& diagnostics, std::vector<std::string>& filesRead) {
  bool complete = true;
  std::vector<std::string> files = options.imports;
  files.push_back(options.model);
  for (std::string const& file : files) {
    std::optional<ModelRow> row = readModel(file, diagnostics, filesRead);
    complete = complete && row.has_value();
    if (row) set.rows.push_back(std::move(*row));
  }
  // Without a whole file every name of it would be reported as unknown, which helps nobody.
  if (!checkPackages(set.rows, diagnostics) || !complete) return;
  linkModels(set, diagnostics);
  for (Model const& each : set.models) {
    checkNames(each, diagnostics);
    checkProperties(each, diagnostics);
    checkLinks(each, diagnostics);
  }
  if (diagnostics.empty()) deriveModels(set);
}

ExitStatus run(Options const& options, std::ostream& out, std::ostream& err) {
  try {
    return runChecked(options, out, err);
  } catch (std::exception const& error) {
    err << "modelgen: " << error.what() << '\n';
    return ExitStatus::refused;
  }
}

}  // namespace modelgen
