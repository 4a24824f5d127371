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
  for (const OperatorPair& pair : operators) {
    if (pair.language == op) {
      return pair.model;
    }
  }
  throw std::logic_error("the expression has no operator");
}

Operator fromModel(expr::Operator op) {
  for (const OperatorPair& pair : operators) {
    if (pair.model == op) {
      return pair.language;
    }
  }
  throw std::runtime_error("the definitions have an expression with an operator that conditions do not know");
}

bool isIfThen(const expr::Operation& operation) {
  return operation && operation->getOperator() == expr::Operator::IF_THEN;
}

}  // namespace

expr::ExprValue ExpressionWriter::write(ExpressionId id) {
  const ExpressionPool& pool = m_tree.expressions;
  const Operator op = pool.op(id);
  if (op == Operator::Symbol) {
    return writeSymbol(pool.left(id));
  }
  const expr::BooleanOperation operation = expr::BooleanOperation::create(m_model);
  operation->setOperator(toModel(op));
  std::vector<expr::ExprValue> operands;
  if (isList(op)) {
    for (const ExpressionId operand : pool.operands(id)) {
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
  const Symbol& symbol = m_tree.symbols[id];
  if (id == symbolNo || id == symbolYes) {
    const expr::BooleanConstant constant = expr::BooleanConstant::create(m_model);
    constant->setValue(id == symbolYes);
    return constant;
  }
  if (symbol.kind == SymbolKind::Constant && id != symbolMod) {
    return writeText(symbol.name);
  }
  const expr::Ref reference = expr::Ref::create(m_model);
  reference->setSymbol(kconfig::toModel(symbol.name));
  return reference;
}

expr::ExprValue ExpressionWriter::writeText(std::string_view text) {
  const expr::StringConstant constant = expr::StringConstant::create(m_model);
  constant->setValue(kconfig::toModel(text));
  return constant;
}

expr::ExprValue ExpressionWriter::writeConditional(ExpressionId condition, const std::vector<expr::ExprValue>& values) {
  if (condition == noExpression && values.size() == 1) {
    return values.front();
  }
  const expr::UntypedOperation operation = expr::UntypedOperation::create(m_model);
  operation->setOperator(expr::Operator::IF_THEN);
  std::vector<expr::ExprValue> operands{condition != noExpression ? write(condition) : writeSymbol(symbolYes)};
  operands.insert(operands.end(), values.begin(), values.end());
  addOperands(operation, operands);
  return operation;
}

void ExpressionWriter::addOperands(const expr::Operation& operation, const std::vector<expr::ExprValue>& operands) {
  auto& list = *operation->getOperandsMutable();
  for (const expr::ExprValue& operand : operands) {
    list.add(operand);
  }
  operation->setArity(static_cast<double>(operands.size()));
}

ExpressionId ExpressionReader::read(const expr::ExprValue& value) {
  if (const auto operation = plinth::element_cast<expr::Operation>(value)) {
    return readOperation(operation);
  }
  return m_tree.expressions.symbol(readSymbol(value));
}

ExpressionId ExpressionReader::readOperation(const expr::Operation& operation) {
  const Operator op = fromModel(operation->getOperator());
  auto& operands = *operation->getOperandsMutable();
  if (isComparison(op)) {
    const SymbolId left = readSymbol(operands.at(0));
    return m_tree.expressions.comparison(op, left, readSymbol(operands.at(1)));
  }
  if (op == Operator::Not) {
    return m_tree.expressions.negation(read(operands.at(0)));
  }
  std::vector<ExpressionId> list;
  for (const expr::ExprValue& operand : operands) {
    list.push_back(read(operand));
  }
  return m_tree.expressions.list(op, list);
}

SymbolId ExpressionReader::readSymbol(const expr::ExprValue& value) {
  if (const auto reference = plinth::element_cast<expr::Ref>(value)) {
    return m_tree.symbols.plain(m_tree.texts.intern(kconfig::fromModel(reference->getSymbol())));
  }
  if (const auto constant = plinth::element_cast<expr::BooleanConstant>(value)) {
    return constant->getValue() ? symbolYes : symbolNo;
  }
  return m_tree.symbols.constant(m_tree.texts.intern(textOf(value)));
}

ConditionalElements ExpressionReader::readConditional(const expr::ExprValue& value) {
  ConditionalElements parts;
  const auto operation = plinth::element_cast<expr::Operation>(value);
  if (!isIfThen(operation)) {
    parts.values.push_back(value);
    return parts;
  }
  auto& operands = *operation->getOperandsMutable();
  for (std::size_t at = 1; at < operands.size(); ++at) {
    parts.values.push_back(operands.at(at));
  }
  const ExpressionId condition = read(operands.at(0));
  // Several values need the operation to hold them, also without a condition: then y stands in its place.
  const bool none = parts.values.size() > 1 && m_tree.expressions.isSymbol(condition, symbolYes);
  parts.condition = none ? noExpression : condition;
  return parts;
}

std::string textOf(const expr::ExprValue& value) {
  const auto constant = plinth::element_cast<expr::StringConstant>(value);
  return constant ? kconfig::fromModel(constant->getValue()) : std::string();
}

}  // namespace kconfig
