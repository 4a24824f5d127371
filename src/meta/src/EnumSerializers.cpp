#include "tessel_config_datamodel/meta/EnumSerializers.hpp"

#include <algorithm>
#include <boost/lexical_cast.hpp>

#include "groundwork/Unicode.hpp"

namespace tessel::metamodel::detail {
namespace {

int valueOf(plinth::meta::EnumLiteralImpl const* literal) {
  if (literal == nullptr) throw boost::bad_lexical_cast();
  return literal->value();
}

}  // namespace

std::u16string literalName(plinth::meta::Enum const& type, int value) {
  auto const* const literal = type->findByValue(value);
  return literal == nullptr ? std::u16string() : literal->getName();
}

int parseLiteralName(plinth::meta::Enum const& type, std::u16string const& text) {
  return valueOf(type->findByName(text));
}

// A cast alone would follow the program's locale, which may group digits.
std::u16string literalValue(int value) { return groundwork::toUtf16(std::to_string(value)); }

int parseLiteralValue(plinth::meta::Enum const& type, std::u16string const& text) {
  auto const isDigit = [](char16_t unit) { return unit >= u'0' && unit <= u'9'; };
  bool const hasSign = !text.empty() && (text[0] == u'+' || text[0] == u'-');
  if (!std::all_of(text.begin() + (hasSign ? 1 : 0), text.end(), isDigit)) throw boost::bad_lexical_cast();
  return valueOf(type->findByValue(boost::lexical_cast<int>(std::string(text.begin(), text.end()))));
}

std::u16string publicIdentifier(plinth::meta::Enum const& type, int value) {
  auto const* const literal = type->findByValue(value);
  if (literal == nullptr) return {};
  return literal->publicIdentifier().empty() ? literal->getName() : literal->publicIdentifier();
}

int parsePublicIdentifier(plinth::meta::Enum const& type, std::u16string const& text) {
  return valueOf(type->findByPublicIdentifier(text));
}

}  // namespace tessel::metamodel::detail
