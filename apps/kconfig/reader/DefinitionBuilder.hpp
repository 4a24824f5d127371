// Takes from the parser what it has understood: entries with their properties, the blocks that are open, and the
// values of variables as far as the text read so far fixes them. Each entry goes to the definitions of the model as
// soon as all of it is known. It refers to the surroundings and the diagnostics of one reading and owns the words that
// the text is made of. The model's thread.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "language/Diagnostics.hpp"
#include "loading/DefinitionWriter.hpp"
#include "reader/TreeReader.hpp"

namespace kconfig {

class DefinitionBuilder {
 public:
  DefinitionBuilder(plinth::Model const& model, Surroundings const& surroundings, Diagnostics& diagnostics);

  Lexicon& words() { return m_words; }

  std::uint32_t addFile(std::string_view name, Position from);
  void warning(Position position, std::string message);
  void error(Position position, std::string message);

  // Appends an entry to the innermost open block; the properties that follow are its own.
  void addEntry(EntryKind kind, SymbolId symbol, Position position);
  Entry const& lastEntry() const { return m_entry; }
  void addProperty(Property const& property) { m_properties.push_back(property); }
  // Gives the whole tree its title; false if it has one, or anything else, already.
  bool setTitle(std::string_view title, Position position);
  // Sets the type of the last entry's symbol, or complains that it has another.
  void setType(SymbolType type, Position position);
  // Imports the variable into the last entry's symbol.
  void importVariable(std::string_view variable, Position position);
  // Makes the last entry's symbol the one that a role is for, unless another has it.
  void claimRole(PropertyKind role, std::string_view name, Position position);

  // The last entry becomes a block: entries added from now on lie inside it.
  void openBlock() { m_open.push_back({m_entry, m_node}); }
  void closeBlock() { m_open.pop_back(); }
  std::size_t openBlocks() const { return m_open.size(); }
  Entry const& openBlockAt(std::size_t depth) const { return m_open[depth].entry; }

  // Replaces each $NAME by the value that NAME has as far as it is declared; by nothing if it has none.
  std::string expand(std::string_view text);
  // Ends the tree.
  ReadTree finish();

 private:
  struct Block {
    Entry entry;
    DefinitionWriter::NodeId node;
  };

  void endEntry();
  void noteFirstValue(Property const& property);
  std::string_view earlyText(SymbolId symbol);
  std::string_view workOutEarly(SymbolId symbol);
  void addPredefined();

  Surroundings const& m_surroundings;
  Diagnostics& m_diagnostics;
  Lexicon m_words;
  DefinitionWriter m_writer;
  std::vector<Block> m_open;
  Entry m_entry;  // the last one, whose properties are still to come
  DefinitionWriter::NodeId m_node = 0;
  std::vector<Property> m_properties;
  EntryId m_entryId = rootEntry;
  std::string_view m_title;
  std::map<PropertyKind, SymbolId> m_roles;
  HelpTexts m_helps;
  std::unordered_map<SymbolId, SymbolId>
      m_firstValues;  // by symbol: the constant imported first, noSymbol for a default
  std::unordered_map<SymbolId, std::string_view> m_earlyTexts;  // of variables that were asked for
};

}  // namespace kconfig
