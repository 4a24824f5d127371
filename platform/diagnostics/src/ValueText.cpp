#include "plinth/diagnostics/ValueText.hpp"

#include <array>
#include <atomic>
#include <boost/optional.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <charconv>
#include <cmath>
#include <cstring>
#include <ostream>

#include "groundwork/Unicode.hpp"
#include "plinth/meta/Serializers.hpp"

namespace plinth {
namespace {

constexpr char const* NONE = "none";

std::atomic<std::string (*)(Value const&)>& opaqueText() noexcept {
  static std::atomic<std::string (*)(Value const&)> text{nullptr};
  return text;
}

void appendHex(std::string& text, std::uint64_t number, unsigned digits) {
  for (unsigned shift = 4 * digits; shift > 0; shift -= 4) text += "0123456789abcdef"[number >> (shift - 4) & 0xFU];
}

std::string hex(std::uint64_t number, unsigned digits) {
  std::string text;
  appendHex(text, number, digits);
  return text;
}

std::string textOf(bool value) { return value ? "true" : "false"; }
std::string textOf(std::u16string const& value) { return quoted(value); }
std::string textOf(double value) {
  if (std::isnan(value)) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return "nan(" + hex(bits, 16) + ")";
  }
  std::array<char, 32> digits{};
  auto const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  return {digits.data(), end};
}
template <class T>
std::enable_if_t<std::is_integral_v<T>, std::string> textOf(T value) {
  return std::to_string(value);
}

template <class T>
std::string contentText(Value const& value) {
  if (value.meta().flags() != meta::OPTIONAL) return textOf(value.getValue<T>());
  auto const content = value.getValue<boost::optional<T>>();
  return content ? textOf(*content) : NONE;
}

struct PrimitiveText {
  meta::TypeImpl const* type;
  std::string (*text)(Value const& value);
};

auto const& primitiveTexts() {
  static std::array<PrimitiveText, 7> const texts{
      {{StandardTypes::booleanMeta(), &contentText<bool>},
       {StandardTypes::stringMeta(), &contentText<std::u16string>},
       {StandardTypes::realMeta(), &contentText<double>},
       {StandardTypes::integerMeta(), &contentText<int>},
       {StandardTypes::integer64Meta(), &contentText<long>},
       {StandardTypes::uInteger64Meta(), &contentText<unsigned long>},
       {StandardTypes::unlimitedNaturalMeta(), &contentText<unsigned int>}}};
  return texts;
}

std::string literalText(meta::Type const& type, Value const& value) {
  bool const isOptional = value.meta().flags() == meta::OPTIONAL;
  // The second form serves a number that is no literal's.
  for (char const* format : {"", "ID"}) {
    auto const* const serializer = meta::PropertySerializerRegistry::getInstance().propertySerializer(type, format);
    if (serializer == nullptr) continue;
    std::u16string const text =
        isOptional ? serializer->serializeOptionalValue(value) : serializer->serializeValue(value);
    if (!text.empty()) return groundwork::toUtf8(text);
  }
  return isOptional ? NONE : "#" + hex(value.hash(), 16);
}

std::string fieldsText(meta::DatatypeSerializer const& serializer, meta::TypeImpl const& type, Value const& value) {
  Value const object = value.meta().flags() == meta::OPTIONAL ? serializer.fromOptionalValue(value) : value;
  std::string text = groundwork::toUtf8(type.getName()) + "{";
  char const* separator = "";
  for (meta::PropertyImpl* field : type.ownProperties()) {
    text += separator + groundwork::toUtf8(field->getName()) + ": ";
    text += valueText(serializer.getPropertyValue(object, meta::Property(field)));
    separator = ", ";
  }
  return text + "}";
}

constexpr bool isHighSurrogate(char16_t unit) noexcept { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool isLowSurrogate(char16_t unit) noexcept { return unit >= 0xDC00 && unit <= 0xDFFF; }

/// `result` becomes longer by the text.
void appendEscaped(std::string& result, std::u16string_view text, bool escapesQuotes) {
  std::size_t plainFrom = 0;
  auto const flush = [&](std::size_t end) { result += groundwork::toUtf8(text.substr(plainFrom, end - plainFrom)); };
  for (std::size_t at = 0; at < text.size(); ++at) {
    char16_t const unit = text[at];
    if (isHighSurrogate(unit) && at + 1 < text.size() && isLowSurrogate(text[at + 1])) {
      ++at;
      continue;
    }
    bool const isControl = unit < u' ' || unit == 0x7F;
    bool const isHalf = isHighSurrogate(unit) || isLowSurrogate(unit);
    bool const isSpecial = unit == u'\\' || (unit == u'"' && escapesQuotes);
    if (!isControl && !isHalf && !isSpecial) continue;
    flush(at);
    plainFrom = at + 1;
    result += '\\';
    if (isSpecial) {
      result += static_cast<char>(unit);
    } else {
      result += 'u';
      appendHex(result, unit, 4);
    }
  }
  flush(text.size());
}

}  // namespace

std::string quoted(std::u16string_view text) {
  std::string result = "\"";
  appendEscaped(result, text, true);
  return result + "\"";
}

std::string escaped(std::u16string_view text) {
  std::string result;
  appendEscaped(result, text, false);
  return result;
}

void setOpaqueText(std::string (*text)(Value const& value)) noexcept { opaqueText().store(text); }

std::string valueText(Value const& value) {
  meta::TypeImpl* const type = value.meta().type();
  if (type == nullptr || (value.isEmpty() && value.meta().flags() == meta::OPTIONAL)) return NONE;
  for (PrimitiveText const& primitive : primitiveTexts()) {
    if (primitive.type == type) return primitive.text(value);
  }
  meta::Type const handle(type);
  if (internal::isEnumType(handle)) return literalText(handle, value);
  auto const* const serializer = meta::PropertySerializerRegistry::getInstance().datatypeSerializer(handle);
  if (serializer != nullptr) return fieldsText(*serializer, *type, value);
  auto const opaque = opaqueText().load();
  return opaque != nullptr ? opaque(value) : "#" + hex(value.hash(), 16);
}

std::ostream& operator<<(std::ostream& stream, Value const& value) { return stream << valueText(value); }

std::ostream& operator<<(std::ostream& stream, ModelElement const& element) {
  if (element.isEmpty()) return stream << "no element";
  std::string const& name = element->getMetaClass()->narrowName();
  stream << name.substr(name.rfind('.') + 1) << ' ' << boost::uuids::to_string(element->getUuid());
  if (!element) return stream << " (destroyed)";
  return element->isProxy() ? stream << " (proxy)" : stream;
}

}  // namespace plinth
