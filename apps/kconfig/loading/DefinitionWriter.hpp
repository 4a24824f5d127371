// Puts a tree into the definitions of the model, entry by entry as its text is read. Nothing is worked out on the way:
// the definitions say what the author wrote. What an entry says about others is known only once all have been met, so
// ordinals and contents, which number() brings up to date, and dependencies, which finish() writes, come last. To be
// used inside one transaction, by which all of it stays or goes. The words have to live as long. The model's thread.
#pragma once

#include <kestrel/Array.hpp>
#include <string>
#include <tessel_config_datamodel/schema/ControllableDef.hpp>
#include <tessel_config_datamodel/schema/SchemaData.hpp>
#include <vector>

#include "language/MenuTree.hpp"
#include "loading/ExpressionElements.hpp"

namespace kconfig {

class DefinitionWriter {
 public:
  using NodeId = std::uint32_t;  // of a definition, in the order in which they came into being

  DefinitionWriter(Lexicon const& words, plinth::Model const& model);

  // A file that positions refer to by the number given.
  std::uint32_t addFile(SourceFile const& file);
  SourceFile const& file(std::uint32_t number) const { return m_files[number]; }
  void setTitle(std::string_view title) { m_title = title; }
  // Moves the first entry, which is there before its title is read.
  void setRootPosition(Position position);

  // A symbol that exists without an entry, and its value.
  void addPredefined(SymbolId symbol, ExpressionId value);
  // The next entry in the order of the text, inside that of parent; a plain symbol's first one is its parameter.
  NodeId addEntry(Entry const& entry, NodeId parent);
  // What the last entry says, in the order of the text, before the next one is added.
  void addProperties(NodeId node, std::vector<Property> const& properties);

  // Makes what has been written so far readable for DefinitionReader. Linear in it.
  schema::SchemaData const& number();
  // Ends the definitions.
  schema::SchemaData finish();

 private:
  struct Node {
    schema::ControllableDef definition;
    bool isParam;
    std::vector<schema::EvalDef> logic;
    std::vector<NodeId> contents;    // of a category
    std::vector<SymbolId> required;  // by its conditions
    std::vector<schema::GlobalNodeRef> requires_;
    std::vector<unsigned int> successors;
  };

  static constexpr NodeId noNode = ~NodeId{0};

  NodeId addNode(schema::ControllableDef const& definition, std::string const& key, bool isParam);
  NodeId addCategory(std::string const& key);
  NodeId paramOf(SymbolId symbol, std::string const& key);
  std::string keyOf(Entry const& entry) const;
  void addFollows(Property const& property, NodeId node);
  void addFollows(std::u16string_view attribute, expr::ExprValue const& expression, NodeId node);
  expr::ExprValue expressionOf(Property const& property);
  void addLogic(Property const& property, NodeId node);
  void noteDependencies(Property const& property, NodeId node);
  void noteDependency(SymbolId symbol, NodeId node);
  void writeDependencies();
  void addProductions();
  void writeMetadata();
  void setMetadata(std::u16string_view name, kestrel::OwnedArray const& value);
  schema::GlobalNodeRef refTo(NodeId node) const;

  Lexicon const& m_words;
  plinth::Model m_model;
  ExpressionWriter m_expressions;
  schema::SchemaData m_schema;
  std::string_view m_title = "Configuration";
  std::vector<SourceFile> m_files;
  std::vector<Node> m_nodes;
  std::vector<NodeId> m_params;       // by symbol, noNode where no entry declares it
  std::vector<Position> m_positions;  // of each entry and, behind it, of its rows of Follows
  EntryId m_entries = 0;              // so far
  bool m_isNumbered = false;          // with all that has been written
};

}  // namespace kconfig
