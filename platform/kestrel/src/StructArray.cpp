#include "kestrel/StructArray.hpp"

#include <algorithm>

#include "ArrayData.hpp"

namespace kestrel {
namespace detail {

std::size_t Fields::indexOf(std::string_view name) const noexcept {
  return std::size_t(std::find(names.begin(), names.end(), name) - names.begin());
}

namespace {

// Gives every element a further field; the values stand element by element, so they all move.
void appendField(Fields& fields, std::string_view name, std::size_t elements) {
  std::size_t const width = fields.names.size();
  Cells widened(checkedCount({elements, width + 1}, sizeof(OwnedArray)));
  std::vector<std::string> names = fields.names;
  names.emplace_back(name);
  for (std::size_t i = 0; i < elements; ++i)
    std::move(fields.values.begin() + i * width, fields.values.begin() + (i + 1) * width,
              widened.begin() + i * (width + 1));
  fields.values = std::move(widened);
  fields.names = std::move(names);
}

}  // namespace
}  // namespace detail

OwnedArray createStruct(std::vector<std::string> fieldNames, Dimensions dimensions) {
  std::vector<std::string> sorted = fieldNames;
  std::sort(sorted.begin(), sorted.end());
  auto const twice = std::adjacent_find(sorted.begin(), sorted.end());
  if (twice != sorted.end())
    throw ArrayError("Kestrel:array:DuplicateField", "A struct cannot have two fields named '" + *twice + "'.");
  std::size_t const count = detail::checkedCount(dimensions, fieldNames.size() * sizeof(OwnedArray));
  detail::Cells values(count * fieldNames.size());
  return detail::makeArray<detail::Fields>(ClassId::Struct, dimensions, std::move(fieldNames), std::move(values));
}

std::vector<std::string> const& fieldNames(kestrel_array const& array) {
  return detail::storeAs<detail::Fields>(array, "struct").names;
}

bool hasField(kestrel_array const& array, std::string_view name) {
  auto const& fields = detail::storeAs<detail::Fields>(array, "struct");
  return fields.indexOf(name) != fields.names.size();
}

kestrel_array const* field(kestrel_array const& array, std::size_t index, std::string_view name) {
  auto const& fields = detail::storeAs<detail::Fields>(array, "struct");
  detail::checkIndex(array, index);
  std::size_t const position = fields.indexOf(name);
  if (position == fields.names.size())
    throw ArrayError("Kestrel:array:NoSuchField", "The struct has no field '" + std::string(name) + "'.");
  return fields.values[index * fields.names.size() + position].get();
}

void setField(kestrel_array& array, std::size_t index, std::string_view name, OwnedArray value) {
  auto& fields = detail::storeAs<detail::Fields>(array, "struct");
  detail::checkIndex(array, index);
  std::size_t const position = fields.indexOf(name);
  if (position == fields.names.size()) detail::appendField(fields, name, numberOfElements(array));
  fields.values[index * fields.names.size() + position] = std::move(value);
}

void removeField(kestrel_array& array, std::string_view name) {
  auto& fields = detail::storeAs<detail::Fields>(array, "struct");
  std::size_t const width = fields.names.size();
  std::size_t const removed = fields.indexOf(name);
  if (removed == width) return;
  detail::Cells narrowed;
  narrowed.reserve(fields.values.size() - numberOfElements(array));
  for (std::size_t i = 0; i < fields.values.size(); ++i)
    if (i % width != removed) narrowed.push_back(std::move(fields.values[i]));
  fields.values = std::move(narrowed);
  fields.names.erase(fields.names.begin() + static_cast<std::ptrdiff_t>(removed));
}

OwnedArray createCell(Dimensions dimensions) {
  std::size_t const count = detail::checkedCount(dimensions, sizeof(OwnedArray));
  return detail::makeArray<detail::Cells>(ClassId::Cell, dimensions, count);
}

kestrel_array const* cell(kestrel_array const& array, std::size_t index) {
  return detail::slotAt<detail::Cells>(array, index, "cell").get();
}

void setCell(kestrel_array& array, std::size_t index, OwnedArray value) {
  detail::slotAt<detail::Cells>(array, index, "cell") = std::move(value);
}

void resizeCells(kestrel_array& array, std::size_t count) {
  auto& cells = detail::storeAs<detail::Cells>(array, "cell");
  cells.resize(count);
  array.dimensions = row(count);
}

}  // namespace kestrel
