// Hands the dependencies of menus, choices and conditional blocks down to the entries inside, and finds which entries
// lie below which. One object does one tree, from top to bottom without recursion, since entries can follow from each
// other in chains of any length. It refers to the tree that it works on.
#pragma once

#include <vector>

#include "evaluation/CompiledTree.hpp"
#include "evaluation/ExpressionRules.hpp"

namespace kconfig {

class Propagation {
 public:
  explicit Propagation(MenuTree& tree);

  void run();

  // The results: by property the condition, by entry the node, by symbol the lists of terms and members.
  std::vector<ExpressionId> conditions;
  std::vector<MenuNode> nodes;
  std::vector<Selection> selects;
  std::vector<Selection> implies;
  std::vector<std::vector<ExpressionId>> reverseTerms;
  std::vector<std::vector<ExpressionId>> directTerms;
  std::vector<std::vector<SymbolId>> members;
  std::vector<SymbolId> choiceOf;
  SymbolId modules;

 private:
  // An entry whose contents, or whose successors that depend on it, are being gone through.
  struct Step {
    EntryId entry;
    EntryId cursor = noEntry;  // what is done next
    EntryId last = noEntry;    // the last successor that was taken in
    ExpressionId base = noExpression;
    bool takesSuccessors = false;
  };

  void link();
  void gatherConditions(EntryId entry);
  ExpressionId ancestorVisibility(EntryId entry, ExpressionId condition);

  Step begin(EntryId entry);
  bool takesCursor(Step const& step);
  void moveOn(Step& step);
  void finish(Step const& step);

  void settleTypes(EntryId choice);
  void handDown(EntryId parent);
  void inherit(EntryId entry, ExpressionId inherited);
  void addMember(EntryId choice, EntryId member);
  void spliceContents(EntryId entry);

  Entry const& entryAt(EntryId id) const { return m_tree.entries[id]; }
  bool isChoice(EntryId id) const { return entryAt(id).kind == EntryKind::Choice; }

  MenuTree& m_tree;
  ExpressionPool& m_pool;
  ExpressionRules m_rules;
};

}  // namespace kconfig
