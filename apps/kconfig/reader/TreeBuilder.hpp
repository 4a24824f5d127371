// Puts what the parser has understood into the tree: entries with their properties, the blocks that are open, and the
// values of variables as far as the text read so far fixes them. It holds references to the tree and the diagnostics
// of one reading and owns only its own bookkeeping.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "language/Diagnostics.hpp"
#include "language/MenuTree.hpp"
#include "reader/TreeReader.hpp"

namespace kconfig {

class TreeBuilder {
 public:
  TreeBuilder(MenuTree& tree, Surroundings const& surroundings, Diagnostics& diagnostics);

  MenuTree& tree() { return m_tree; }

  void warning(Position position, std::string message);
  void error(Position position, std::string message);

  // Appends an entry to the innermost open block; the properties that follow are its own.
  EntryId addEntry(EntryKind kind, SymbolId symbol, Position position);
  void addProperty(Property const& property);
  // Gives the root its title.
  void setTitle(std::string_view title, Position position);
  // Sets the type of the last entry's symbol, or complains that it has another.
  void setType(SymbolType type, Position position);
  // Imports the variable into the last entry's symbol.
  void importVariable(std::string_view variable, Position position);
  void declareModules(Position position);
  // The last entry's symbol names the saved configurations to begin with.
  void declareDefconfigList(Position position);

  // The last entry becomes a block: entries added from now on lie inside it.
  void openBlock(EntryId entry) { m_open.push_back(entry); }
  void closeBlock();
  std::size_t openBlocks() const { return m_open.size(); }
  Entry const& openBlockAt(std::size_t depth) const { return m_tree.entries[m_open[depth]]; }

  // Replaces each $NAME by the value that NAME has as far as it is declared; by nothing if it has none.
  std::string expand(std::string_view text);
  // Ends the root.
  void finish();

 private:
  Property property(PropertyKind kind, Position position) const;
  std::string_view earlyText(SymbolId symbol);
  void addPredefined();
  bool claim(SymbolId& holder, char const* role, Position position);

  MenuTree& m_tree;
  Surroundings const& m_surroundings;
  Diagnostics& m_diagnostics;
  std::vector<EntryId> m_open;
  SymbolId m_defconfigList = noSymbol;
  std::unordered_map<SymbolId, std::string_view> m_earlyTexts;  // of variables that were asked for
};

}  // namespace kconfig
