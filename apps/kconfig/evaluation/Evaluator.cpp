#include "evaluation/Evaluator.hpp"

#include <cstdio>

#include "evaluation/Comparison.hpp"

namespace kconfig {

namespace {

constexpr int baseOf(SymbolType type) { return type == SymbolType::Integer ? 10 : 16; }

}  // namespace

Evaluator::Evaluator(MenuTree const& tree, CompiledTree const& compiled, EvaluationOrder const& order)
    : m_tree(tree), m_compiled(compiled), m_order(order) {}

void Evaluator::evaluate(UserValues const& users) {
  reset(users);
  calculate(m_compiled.modules);
  bool confirmed = true;
  for (SymbolId const symbol : m_order.symbols) {
    calculate(symbol);
    confirmed = confirmed && isAsAsked(symbol);
  }
  dropOutOfRange();
  if (confirmed && !m_order.menu.empty()) {
    evaluateAgain();
  }
  for (SymbolId const symbol : m_order.symbols) {
    calculate(symbol);
  }
}

// Where the user has asked for just what came out all is worked out a second time, with what the first time has left
// behind: members of a choice can become part of the file by it, and the values of a loop can change. What no entry of
// the menu leads to stays as it is.
void Evaluator::evaluateAgain() {
  forgetAll();
  calculate(m_compiled.modules);
  for (SymbolId const symbol : m_order.menu) {
    calculate(symbol);
  }
  m_valid.assign(m_valid.size(), true);
}

bool Evaluator::isAsAsked(SymbolId symbol) const {
  SymbolValue const& value = m_values[symbol];
  UserValue const& asked = m_users[symbol];
  if (isChoice(symbol) || m_tree.symbols[symbol].automatic) {
    return true;
  }
  if (!asked.present || !value.written) {
    return asked.present == value.written;
  }
  return isLogical(typeOf(symbol)) ? asked.tristate == value.tristate : asked.text == value.text;
}

void Evaluator::forgetAll() {
  m_valid.assign(m_valid.size(), false);
  for (SymbolId const constant : {symbolNo, symbolMod, symbolYes}) {
    m_valid[constant] = true;
  }
}

void Evaluator::reset(UserValues const& users) {
  SymbolId const count = m_tree.symbols.size();
  m_values.assign(count, SymbolValue());
  m_valid.resize(count);
  forgetAll();
  m_users.resize(count);
  for (SymbolId symbol = 0; symbol < count; ++symbol) {
    m_users[symbol] = users[symbol];
  }
  for (SymbolId const constant : {symbolNo, symbolMod, symbolYes}) {
    m_values[constant].tristate = static_cast<Tristate>(constant);
    m_values[constant].text = m_tree.symbols[constant].name;
  }
}

// A calculation that reaches itself again finds the value as it stands at that moment.
void Evaluator::calculate(SymbolId symbol) {
  if (m_valid[symbol] || m_depth == deepest) {
    return;
  }
  m_valid[symbol] = true;
  SymbolType const type = typeOf(symbol);
  SymbolValue& value = m_values[symbol];
  if (type == SymbolType::Unknown) {
    value.text = m_tree.symbols[symbol].name;
    return;
  }
  ++m_depth;
  value.written = value.written && isMember(symbol);
  calculateVisibility(symbol);
  value.text = {};
  value.tristate = Tristate::No;
  value.origin = Origin::Nothing;
  value.source = noProperty;
  if (isLogical(type)) {
    calculateLogical(symbol);
  } else {
    calculateText(symbol);
  }
  if (isChoice(symbol)) {
    markMembersWritten(symbol);
  }
  if (m_tree.symbols[symbol].automatic) {
    value.written = false;
  }
  --m_depth;
}

void Evaluator::calculateVisibility(SymbolId symbol) {
  SymbolRules const& rules = m_compiled.symbols[symbol];
  SymbolValue& value = m_values[symbol];
  Tristate visible = Tristate::No;
  for (EffectiveProperty const& property : m_compiled.propertiesOf(symbol)) {
    if (property.kind != PropertyKind::Prompt) {
      continue;
    }
    Tristate shown = valueOf(property.condition);
    // While one member of a choice is y, those that could only be m are hidden.
    if (rules.choice != noSymbol && typeOf(symbol) == SymbolType::Tristate && shown == Tristate::Mod &&
        m_values[rules.choice].tristate == Tristate::Yes) {
      shown = Tristate::No;
    }
    visible = either(visible, shown);
  }
  if (visible == Tristate::Mod && (typeOf(symbol) != SymbolType::Tristate || !modulesOn())) {
    visible = Tristate::Yes;
  }
  value.visible = visible;
  if (rules.choice != noSymbol) {
    return;
  }
  value.direct = limited(symbol, valueOf(rules.direct));
  value.reverse = rules.reverse != noExpression ? limited(symbol, valueOf(rules.reverse)) : Tristate::No;
  value.implied = rules.implied != noExpression && value.direct != Tristate::No
                      ? limited(symbol, valueOf(rules.implied))
                      : Tristate::No;
}

// m is y for a symbol that can't be m.
Tristate Evaluator::limited(SymbolId symbol, Tristate value) const {
  return value == Tristate::Mod && effectiveType(symbol) == SymbolType::Boolean ? Tristate::Yes : value;
}

SymbolType Evaluator::effectiveType(SymbolId symbol) const {
  SymbolType const type = typeOf(symbol);
  bool const restricted = (isMember(symbol) && m_values[symbol].visible == Tristate::Yes) || !modulesOn();
  return type == SymbolType::Tristate && restricted ? SymbolType::Boolean : type;
}

void Evaluator::calculateLogical(SymbolId symbol) {
  SymbolValue& value = m_values[symbol];
  Tristate result = Tristate::No;
  if (isMember(symbol) && value.visible == Tristate::Yes) {
    result = m_values[m_compiled.symbols[symbol].choice].chosen == symbol ? Tristate::Yes : Tristate::No;
    value.origin = Origin::Choice;
  } else {
    result = askedOrDefault(symbol);
    if (value.reverse > result) {
      result = value.reverse;
      value.origin = isChoice(symbol) ? value.origin : Origin::Selected;
    }
  }
  if (result == Tristate::Mod && (effectiveType(symbol) == SymbolType::Boolean || value.implied == Tristate::Yes)) {
    result = Tristate::Yes;
  }
  value.tristate = result;
  value.chosen = noSymbol;
  if (isChoice(symbol) && result == Tristate::Yes) {
    chooseMember(symbol);
  }
}

// What the user wants, where he may want it; else the first default in force, and what others suggest.
Tristate Evaluator::askedOrDefault(SymbolId symbol) {
  SymbolValue& value = m_values[symbol];
  value.written = value.written || value.visible != Tristate::No || value.reverse != Tristate::No;
  if (value.visible != Tristate::No && m_users[symbol].present) {
    value.origin = Origin::User;
    return both(m_users[symbol].tristate, value.visible);
  }
  if (isChoice(symbol)) {
    return Tristate::No;
  }
  Tristate result = Tristate::No;
  if (EffectiveProperty const* property = firstInForce(symbol, PropertyKind::Default)) {
    value.written = true;
    value.origin = Origin::Default;
    value.source = property->source;
    result = both(valueOf(property->value), valueOf(property->condition));
  }
  if (value.implied != Tristate::No) {
    value.written = true;
    value.origin = value.implied > result ? Origin::Implied : value.origin;
    result = either(result, value.implied);
  }
  return result;
}

void Evaluator::calculateText(SymbolId symbol) {
  SymbolValue& value = m_values[symbol];
  value.written = value.visible != Tristate::No;
  if (value.written && m_users[symbol].present) {
    value.origin = Origin::User;
    value.text = m_users[symbol].text;
  } else if (EffectiveProperty const* property = firstInForce(symbol, PropertyKind::Default)) {
    if (m_tree.expressions.op(property->value) == Operator::Symbol) {
      value.written = true;
      value.origin = Origin::Default;
      value.source = property->source;
      SymbolId const other = m_tree.expressions.left(property->value);
      calculate(other);
      value.text = textTakenFrom(other);
    }
  }
  clampToRange(symbol);
}

// A text can take over a text or a constant. Of a bool or tristate symbol it gets n, whatever the symbol's value.
std::string_view Evaluator::textTakenFrom(SymbolId symbol) const {
  return isLogical(typeOf(symbol)) ? "n" : m_values[symbol].text;
}

void Evaluator::chooseMember(SymbolId choice) {
  for (SymbolId const member : m_compiled.membersOf(choice)) {
    calculateVisibility(member);
  }
  SymbolId const wanted = m_users[choice].member;
  bool const possible = wanted != noSymbol && m_values[wanted].visible != Tristate::No;
  SymbolId const chosen = possible ? wanted : defaultMember(choice);
  m_values[choice].chosen = chosen;
  if (chosen == noSymbol) {
    m_values[choice].tristate = Tristate::No;
  }
}

SymbolId Evaluator::defaultMember(SymbolId choice) {
  for (EffectiveProperty const& property : m_compiled.propertiesOf(choice)) {
    if (property.kind == PropertyKind::Default && valueOf(property.condition) != Tristate::No) {
      SymbolId const member = m_tree.expressions.left(property.value);
      if (m_values[member].visible != Tristate::No) {
        return member;
      }
    }
  }
  for (SymbolId const member : m_compiled.membersOf(choice)) {
    if (m_values[member].visible != Tristate::No) {
      return member;
    }
  }
  return noSymbol;
}

void Evaluator::markMembersWritten(SymbolId choice) {
  if (m_values[choice].written) {
    for (SymbolId const member : m_compiled.membersOf(choice)) {
      m_values[member].written = m_values[member].written || m_values[member].visible != Tristate::No;
    }
  }
}

// Ranges

void Evaluator::clampToRange(SymbolId symbol) {
  SymbolType const type = typeOf(symbol);
  EffectiveProperty const* range = rangeInForce(symbol);
  if (range == nullptr) {
    return;
  }
  int const base = baseOf(type);
  long long const number = leadingNumber(m_values[symbol].text, base);
  long long bound = boundOf(range->lower, base);
  if (number >= bound) {
    bound = boundOf(range->upper, base);
    if (number <= bound) {
      return;
    }
  }
  char text[32];
  std::snprintf(text, sizeof text, type == SymbolType::Integer ? "%lld" : "0x%llx", bound);
  SymbolValue& value = m_values[symbol];
  value.text = m_texts.intern(text);
  value.origin = Origin::Range;
  value.source = range->source;
}

long long Evaluator::boundOf(SymbolId symbol, int base) {
  calculate(symbol);
  SymbolType const type = typeOf(symbol);
  if (isNumeric(type)) {
    base = baseOf(type);
  }
  return leadingNumber(isLogical(type) ? std::string_view() : m_values[symbol].text, base);
}

// A number out of its range counts as not given, once all values are known. Symbols that saw it keep the value that
// they worked out from it brought into range.
void Evaluator::dropOutOfRange() {
  for (SymbolId const symbol : m_order.visiting) {
    if (m_users[symbol].present && isNumeric(typeOf(symbol)) && !isMember(symbol) &&
        !isWithinRange(symbol, m_users[symbol].text)) {
      m_users[symbol].present = false;
      m_valid[symbol] = false;
      m_values[symbol].outOfRange = true;
    }
  }
}

// The upper bound of a number below the lower one is not looked at: to ask for it could settle a value too early.
bool Evaluator::isWithinRange(SymbolId symbol, std::string_view text) {
  EffectiveProperty const* range = rangeInForce(symbol);
  if (range == nullptr) {
    return true;
  }
  int const base = baseOf(typeOf(symbol));
  long long const number = leadingNumber(text, base);
  return number >= boundOf(range->lower, base) && number <= boundOf(range->upper, base);
}

std::optional<Limits> Evaluator::limitsOf(SymbolId symbol) {
  EffectiveProperty const* range = rangeInForce(symbol);
  if (range == nullptr) {
    return std::nullopt;
  }
  int const base = baseOf(typeOf(symbol));
  long long const lower = boundOf(range->lower, base);
  return Limits{lower, boundOf(range->upper, base)};
}

EffectiveProperty const* Evaluator::rangeInForce(SymbolId symbol) {
  return isNumeric(typeOf(symbol)) ? firstInForce(symbol, PropertyKind::Range) : nullptr;
}

// Conditions

EffectiveProperty const* Evaluator::firstInForce(SymbolId symbol, PropertyKind kind) {
  for (EffectiveProperty const& property : m_compiled.propertiesOf(symbol)) {
    if (property.kind == kind && valueOf(property.condition) != Tristate::No) {
      return &property;
    }
  }
  return nullptr;
}

Tristate Evaluator::valueOf(ExpressionId id) {
  ExpressionPool const& pool = m_tree.expressions;
  Operator const op = pool.op(id);
  switch (op) {
    case Operator::None:
      return Tristate::Yes;
    case Operator::Symbol:
      calculate(pool.left(id));
      return m_values[pool.left(id)].tristate;
    case Operator::Not:
    case Operator::And:
    case Operator::Or: {
      ++m_depth;
      Tristate const result = op == Operator::Not ? negated(valueOf(pool.operand(id))) : valueOfList(id);
      --m_depth;
      return result;
    }
    default:
      return compare(id) ? Tristate::Yes : Tristate::No;
  }
}

// Every operand is looked at: asking for values in another order could change those of a group.
Tristate Evaluator::valueOfList(ExpressionId id) {
  bool const all = m_tree.expressions.op(id) == Operator::And;
  Tristate result = all ? Tristate::Yes : Tristate::No;
  for (ExpressionId const operand : m_tree.expressions.operands(id)) {
    Tristate const value = valueOf(operand);
    result = all ? both(result, value) : either(result, value);
  }
  return result;
}

bool Evaluator::compare(ExpressionId id) {
  ExpressionPool const& pool = m_tree.expressions;
  SymbolId const left = pool.left(id);
  SymbolId const right = pool.right(id);
  calculate(left);
  calculate(right);
  return holds(pool.op(id), {textOf(left), typeOf(left)}, {textOf(right), typeOf(right)});
}

std::string_view Evaluator::textOf(SymbolId symbol) {
  SymbolValue const& value = m_values[symbol];
  if (!isLogical(typeOf(symbol))) {
    return value.text;
  }
  if (value.tristate == Tristate::Mod) {
    calculate(m_compiled.modules);
    return modulesOn() ? "m" : "n";
  }
  return value.tristate == Tristate::Yes ? "y" : "n";
}

}  // namespace kconfig
