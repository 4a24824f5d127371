#include "plinth/bridge/FromAnyAsStringTypeConverter.hpp"

#include <vector>

#include "kestrel/Array.hpp"

namespace plinth::bridge {

using corvid::CorvidTypeRepository;

namespace {

meta::EnumLiteralImpl const* findLiteral(meta::EnumImpl const& type, std::u16string const& text) {
  auto const* const named = type.findByName(text);
  return named != nullptr ? named : type.findByPublicIdentifier(text);
}

// The texts of a char or string array; false where one of them is missing.
bool readTexts(kestrel_array const& array, std::vector<std::u16string>& texts) {
  if (kestrel::baseClass(array) == kestrel::ClassId::Char) {
    texts.emplace_back(kestrel::charText(array));
    return true;
  }
  for (std::size_t i = 0; i < kestrel::numberOfElements(array); ++i) {
    kestrel::MaybeString const& text = kestrel::stringElement(array, i);
    if (!text) return false;
    texts.push_back(*text);
  }
  return true;
}

}  // namespace

kestrel::OwnedArray FromAnyAsStringTypeConverter::convert(kestrel_array const& value) const {
  std::vector<std::u16string> texts;
  if (!kestrel::isText(value) || !readTexts(value, texts)) return nullptr;
  std::vector<std::int32_t> numbers;
  for (std::u16string const& text : texts) {
    auto const* const literal = findLiteral(*m_enum.impl(), text);
    if (literal == nullptr) return nullptr;
    numbers.push_back(literal->value());
  }
  return kestrel::createBuiltInBased(m_className, kestrel::createRow(numbers));
}

void FromAnyAsStringTypeConverter::install(corvid::Identifier className, meta::Enum const& type) {
  for (char const* shape : {"", " property", " scalar"}) {
    std::string const target = className.text() + shape;
    if (CorvidTypeRepository::getConversion("any", target) != nullptr)
      CorvidTypeRepository::removeConversion("any", target);
    CorvidTypeRepository::addConversion("any", target, std::make_unique<FromAnyAsStringTypeConverter>(className, type));
  }
}

}  // namespace plinth::bridge
