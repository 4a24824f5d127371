// Works out the value of every symbol from what the user asked for and what the tree says: visibility, defaults,
// selections, choices and ranges. It refers to a tree and its compiled form, which live longer and are not changed, and
// owns the values. One evaluator is used from one thread at a time.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "evaluation/CompiledTree.hpp"
#include "evaluation/EvaluationOrder.hpp"
#include "evaluation/UserValues.hpp"
#include "language/StringPool.hpp"

namespace kconfig {

// Where a value comes from.
enum class Origin : std::uint8_t { Nothing, User, Default, Selected, Implied, Choice, Range };

struct SymbolValue {
  std::string_view text;  // of strings and numbers
  Tristate tristate = Tristate::No;
  Tristate visible = Tristate::No;
  Tristate direct = Tristate::Yes;  // how far its own dependencies hold
  Tristate reverse = Tristate::No;  // how far it is selected
  Tristate implied = Tristate::No;
  bool written = false;     // a configuration file has a line for it
  bool outOfRange = false;  // the user's value was and does not count
  Origin origin = Origin::Nothing;
  PropertyId source = noProperty;  // the default or range that gave the value
  SymbolId chosen = noSymbol;      // of a choice
};

struct Limits {
  long long lower;
  long long upper;
};

class Evaluator {
 public:
  Evaluator(MenuTree const& tree, CompiledTree const& compiled, EvaluationOrder const& order);

  // Works out all values anew. Linear in the size of the tree. Symbols that the order leaves out are worked out when
  // valueOf() asks for them.
  void evaluate(UserValues const& users);

  SymbolValue const& operator[](SymbolId symbol) const { return m_values[symbol]; }
  // The value of a condition after evaluate().
  Tristate valueOf(ExpressionId id);
  // A symbol's value as a text: y, m or n, the number, the string.
  std::string_view textOf(SymbolId symbol);
  // The bounds of a number's range that is in force, nothing where none is.
  std::optional<Limits> limitsOf(SymbolId symbol);
  // Whether a number lies within the symbol's range that is in force.
  bool isWithinRange(SymbolId symbol, std::string_view text);

 private:
  void reset(UserValues const& users);
  void forgetAll();
  void evaluateAgain();
  bool isAsAsked(SymbolId symbol) const;
  void calculate(SymbolId symbol);
  void calculateVisibility(SymbolId symbol);
  void calculateLogical(SymbolId symbol);
  Tristate askedOrDefault(SymbolId symbol);
  void calculateText(SymbolId symbol);
  std::string_view textTakenFrom(SymbolId symbol) const;
  void chooseMember(SymbolId choice);
  SymbolId defaultMember(SymbolId choice);
  void markMembersWritten(SymbolId choice);
  void clampToRange(SymbolId symbol);
  void dropOutOfRange();
  long long boundOf(SymbolId symbol, int base);
  EffectiveProperty const* rangeInForce(SymbolId symbol);
  EffectiveProperty const* firstInForce(SymbolId symbol, PropertyKind kind);
  Tristate limited(SymbolId symbol, Tristate value) const;
  SymbolType effectiveType(SymbolId symbol) const;
  Tristate valueOfList(ExpressionId id);
  bool compare(ExpressionId id);
  bool modulesOn() const { return m_values[m_compiled.modules].tristate != Tristate::No; }
  SymbolType typeOf(SymbolId symbol) const { return m_tree.symbols[symbol].type; }
  bool isMember(SymbolId symbol) const { return m_compiled.symbols[symbol].choice != noSymbol; }
  bool isChoice(SymbolId symbol) const { return m_tree.symbols[symbol].kind == SymbolKind::Choice; }

  static constexpr unsigned deepest = 6000;

  MenuTree const& m_tree;
  CompiledTree const& m_compiled;
  EvaluationOrder const& m_order;
  std::vector<SymbolValue> m_values;
  std::vector<UserValue> m_users;
  std::vector<bool> m_valid;
  StringPool m_texts;    // numbers that were brought into their range
  unsigned m_depth = 0;  // calculations and expressions inside each other
};

}  // namespace kconfig
