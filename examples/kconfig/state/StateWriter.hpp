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
  StateWriter(const Definitions& definitions, const CompiledTree& compiled, const States& states);

  // Linear in the tree, and costly only where something changed. The values of the first call, which is without a
  // profile, are the defaults from then on.
  void write(Evaluator& evaluator, const UserValues& users);

  const ShownValues& shown() const { return m_shown; }
  void restore(ShownValues shown) { m_shown = std::move(shown); }
  // How many parameters say something else than shown(): none, unless somebody else wrote to the state.
  std::size_t countDeviations() const;

 private:
  ShownValue valueOf(SymbolId symbol, Evaluator& evaluator, const UserValues& users) const;
  void writeParam(SymbolId symbol, const ShownValue& value);
  void writeDefault(SymbolId symbol, bool asked);
  void writeMessage(SymbolId symbol, bool outOfRange);
  void writeConstraints(SymbolId symbol, Evaluator& evaluator);
  void writeOptions(SymbolId symbol, const std::vector<bool>& enabled);
  void writeCategories(Evaluator& evaluator);

  const Definitions& m_definitions;
  const CompiledTree& m_compiled;
  const States& m_states;
  ShownValues m_shown;
  ShownValues m_defaults;
};

}  // namespace kconfig
