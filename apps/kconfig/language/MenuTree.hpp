// The rows that the compiled form of a tree stands on: entries in the order of the text, each with its properties,
// nothing inherited or worked out yet. They are read off the definitions of the model, and dependency propagation
// starts from them. The tree owns all texts, symbols and expressions that its rows name. Used from one thread at a
// time.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "language/ExpressionPool.hpp"
#include "language/StringPool.hpp"
#include "language/SymbolTable.hpp"

namespace kconfig {

using EntryId = std::uint32_t;
using PropertyId = std::uint32_t;

constexpr EntryId rootEntry = 0;
constexpr EntryId noEntry = ~EntryId{0};
constexpr PropertyId noProperty = ~PropertyId{0};

// Where something stands; file is an index into MenuTree::files.
struct Position {
  std::uint32_t file = 0;
  std::uint32_t line = 0;
};

enum class EntryKind : std::uint8_t { Root, Config, MenuConfig, Choice, Menu, If, Comment };

enum class PropertyKind : std::uint8_t {
  Type,
  Prompt,  // also the title of a menu and the text of a comment
  Default,
  Select,
  Imply,
  Range,
  DependsOn,
  VisibleIf,
  Help,
  Optional,
  Environment,    // option env="text"
  Modules,        // option modules
  DefconfigList,  // option defconfig_list
  AllNoConfigY    // option allnoconfig_y
};

struct Property {
  PropertyKind kind = PropertyKind::Type;
  SymbolType type = SymbolType::Unknown;  // of Type
  Position position;
  SymbolId symbol = noSymbol;             // target of Select and Imply, lower bound of Range
  SymbolId upper = noSymbol;              // upper bound of Range
  ExpressionId value = noExpression;      // of Default
  ExpressionId condition = noExpression;  // what stands behind "if", or the condition itself
  std::string_view text;                  // of Prompt, Help and Environment
};

struct Entry {
  EntryKind kind = EntryKind::Root;
  Position position;
  SymbolId symbol = noSymbol;  // of Config, MenuConfig and Choice
  EntryId parent = noEntry;
  EntryId end = 0;  // one past the last entry inside this one
  PropertyId firstProperty = 0;
  std::uint32_t propertyCount = 0;
};

struct SourceFile {
  std::string_view name;  // as it was asked for
  Position sourcedFrom;   // line 0 for the first file
};

// The words of a tree: its texts, names and conditions, each of them once.
struct Lexicon {
  StringPool texts;
  SymbolTable symbols;
  ExpressionPool expressions;
};

struct MenuTree : Lexicon {
  std::vector<SourceFile> files;
  std::vector<Entry> entries;                // parents before their contents; the first is the root
  std::vector<Property> properties;          // those of one entry stand together
  std::vector<Property> predefined;          // values of symbols that exist without an entry; symbol names the owner
  std::string_view title = "Configuration";  // of the whole configuration
  SymbolId modules = noSymbol;               // the symbol that switches the third value on
};

// The properties of an entry, for a range-based for.
struct PropertyRange {
  Property const* first;
  std::uint32_t count;

  Property const* begin() const { return first; }
  Property const* end() const { return first + count; }
};

inline PropertyRange propertiesOf(MenuTree const& tree, Entry const& entry) {
  return {tree.properties.data() + entry.firstProperty, entry.propertyCount};
}

// The folder at the top of the tree in which a file stands; empty at the top itself and outside of the tree.
inline std::string_view ownerOf(SourceFile const& file) {
  std::size_t const slash = file.name.find('/');
  return slash != std::string_view::npos ? file.name.substr(0, slash) : std::string_view();
}

}  // namespace kconfig
