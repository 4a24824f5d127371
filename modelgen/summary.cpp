#include "modelgen/summary.hpp"

#include <algorithm>
#include <array>
#include <iomanip>
#include <ostream>
#include <string>
#include <utility>

namespace modelgen {
namespace {

using Column = std::pair<const char*, int Counts::*>;

constexpr std::array<Column, 7> columns{{{"classes", &Counts::classes},
                                         {"datatypes", &Counts::dataTypes},
                                         {"enums", &Counts::enums},
                                         {"literals", &Counts::literals},
                                         {"properties", &Counts::properties},
                                         {"operations", &Counts::operations},
                                         {"handles", &Counts::handles}}};

// The handles are counted as they are created; what they stand for tells everything else.
Counts countHandles(const Model& model, const Package* package, bool everywhere) {
  Counts counts;
  for (const Handle& each : model.handles) {
    if (!everywhere && each.package != package) continue;
    ++counts.handles;
    if (each.kind == HandleKind::classType) ++counts.classes;
    if (each.kind == HandleKind::dataType) ++counts.dataTypes;
    if (each.kind == HandleKind::enumeration) ++counts.enums;
    if (each.kind == HandleKind::literal) ++counts.literals;
    if (each.kind == HandleKind::property) ++counts.properties;
    if (each.kind == HandleKind::operation) ++counts.operations;
  }
  return counts;
}

void writeRow(const std::string& name, const Counts& counts, int width, std::ostream& stream) {
  stream << std::left << std::setw(width) << name << std::right;
  for (const Column& each : columns) stream << std::setw(11) << counts.*each.second;
  stream << '\n';
}

}  // namespace

Counts countPackage(const Package& package) { return countHandles(*package.model, &package, false); }

Counts countModel(const Model& model) { return countHandles(model, nullptr, true); }

void writeSummary(const Model& model, std::ostream& stream) {
  std::size_t longest = 18;
  for (const Package& each : model.packages) longest = std::max(longest, each.name.size());
  const int width = static_cast<int>(longest);
  stream << std::left << std::setw(width) << model.name << std::right;
  for (const Column& each : columns) stream << std::setw(11) << each.first;
  stream << '\n';
  writeRow("(root, namespaces)", countHandles(model, nullptr, false), width, stream);
  for (const Package& each : model.packages) writeRow(each.name, countPackage(each), width, stream);
  writeRow("all", countModel(model), width, stream);
}

}  // namespace modelgen
