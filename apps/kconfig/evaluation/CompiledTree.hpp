// A configuration tree made ready for evaluation: every property knows the whole condition under which it counts, every
// symbol what bears on its value, and entries stand in the order in which a menu shows them. It names symbols and
// expressions of the MenuTree it was compiled from, which has to live as long. Read only once it is made, and then from
// any thread that may read the MenuTree.
#pragma once

#include <cstdint>
#include <vector>

#include "language/MenuTree.hpp"

namespace kconfig {

// A prompt, default or range of a symbol. source is noProperty for what exists without an entry.
struct EffectiveProperty {
  PropertyKind kind;  // Prompt, Default or Range
  ExpressionId condition = noExpression;
  ExpressionId value = noExpression;  // of Default
  SymbolId lower = noSymbol;          // of Range
  SymbolId upper = noSymbol;
  PropertyId source = noProperty;
};

// One select or imply that aims at a symbol; it is in force as far as condition holds, the selecting symbol included.
struct Selection {
  SymbolId target;
  SymbolId selector;
  PropertyId source;
  ExpressionId condition;
};

struct SymbolRules {
  std::uint32_t firstProperty = 0;  // in CompiledTree::properties, in the order of the text
  std::uint32_t propertyCount = 0;
  ExpressionId reverse = noExpression;  // what forces the symbol on
  ExpressionId implied = noExpression;  // what suggests it
  ExpressionId direct = noExpression;   // its own dependencies
  SymbolId choice = noSymbol;           // the choice that it is a member of
  std::uint32_t firstMember = 0;        // of a choice, in CompiledTree::members
  std::uint32_t memberCount = 0;
};

// An entry in its place in the menu: an entry that depends on the one before it lies below that one, and what an "if"
// encloses lies beside it.
struct MenuNode {
  EntryId parent = noEntry;
  EntryId firstChild = noEntry;
  EntryId next = noEntry;
  ExpressionId dependency = noExpression;
  ExpressionId visibility = noExpression;  // of a menu: "visible if"
  ExpressionId promptCondition = noExpression;
  PropertyId prompt = noProperty;  // in MenuTree::properties
};

template <class Row>
struct Rows {
  Row const* first;
  std::uint32_t count;

  Row const* begin() const { return first; }
  Row const* end() const { return first + count; }
};

struct CompiledTree {
  std::vector<SymbolRules> symbols;  // by SymbolId
  std::vector<EffectiveProperty> properties;
  std::vector<SymbolId> members;
  std::vector<MenuNode> nodes;     // by EntryId
  std::vector<Selection> selects;  // by target, then in the order of the text
  std::vector<Selection> implies;
  SymbolId modules = symbolNo;

  Rows<EffectiveProperty> propertiesOf(SymbolId symbol) const {
    return {properties.data() + symbols[symbol].firstProperty, symbols[symbol].propertyCount};
  }
  Rows<SymbolId> membersOf(SymbolId choice) const {
    return {members.data() + symbols[choice].firstMember, symbols[choice].memberCount};
  }
};

// Works out inherited dependencies, the menu's structure, choices and selections. Types that only follow from a choice
// are entered into the tree's symbol table; expressions are added to its pool.
CompiledTree compile(MenuTree& tree);

// A tree that is still being read: every property under the condition that it states itself. There are no dependencies,
// no selections and no members of choices, and nodes is empty. Linear in the size of the tree.
CompiledTree compileAsDeclared(MenuTree const& tree);

// The next entry in the order of the menu, noEntry behind the last one. The order of the text is another one only in
// name, as structure is found among successors.
EntryId following(CompiledTree const& compiled, EntryId id);

}  // namespace kconfig
