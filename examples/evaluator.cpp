// A small evaluator of the model's own expressions. The library keeps trees of constants, references and operations
// and decides nothing; what an operator means is for the application to say, here with numbers alone.
#include <algorithm>
#include <groundwork/Unicode.hpp>
#include <iostream>
#include <map>
#include <plinth/Model.hpp>
#include <stdexcept>
#include <string>
#include <tessel_config_datamodel/expr/BooleanConstant.hpp>
#include <tessel_config_datamodel/expr/BooleanOperation.hpp>
#include <tessel_config_datamodel/expr/NumericConstant.hpp>
#include <tessel_config_datamodel/expr/NumericOperation.hpp>
#include <tessel_config_datamodel/expr/Ref.hpp>
#include <tessel_config_datamodel/expr/UntypedOperation.hpp>
#include <vector>

namespace expr = tessel::internal::config::expr;
using expr::Operator;
using Variables = std::map<std::u16string, double>;

namespace {

double valueOf(Operator op, std::vector<double> const& x) {
  auto const isTrue = [](double value) { return value != 0; };
  switch (op) {
    case Operator::PLUS:
      return x.at(0) + x.at(1);
    case Operator::MINUS:
      return x.size() == 1 ? -x[0] : x.at(0) - x.at(1);
    case Operator::LT:
      return x.at(0) < x.at(1) ? 1 : 0;
    case Operator::AND:
      return std::all_of(x.begin(), x.end(), isTrue) ? 1 : 0;
    case Operator::OR:
      return std::any_of(x.begin(), x.end(), isTrue) ? 1 : 0;
    case Operator::NOT:
      return isTrue(x.at(0)) ? 0 : 1;
    default:
      throw std::invalid_argument("this evaluator knows no operator " + std::to_string(static_cast<int>(op)));
  }
}

// element_cast gives an empty handle where the element is of another class.
double evaluate(expr::ExprValue const& node, Variables const& variables) {
  if (auto const number = plinth::element_cast<expr::NumericConstant>(node)) return number->getValue();
  if (auto const boolean = plinth::element_cast<expr::BooleanConstant>(node)) return boolean->getValue() ? 1 : 0;
  if (auto const reference = plinth::element_cast<expr::Ref>(node)) {
    auto const found = variables.find(reference->getSymbol());
    if (found != variables.end()) return found->second;
    throw std::invalid_argument("there is no variable '" + groundwork::toUtf8(reference->getSymbol()) + "'");
  }
  auto const operation = plinth::element_cast<expr::Operation>(node);
  if (!operation) throw std::invalid_argument("this evaluator knows numbers, booleans and references");
  auto& operands = *operation->getOperands();
  if (operation->getOperator() == Operator::IF_THEN) {  // the one operator that leaves an operand alone
    return evaluate(operands.at(0), variables) != 0 ? evaluate(operands.at(1), variables) : 0;
  }
  std::vector<double> values;
  for (expr::ExprValue const& operand : operands) values.push_back(evaluate(operand, variables));
  double const result = valueOf(operation->getOperator(), values);
  // Operations have room for their last result, so that others can show it.
  if (auto const numeric = plinth::element_cast<expr::NumericOperation>(operation)) numeric->setValue(result);
  if (auto const logical = plinth::element_cast<expr::BooleanOperation>(operation)) logical->setValue(result != 0);
  return result;
}

template <class Operation>
expr::ExprValue operation(Operator op, std::vector<expr::ExprValue> const& operands) {
  auto const made = Operation::create(operands.front()->getModel());
  made->setOperator(op);
  for (expr::ExprValue const& operand : operands) made->getOperandsMutable()->add(operand);  // now contained in it
  return made;
}

}  // namespace

int main() {
  auto const model = plinth::Model::create();
  auto const number = [&](double value) -> expr::ExprValue {
    auto const constant = expr::NumericConstant::create(model);
    constant->setValue(value);
    return constant;
  };
  auto const variable = [&](char16_t const* name) -> expr::ExprValue {
    auto const reference = expr::Ref::create(model);
    reference->setSymbol(name);
    return reference;
  };

  // if speed < 100 and not locked: speed + 5
  auto const slow = operation<expr::BooleanOperation>(Operator::LT, {variable(u"speed"), number(100)});
  auto const open = operation<expr::BooleanOperation>(Operator::NOT, {variable(u"locked")});
  auto const faster = operation<expr::NumericOperation>(Operator::PLUS, {variable(u"speed"), number(5)});
  auto const both = operation<expr::BooleanOperation>(Operator::AND, {slow, open});
  auto const rule = operation<expr::UntypedOperation>(Operator::IF_THEN, {both, faster});

  for (Variables const& variables :
       {Variables{{u"speed", 80}, {u"locked", 0}}, Variables{{u"speed", 80}, {u"locked", 1}},
        Variables{{u"speed", 120}, {u"locked", 0}}}) {
    double const result = evaluate(rule, variables);
    std::cout << "speed " << variables.at(u"speed") << ", locked " << variables.at(u"locked") << ": " << result
              << "; the condition was "
              << (plinth::element_cast<expr::BooleanOperation>(both)->getValue() ? "true" : "false") << '\n';
  }
  try {
    evaluate(rule, {{u"speed", 80}});
  } catch (std::invalid_argument const& error) {
    std::cout << error.what() << '\n';
  }
}
