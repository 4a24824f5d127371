// Expressions of a tree as expression elements of the model, and back. Operands of && and || stay one list. What is
// written is new and in nobody's containment yet. Both refer to words that live longer; the model's thread.
#pragma once

#include <initializer_list>
#include <string_view>
#include <tessel_config_datamodel/expr/ExprValue.hpp>
#include <tessel_config_datamodel/expr/Operation.hpp>
#include <vector>

#include "language/MenuTree.hpp"
#include "loading/ModelTypes.hpp"

namespace kconfig {

class ExpressionWriter {
 public:
  ExpressionWriter(Lexicon const& words, plinth::Model model) : m_words(words), m_model(std::move(model)) {}

  // Of any expression but noExpression.
  expr::ExprValue write(ExpressionId id);
  expr::ExprValue writeSymbol(SymbolId id);
  expr::ExprValue writeText(std::string_view text);
  // values, in force as far as condition holds: IF_THEN of both, or the one value itself without a condition.
  expr::ExprValue writeConditional(ExpressionId condition, std::vector<expr::ExprValue> const& values);

 private:
  void addOperands(expr::Operation const& operation, std::vector<expr::ExprValue> const& operands);

  Lexicon const& m_words;
  plinth::Model m_model;
};

// What stands under a FollowsDef, taken apart: a condition, noExpression where there is none, and what it governs.
struct ConditionalElements {
  ExpressionId condition = noExpression;
  std::vector<expr::ExprValue> values;
};

class ExpressionReader {
 public:
  // Symbols and expressions that are read are entered into the words.
  explicit ExpressionReader(Lexicon& words) : m_words(words) {}

  ExpressionId read(expr::ExprValue const& value);
  SymbolId readSymbol(expr::ExprValue const& value);
  ConditionalElements readConditional(expr::ExprValue const& value);

 private:
  ExpressionId readOperation(expr::Operation const& operation);

  Lexicon& m_words;
};

// The text of a StringConstant; empty for any other element.
std::string textOf(expr::ExprValue const& value);

}  // namespace kconfig
