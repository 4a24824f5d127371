#include "state/StateWriter.hpp"

#include <algorithm>
#include <limits>
#include <tessel_config_datamodel/data/EnumParamData.hpp>
#include <tessel_config_datamodel/data/IntegerParamData.hpp>
#include <tessel_config_datamodel/runtime/MetaMessage.hpp>

#include "evaluation/Output.hpp"
#include "loading/ModelText.hpp"
#include "state/ValueData.hpp"

namespace kconfig {

namespace {

constexpr std::uint32_t warningSeverity = 1;

bool isSame(ShownValue const& a, ShownValue const& b) {
  return a.text == b.text && a.visible == b.visible && a.written == b.written && a.asked == b.asked &&
         a.outOfRange == b.outOfRange;
}

}  // namespace

StateWriter::StateWriter(Definitions const& definitions, CompiledTree const& compiled, States const& states)
    : m_definitions(definitions), m_compiled(compiled), m_states(states), m_shown(definitions.tree.symbols.size()) {}

void StateWriter::write(Evaluator& evaluator, UserValues const& users) {
  for (SymbolId symbol = 0; symbol < m_shown.size(); ++symbol) {
    if (!m_states.params[symbol]) {
      continue;
    }
    ShownValue const value = valueOf(symbol, evaluator, users);
    if (m_defaults.empty() || !isSame(value, m_shown[symbol])) {
      writeParam(symbol, value);
    }
    writeConstraints(symbol, evaluator);
  }
  writeCategories(evaluator);
  if (m_defaults.empty()) {
    m_defaults = m_shown;
  }
}

ShownValue StateWriter::valueOf(SymbolId symbol, Evaluator& evaluator, UserValues const& users) const {
  SymbolValue const& worked = evaluator[symbol];
  ShownValue value;
  if (m_definitions.tree.symbols[symbol].kind == SymbolKind::Choice && worked.chosen != noSymbol) {
    value.text = m_definitions.tree.symbols[worked.chosen].name;
  } else {
    value.text = evaluator.textOf(symbol);
  }
  value.visible = worked.visible != Tristate::No;
  value.written = worked.written;
  value.asked = users.isAsked(symbol);
  value.outOfRange = worked.outOfRange;
  return value;
}

void StateWriter::writeParam(SymbolId symbol, ShownValue const& value) {
  runtime::ParamState const& param = m_states.params[symbol];
  ShownValue const& before = m_shown[symbol];
  if (value.text != before.text || !param->getHasCachedCode()) {
    setValue(param->getData(), value.text, m_definitions.tree.symbols[symbol].type);
    param->setCachedCode(toModel(value.text));
    param->setHasCachedCode(true);
  }
  if (value.visible != before.visible) {
    param->setEffectiveVisible(value.visible);
    param->getData()->setVisible(value.visible);
  }
  param->setAwake(value.written);
  if (value.asked != before.asked) {
    param->setUserModified(value.asked);
    writeDefault(symbol, value.asked);
  }
  if (value.outOfRange != before.outOfRange) {
    writeMessage(symbol, value.outOfRange);
  }
  m_shown[symbol] = value;
}

// What the value is without a profile is told where a profile says something about it.
void StateWriter::writeDefault(SymbolId symbol, bool asked) {
  runtime::ParamState const& param = m_states.params[symbol];
  if (param->hasDefault()) {
    param->getDefault()->destroy();
  }
  if (asked && !m_defaults.empty()) {
    Symbol const& row = m_definitions.tree.symbols[symbol];
    data::ParamData const data = createData(param->getModel(), row);
    setValue(data, m_defaults[symbol].text, row.type);
    param->setDefault(data);
  }
}

void StateWriter::writeMessage(SymbolId symbol, bool outOfRange) {
  runtime::ParamState const& param = m_states.params[symbol];
  while (param->hasMessages()) {
    param->getMessagesMutable()->at(0)->destroy();
  }
  if (outOfRange) {
    runtime::MetaMessage const message = runtime::MetaMessage::create(param->getModel());
    message->setCode(u"range");
    message->setSeverity(warningSeverity);
    message->setText(u"The value that the profile gives is out of range and does not count.");
    param->getMessagesMutable()->add(message);
  }
}

void StateWriter::writeConstraints(SymbolId symbol, Evaluator& evaluator) {
  Symbol const& row = m_definitions.tree.symbols[symbol];
  if (isNumeric(row.type)) {
    using Number = std::numeric_limits<long long>;
    Limits const limits = evaluator.limitsOf(symbol).value_or(Limits{Number::min(), Number::max()});
    setLimits(m_states.params[symbol]->getData(), limits.lower, limits.upper);
  } else if (row.kind == SymbolKind::Choice) {
    std::vector<bool> enabled;
    for (SymbolId const member : m_compiled.membersOf(symbol)) {
      enabled.push_back(evaluator[member].visible != Tristate::No);
    }
    writeOptions(symbol, enabled);
  } else if (row.type == SymbolType::Tristate) {
    writeOptions(symbol, {true, evaluator[m_compiled.modules].tristate != Tristate::No, true});
  }
}

void StateWriter::writeOptions(SymbolId symbol, std::vector<bool> const& enabled) {
  data::ParamData const data = m_states.params[symbol]->getData();
  auto const enumeration = plinth::element_cast<data::EnumParamData>(data);
  auto& options = *enumeration->getAllowedValuesMutable();
  auto const agrees = [](data::EnumOption const& option, bool wanted) { return option.getEnabled() == wanted; };
  if (!std::equal(options.begin(), options.end(), enabled.begin(), enabled.end(), agrees)) {
    std::vector<data::EnumOption> changed = options.values();
    for (std::size_t at = 0; at < changed.size() && at < enabled.size(); ++at) {
      changed[at].setEnabled(enabled[at]);
    }
    options.assign(std::move(changed));
  }
}

void StateWriter::writeCategories(Evaluator& evaluator) {
  for (EntryId id = 0; id < m_states.categories.size(); ++id) {
    runtime::CategoryState const& category = m_states.categories[id];
    if (category && id != rootEntry) {
      category->setEffectiveVisible(isShown(m_compiled.nodes[id], evaluator));
    }
  }
}

std::size_t StateWriter::countDeviations() const {
  std::size_t count = 0;
  for (SymbolId symbol = 0; symbol < m_shown.size(); ++symbol) {
    runtime::ParamState const& param = m_states.params[symbol];
    ShownValue const& value = m_shown[symbol];
    count += param && (fromModel(param->getCachedCode()) != value.text || param->getAwake() != value.written ||
                       param->getEffectiveVisible() != value.visible || param->getUserModified() != value.asked ||
                       param->hasDefault() != (value.asked && !m_defaults.empty()))
                 ? 1
                 : 0;
  }
  return count;
}

}  // namespace kconfig
