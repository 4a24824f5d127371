#include "state/ValueData.hpp"

#include <limits>
#include <tessel_config_datamodel/data/BooleanParamData.hpp>
#include <tessel_config_datamodel/data/EnumParamData.hpp>
#include <tessel_config_datamodel/data/IntegerParamData.hpp>
#include <tessel_config_datamodel/data/StringParamData.hpp>

#include "evaluation/Comparison.hpp"
#include "loading/ModelText.hpp"

namespace kconfig {

data::ParamData createData(plinth::Model const& model, Symbol const& symbol) {
  if (symbol.kind == SymbolKind::Choice || symbol.type == SymbolType::Tristate) {
    return data::EnumParamData::create(model);
  }
  if (symbol.type == SymbolType::Boolean) {
    return data::BooleanParamData::create(model);
  }
  if (isNumeric(symbol.type)) {
    data::IntegerParamData const number = data::IntegerParamData::create(model);
    setLimits(number, std::numeric_limits<long long>::min(), std::numeric_limits<long long>::max());
    return number;
  }
  return data::StringParamData::create(model);
}

void setValue(data::ParamData const& data, std::string_view text, SymbolType type) {
  if (auto const boolean = plinth::element_cast<data::BooleanParamData>(data)) {
    boolean->setValue(text == "y");
  } else if (auto const option = plinth::element_cast<data::EnumParamData>(data)) {
    option->setValue(toModel(text));
  } else if (auto const number = plinth::element_cast<data::IntegerParamData>(data)) {
    number->setValue(leadingNumber(text, type == SymbolType::Integer ? 10 : 16));
  } else if (auto const string = plinth::element_cast<data::StringParamData>(data)) {
    string->setValue(toModel(text));
  }
}

void setLimits(data::ParamData const& data, long long lower, long long upper) {
  if (auto const number = plinth::element_cast<data::IntegerParamData>(data)) {
    number->setMin(static_cast<double>(lower));
    number->setMax(static_cast<double>(upper));
  }
}

std::string shownValue(data::ParamData const& data) {
  if (auto const boolean = plinth::element_cast<data::BooleanParamData>(data)) {
    return boolean->getValue() ? "y" : "n";
  }
  if (auto const option = plinth::element_cast<data::EnumParamData>(data)) {
    return fromModel(option->getValue());
  }
  if (auto const number = plinth::element_cast<data::IntegerParamData>(data)) {
    return std::to_string(number->getValue());
  }
  auto const string = plinth::element_cast<data::StringParamData>(data);
  return string ? "\"" + fromModel(string->getValue()) + "\"" : std::string();
}

std::string_view typeNameOf(Symbol const& symbol) {
  return symbol.kind == SymbolKind::Choice ? std::string_view("choice") : keywordOf(symbol.type);
}

}  // namespace kconfig
