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

std::string_view textOf(UserValue const& value, SymbolType type, SymbolTable const& symbols) {
  if (value.member != noSymbol) {
    return symbols[value.member].name;
  }
  return isLogical(type) ? names[static_cast<std::size_t>(value.tristate)] : value.text;
}

std::optional<Tristate> levelOf(std::string_view text) {
  auto const name = std::find(std::begin(names), std::end(names), text);
  return name != std::end(names) ? std::optional<Tristate>(static_cast<Tristate>(name - std::begin(names)))
                                 : std::nullopt;
}

class ProfileReading {
 public:
  ProfileReading(Definitions& definitions, CompiledTree const& compiled)
      : m_tree(definitions.tree), m_users(definitions.tree, compiled) {}

  void take(SymbolId symbol, data::ParamData const& data);
  UserValues finish() { return std::move(m_users); }

 private:
  void takeOption(data::EnumParamData const& data, UserValue& value) const;

  MenuTree& m_tree;
  UserValues m_users;
};

void ProfileReading::take(SymbolId symbol, data::ParamData const& data) {
  UserValue value;
  value.present = data->getEnabled();
  if (auto const& place = data->getHelp()) {
    value.line = static_cast<std::uint32_t>(leadingNumber(fromModel(place->getTopic()), 10));
  }
  if (auto const boolean = plinth::element_cast<data::BooleanParamData>(data)) {
    value.tristate = boolean->getValue() ? Tristate::Yes : Tristate::No;
  } else if (auto const option = plinth::element_cast<data::EnumParamData>(data)) {
    takeOption(option, value);
  } else if (auto const number = plinth::element_cast<data::IntegerParamData>(data)) {
    std::string const spelled =
        data->getDescription() ? fromModel(*data->getDescription()) : std::to_string(number->getValue());
    value.text = m_tree.texts.intern(spelled);
  } else if (auto const string = plinth::element_cast<data::StringParamData>(data)) {
    value.text = m_tree.texts.intern(fromModel(string->getValue()));
  }
  m_users.restore(symbol, value);
}

// n, m or y. Of a choice also the member that is y; a line for the choice itself may have given it another value since.
void ProfileReading::takeOption(data::EnumParamData const& data, UserValue& value) const {
  std::string const text = fromModel(data->getValue());
  auto const level = levelOf(text);
  if (level) {
    value.tristate = *level;
    return;
  }
  value.member = m_tree.symbols.find(text);
  value.tristate = levelOf(data->getDescription() ? fromModel(*data->getDescription()) : "").value_or(Tristate::Yes);
}

}  // namespace

ext::ConfigProfile storeProfile(ext::ConfigStore const& store, std::string_view id, Definitions const& definitions,
                                UserValues const& users) {
  plinth::Model const model = store->getModel();
  plinth::Transaction transaction = model.beginTransaction();
  ext::ConfigProfile const profile = ext::ConfigProfile::create(model);
  profile->setId(toModel(id));
  profile->setName(toModel(id));
  store->getProfilesMutable()->insert(profile);
  SymbolTable const& symbols = definitions.tree.symbols;
  for (SymbolId symbol = 0; symbol < symbols.size(); ++symbol) {
    if (!definitions.params[symbol] || !users.isAsked(symbol)) {
      continue;
    }
    UserValue const& value = users[symbol];
    std::string_view const text = textOf(value, symbols[symbol].type, symbols);
    data::ParamData const data = createData(model, symbols[symbol]);
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
    ext::ConfigEntry const entry = ext::ConfigEntry::create(model);
    entry->setKey(definitions.params[symbol]->getKey());
    entry->setData(data);
    profile->getValuesMutable()->insert(entry);
  }
  transaction.commit();
  return profile;
}

UserValues readProfileValues(ext::ConfigProfile const& profile, Definitions& definitions,
                             CompiledTree const& compiled) {
  ProfileReading reading(definitions, compiled);
  for (SymbolId symbol = 0; symbol < definitions.tree.symbols.size(); ++symbol) {
    if (definitions.params[symbol]) {
      ext::ConfigEntry const entry = profile->getValues()->find(definitions.params[symbol]->getKey());
      if (entry && entry->hasData()) {
        reading.take(symbol, entry->getData());
      }
    }
  }
  return reading.finish();
}

}  // namespace kconfig
