#include "plinth/diagnostics/Census.hpp"

#include <algorithm>
#include <map>
#include <numeric>

#include "groundwork/Counting.hpp"
#include "plinth/ElementDirectory.hpp"
#include "plinth/LiveObjects.hpp"
#include "plinth/meta/MetaRegistry.hpp"

namespace plinth {
namespace {

struct ByName {
  bool operator()(meta::ClassImpl const* left, meta::ClassImpl const* right) const noexcept {
    return left->getQualifiedName() < right->getQualifiedName();
  }
};
using Counts = std::map<meta::ClassImpl const*, std::size_t, ByName>;

void count(ModelImpl const& model, Counts& counts) {
  ElementDirectory const& directory = model.directory();
  for (meta::ClassImpl const* metaClass : directory.classes())
    counts[metaClass] += directory.elementsOf(*metaClass).size();
}

std::vector<Census::Row> rowsOf(Counts const& counts) {
  std::vector<Census::Row> rows;
  for (auto const& [metaClass, number] : counts) {
    if (number != 0) rows.push_back({metaClass, number});
  }
  return rows;
}

}  // namespace

std::size_t Census::elements() const noexcept {
  return std::accumulate(classes.begin(), classes.end(), std::size_t{0},
                         [](std::size_t sum, Row const& row) { return sum + row.count; });
}

std::size_t Census::countOf(meta::ClassImpl const& metaClass) const noexcept {
  auto const found =
      std::find_if(classes.begin(), classes.end(), [&](Row const& row) { return row.metaClass == &metaClass; });
  return found == classes.end() ? 0 : found->count;
}

std::string Census::text() const {
  std::string result;
  for (Row const& row : classes) result += std::to_string(row.count) + " " + row.metaClass->narrowName() + "\n";
  if (models != 0) result += std::to_string(models) + " models\n";
  if (others != 0) result += std::to_string(others) + " proxies or dead elements\n";
  return result;
}

Census census(Model const& model) {
  Census result;
  if (model.isEmpty()) return result;
  Counts counts;
  count(*model.impl(), counts);
  result.classes = rowsOf(counts);
  result.models = 1;
  return result;
}

Census census() {
  ModelImpl const* const metamodel = meta::MetaRegistry::getInstance().model().impl();
  Census result;
  Counts counts;
  detail::LiveObjects::forEachModel([&](ModelImpl const& model) {
    if (&model == metamodel) return;
    count(model, counts);
    ++result.models;
  });
  result.classes = rowsOf(counts);
  std::size_t const objects = detail::LiveObjects::elements();
  result.others = objects - std::min(objects, result.elements());
  return result;
}

Census surplus(Census const& before, Census const& after) {
  auto const beyond = [](std::size_t earlier, std::size_t later) { return later > earlier ? later - earlier : 0; };
  Census result;
  for (Census::Row const& row : after.classes) {
    std::size_t const more = beyond(before.countOf(*row.metaClass), row.count);
    if (more != 0) result.classes.push_back({row.metaClass, more});
  }
  result.models = beyond(before.models, after.models);
  result.others = beyond(before.others, after.others);
  return result;
}

}  // namespace plinth
