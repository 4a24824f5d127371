#include "loading/ExpressionElements.hpp"

#include <stdexcept>
#include <tessel_config_datamodel/expr/BooleanConstant.hpp>
#include <tessel_config_datamodel/expr/BooleanOperation.hpp>
#include <tessel_config_datamodel/expr/Ref.hpp>
#include <tessel_config_datamodel/expr/StringConstant.hpp>
#include <tessel_config_datamodel/expr/UntypedOperation.hpp>

#include "loading/ModelText.hpp"

namespace kconfig {

namespace {

struct OperatorPair {
  Operator language;
  expr::Operator model;
};

constexpr OperatorPair operators[] = {{Operator::Not, expr::Operator::NOT},
                                      {Operator::And, expr::Operator::AND},
                                      {Operator::Or, expr::Operator::OR},
                                      {Operator::Equal, expr::Operator::EQ},
                                      {Operator::Unequal, expr::Operator::NOT_EQ},
                                      {Operator::Less, expr::Operator::LT},
                                      {Operator::LessEqual, expr::Operator::LT_EQ},
                                      {Operator::Greater, expr::Operator::GT},
                                      {Operator::GreaterEqual, expr::Operator::GT_EQ}};

expr::Operator toModel(Operator op) {
  for (OperatorPair const& pair : operators) {
    if (pair.language == op) {
      return pair.model;
    }
  }
  throw std::logic_error("the expression has no operator");
}

Operator fromModel(expr::Operator op) {
  for (OperatorPair const& pair : operators) {
    if (pair.model == op) {
      return pair.language;
    }
  }
  throw std::runtime_error("the definitions have an expression with an operator that conditions do not know");
}

bool isIfThen(expr::Operation const& operation) {
  return operation && operation->getOperator() == expr::Operator::IF_THEN;
}

}  // namespace

expr::ExprValue ExpressionWriter::write(ExpressionId id) {
  ExpressionPool const& pool = m_words.expressions;
  Operator const op = pool.op(id);
  if (op == Operator::Symbol) {
    return writeSymbol(pool.left(id));
  }
  expr::BooleanOperation const operation = expr::BooleanOperation::create(m_model);
  operation->setOperator(toModel(op));
  std::vector<expr::ExprValue> operands;
  if (isList(op)) {
    for (ExpressionId const operand : pool.operands(id)) {
      operands.push_back(write(operand));
    }
  } else if (op == Operator::Not) {
    operands.push_back(write(pool.operand(id)));
  } else {
    operands = {writeSymbol(pool.left(id)), writeSymbol(pool.right(id))};
  }
  addOperands(operation, operands);
  return operation;
}

expr::ExprValue ExpressionWriter::writeSymbol(SymbolId id) {
  Symbol const& symbol = m_words.symbols[id];
  if (id == symbolNo || id == symbolYes) {
    expr::BooleanConstant const constant = expr::BooleanConstant::create(m_model);
    constant->setValue(id == symbolYes);
    return constant;
  }
  if (symbol.kind == SymbolKind::Constant && id != symbolMod) {
    return writeText(symbol.name);
  }
  expr::Ref const reference = expr::Ref::create(m_model);
  reference->setSymbol(kconfig::toModel(symbol.name));
  return reference;
}

expr::ExprValue ExpressionWriter::writeText(std::string_view text) {
  expr::StringConstant const constant = expr::StringConstant::create(m_model);
  constant->setValue(kconfig::toModel(text));
  return constant;
}

expr::ExprValue ExpressionWriter::writeConditional(ExpressionId condition, std::vector<expr::ExprValue> const& values) {
  if (condition == noExpression && values.size() == 1) {
    return values.front();
  }
  expr::UntypedOperation const operation = expr::UntypedOperation::create(m_model);
  operation->setOperator(expr::Operator::IF_THEN);
  std::vector<expr::ExprValue> operands{condition != noExpression ? write(condition) : writeSymbol(symbolYes)};
  operands.insert(operands.end(), values.begin(), values.end());
  addOperands(operation, operands);
  return operation;
}

void ExpressionWriter::addOperands(expr::Operation const& operation, std::vector<expr::ExprValue> const& operands) {
  auto& list = *operation->getOperandsMutable();
  for (expr::ExprValue const& operand : operands) {
    list.add(operand);
  }
  operation->setArity(static_cast<double>(operands.size()));
}

ExpressionId ExpressionReader::read(expr::ExprValue const& value) {
  if (auto const operation = plinth::element_cast<expr::Operation>(value)) {
    return readOperation(operation);
  }
  return m_words.expressions.symbol(readSymbol(value));
}

ExpressionId ExpressionReader::readOperation(expr::Operation const& operation) {
  Operator const op = fromModel(operation->getOperator());
  auto& operands = *operation->getOperandsMutable();
  if (isComparison(op)) {
    SymbolId const left = readSymbol(operands.at(0));
    return m_words.expressions.comparison(op, left, readSymbol(operands.at(1)));
  }
  if (op == Operator::Not) {
    return m_words.expressions.negation(read(operands.at(0)));
  }
  std::vector<ExpressionId> list;
  for (expr::ExprValue const& operand : operands) {
    list.push_back(read(operand));
  }
  return m_words.expressions.list(op, list);
}

SymbolId ExpressionReader::readSymbol(expr::ExprValue const& value) {
  if (auto const reference = plinth::element_cast<expr::Ref>(value)) {
    return m_words.symbols.plain(m_words.texts.intern(kconfig::fromModel(reference->getSymbol())));
  }
  if (auto const constant = plinth::element_cast<expr::BooleanConstant>(value)) {
    return constant->getValue() ? symbolYes : symbolNo;
  }
  return m_words.symbols.constant(m_words.texts.intern(textOf(value)));
}

ConditionalElements ExpressionReader::readConditional(expr::ExprValue const& value) {
  ConditionalElements parts;
  auto const operation = plinth::element_cast<expr::Operation>(value);
  if (!isIfThen(operation)) {
    parts.values.push_back(value);
    return parts;
  }
  auto& operands = *operation->getOperandsMutable();
  for (std::size_t at = 1; at < operands.size(); ++at) {
    parts.values.push_back(operands.at(at));
  }
  ExpressionId const condition = read(operands.at(0));
  // Several values need the operation to hold them, also without a condition: then y stands in its place.
  bool const none = parts.values.size() > 1 && m_words.expressions.isSymbol(condition, symbolYes);
  parts.condition = none ? noExpression : condition;
  return parts;
}

std::string textOf(expr::ExprValue const& value) {
  auto const constant = plinth::element_cast<expr::StringConstant>(value);
  return constant ? kconfig::fromModel(constant->getValue()) : std::string();
}

}  // namespace kconfig
