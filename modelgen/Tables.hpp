// The tables as they were written: one struct per kind of row, with the position of each text so that every later
// check can point at it. Nothing here is resolved or computed; see model.hpp for that. Plain values, no ownership.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "modelgen/Diagnostic.hpp"

namespace modelgen {

template <class T>
struct Located {
  T value{};
  Position at;
};

using Text = Located<std::string>;
using Flag = Located<bool>;

// The numbers are the metamodel's value flags.
enum class Shape { optional = 0, single = 1, sequence = 2, set = 4, map = 6 };

enum class Kind { attribute, reference, containment };

struct PropertyRow {
  Text name;
  Text type;
  Located<Shape> shape{Shape::single, {}};
  Located<Kind> kind{Kind::attribute, {}};
  std::optional<Text> defaultText;
  std::optional<Text> derived;
  std::optional<Text> qualifier;
  std::optional<Text> opposite;
  std::optional<Flag> ordered;
  std::optional<Flag> unique;
  std::optional<Flag> queryable;
  bool transient = false;
  bool hidden = false;
  Text doc;
};

struct OperationRow {
  Text name;
  Text type;
  Text doc;
};

struct ClassRow {
  Text name;
  Text base;
  bool abstract = false;
  bool hidden = false;
  Text doc;
  std::vector<std::pair<Text, Text>> stamps;
  std::vector<PropertyRow> properties;
};

struct DataTypeRow {
  Text name;
  Text doc;
  std::vector<PropertyRow> properties;
  std::vector<OperationRow> operations;
};

struct LiteralRow {
  Text name;
  Located<std::int32_t> value;
  Text doc;
};

struct EnumRow {
  Text name;
  Text doc;
  std::vector<LiteralRow> literals;
};

struct PackageRow {
  std::string file;
  Text name;    // as the model lists it
  Text folder;  // below the model's own folder
  Text doc;
  std::vector<ClassRow> classes;
  std::vector<DataTypeRow> dataTypes;
  std::vector<EnumRow> enums;
};

struct ModelRow {
  std::string file;
  Text name;
  Text release;
  Text revision;  // empty where there is none
  Text include;
  std::vector<Text> imports;
  std::vector<PackageRow> packages;
};

}  // namespace modelgen
