// Brings the values that evaluation has worked out into the state, where they differ from those that stand there, and
// keeps in short form what it has written, so that the next time only differences are touched. Used inside a
// transaction of the caller, who restores the short form when that is rolled back. It refers to definitions, their
// compiled form and states that live longer. The model's thread.
#pragma once

#include <string_view>
#include <vector>

#include "evaluation/Evaluator.hpp"
#include "state/StateBuilder.hpp"

namespace kconfig {

// What the state says of one symbol. The text lives as long as tree and evaluator.
struct ShownValue {
  std::string_view text;  // of the value; of a choice the member
  bool visible = true;
  bool written = true;
  bool asked = false;
  bool outOfRange = false;
};

using ShownValues = std::vector<ShownValue>;  // by SymbolId

class StateWriter {
 public:
  StateWriter(Definitions const& definitions, CompiledTree const& compiled, States const& states);

  // Linear in the tree, and costly only where something changed. The values of the first call, which is without a
  // profile, are the defaults from then on.
  void write(Evaluator& evaluator, UserValues const& users);

  ShownValues const& shown() const { return m_shown; }
  void restore(ShownValues shown) { m_shown = std::move(shown); }
  // How many parameters say something else than shown(): none, unless somebody else wrote to the state.
  std::size_t countDeviations() const;

 private:
  ShownValue valueOf(SymbolId symbol, Evaluator& evaluator, UserValues const& users) const;
  void writeParam(SymbolId symbol, ShownValue const& value);
  void writeDefault(SymbolId symbol, bool asked);
  void writeMessage(SymbolId symbol, bool outOfRange);
  void writeConstraints(SymbolId symbol, Evaluator& evaluator);
  void writeOptions(SymbolId symbol, std::vector<bool> const& enabled);
  void writeCategories(Evaluator& evaluator);

  Definitions const& m_definitions;
  CompiledTree const& m_compiled;
  States const& m_states;
  ShownValues m_shown;
  ShownValues m_defaults;
};

}  // namespace kconfig
