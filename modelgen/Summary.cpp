#include "modelgen/Summary.hpp"

#include <algorithm>
#include <array>
#include <iomanip>
#include <ostream>
#include <string>
#include <utility>

namespace modelgen {
namespace {

using Column = std::pair<char const*, int Counts::*>;

constexpr std::array<Column, 7> columns{{{"classes", &Counts::classes},
                                         {"datatypes", &Counts::dataTypes},
                                         {"enums", &Counts::enums},
                                         {"literals", &Counts::literals},
                                         {"properties", &Counts::properties},
                                         {"operations", &Counts::operations},
                                         {"handles", &Counts::handles}}};

// The handles are counted as they are created; what they stand for tells everything else.
Counts countHandles(Model const& model, Package const* package, bool everywhere) {
  Counts counts;
  for (Handle const& each : model.handles) {
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

void writeRow(std::string const& name, Counts const& counts, int width, std::ostream& stream) {
  stream << std::left << std::setw(width) << name << std::right;
  for (Column const& each : columns) stream << std::setw(11) << counts.*each.second;
  stream << '\n';
}

}  // namespace

Counts countPackage(Package const& package) { return countHandles(*package.model, &package, false); }

Counts countModel(Model const& model) { return countHandles(model, nullptr, true); }

void writeSummary(Model const& model, std::ostream& stream) {
  std::size_t longest = 18;
  for (Package const& each : model.packages) longest = std::max(longest, each.name.size());
  int const width = static_cast<int>(longest);
  stream << std::left << std::setw(width) << model.name << std::right;
  for (Column const& each : columns) stream << std::setw(11) << each.first;
  stream << '\n';
  writeRow("(root, namespaces)", countHandles(model, nullptr, false), width, stream);
  for (Package const& each : model.packages) writeRow(each.name, countPackage(each), width, stream);
  writeRow("all", countModel(model), width, stream);
}

}  // namespace modelgen
