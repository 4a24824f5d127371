#include "profiles/ProfileStore.hpp"

#include <algorithm>
#include <optional>
#include <tessel_config_datamodel/data/BooleanParamData.hpp>
#include <tessel_config_datamodel/data/EnumParamData.hpp>
#include <tessel_config_datamodel/data/IntegerParamData.hpp>
#include <tessel_config_datamodel/data/StringParamData.hpp>
#include <tessel_config_datamodel/ext/ConfigEntry.hpp>

#include "evaluation/Comparison.hpp"
#include "loading/ModelText.hpp"
#include "state/ValueData.hpp"

namespace kconfig {

namespace {

constexpr std::string_view names[] = {"n", "m", "y"};

std::string_view textOf(const UserValue& value, SymbolType type, const SymbolTable& symbols) {
  if (value.member != noSymbol) {
    return symbols[value.member].name;
  }
  return isLogical(type) ? names[static_cast<std::size_t>(value.tristate)] : value.text;
}

std::optional<Tristate> levelOf(std::string_view text) {
  const auto name = std::find(std::begin(names), std::end(names), text);
  return name != std::end(names) ? std::optional<Tristate>(static_cast<Tristate>(name - std::begin(names)))
                                 : std::nullopt;
}

class ProfileReading {
 public:
  ProfileReading(Definitions& definitions, const CompiledTree& compiled)
      : m_tree(definitions.tree), m_definitions(definitions), m_users(definitions.tree, compiled) {}

  void take(SymbolId symbol, const data::ParamData& data);
  UserValues finish() { return std::move(m_users); }

 private:
  void takeOption(const data::EnumParamData& data, UserValue& value) const;

  MenuTree& m_tree;
  const Definitions& m_definitions;
  UserValues m_users;
};

void ProfileReading::take(SymbolId symbol, const data::ParamData& data) {
  UserValue value;
  value.present = data->getEnabled();
  if (const auto& place = data->getHelp()) {
    value.line = static_cast<std::uint32_t>(leadingNumber(fromModel(place->getTopic()), 10));
  }
  if (const auto boolean = plinth::element_cast<data::BooleanParamData>(data)) {
    value.tristate = boolean->getValue() ? Tristate::Yes : Tristate::No;
  } else if (const auto option = plinth::element_cast<data::EnumParamData>(data)) {
    takeOption(option, value);
  } else if (const auto number = plinth::element_cast<data::IntegerParamData>(data)) {
    const std::string spelled =
        data->getDescription() ? fromModel(*data->getDescription()) : std::to_string(number->getValue());
    value.text = m_tree.texts.intern(spelled);
  } else if (const auto string = plinth::element_cast<data::StringParamData>(data)) {
    value.text = m_tree.texts.intern(fromModel(string->getValue()));
  }
  m_users.restore(symbol, value);
}

// n, m or y. Of a choice also the member that is y; a line for the choice itself may have given it another value since.
void ProfileReading::takeOption(const data::EnumParamData& data, UserValue& value) const {
  const std::string text = fromModel(data->getValue());
  const auto level = levelOf(text);
  if (level) {
    value.tristate = *level;
    return;
  }
  value.member = m_tree.symbols.find(text);
  value.tristate = levelOf(data->getDescription() ? fromModel(*data->getDescription()) : "").value_or(Tristate::Yes);
}

}  // namespace

ext::ConfigProfile storeProfile(const ext::ConfigStore& store, std::string_view id, const Definitions& definitions,
                                const UserValues& users) {
  const plinth::Model model = store->getModel();
  plinth::Transaction transaction = model.beginTransaction();
  const ext::ConfigProfile profile = ext::ConfigProfile::create(model);
  profile->setId(toModel(id));
  profile->setName(toModel(id));
  store->getProfilesMutable()->insert(profile);
  const SymbolTable& symbols = definitions.tree.symbols;
  for (SymbolId symbol = 0; symbol < symbols.size(); ++symbol) {
    if (!definitions.params[symbol] || !users.isAsked(symbol)) {
      continue;
    }
    const UserValue& value = users[symbol];
    const std::string_view text = textOf(value, symbols[symbol].type, symbols);
    const data::ParamData data = createData(model, symbols[symbol]);
    setValue(data, text, symbols[symbol].type);
    data->setEnabled(value.present);
    if (isNumeric(symbols[symbol].type)) {
      data->setDescription(toModel(text));
    } else if (value.member != noSymbol) {
      data->setDescription(toModel(names[static_cast<std::size_t>(value.tristate)]));
    }
    tessel::internal::util::DocRef place;
    place.setDocument(toModel(id));
    place.setTopic(toModel(std::to_string(value.line)));
    data->setHelp(place);
    const ext::ConfigEntry entry = ext::ConfigEntry::create(model);
    entry->setKey(definitions.params[symbol]->getKey());
    entry->setData(data);
    profile->getValuesMutable()->insert(entry);
  }
  transaction.commit();
  return profile;
}

UserValues readProfileValues(const ext::ConfigProfile& profile, Definitions& definitions,
                             const CompiledTree& compiled) {
  ProfileReading reading(definitions, compiled);
  for (SymbolId symbol = 0; symbol < definitions.tree.symbols.size(); ++symbol) {
    if (definitions.params[symbol]) {
      const ext::ConfigEntry entry = profile->getValues()->find(definitions.params[symbol]->getKey());
      if (entry && entry->hasData()) {
        reading.take(symbol, entry->getData());
      }
    }
  }
  return reading.finish();
}

}  // namespace kconfig
