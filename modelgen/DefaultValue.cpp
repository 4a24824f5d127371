#include "modelgen/DefaultValue.hpp"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "modelgen/Primitive.hpp"
#include "modelgen/Text.hpp"
#include "modelgen/naming.hpp"

namespace modelgen {
namespace {

template <class Number>
std::optional<Number> readNumber(std::string const& text) {
  Number number{};
  char const* const end = text.data() + text.size();
  auto const read = std::from_chars(text.data(), end, number);
  if (read.ec != std::errc() || read.ptr != end) return std::nullopt;
  return number;
}

template <class Number>
std::optional<std::string> integer(std::string const& text, std::string const& suffix) {
  auto const number = readNumber<Number>(text);
  if (!number) return std::nullopt;
  // The least number has no literal: a minus sign before its absolute value would overflow first.
  if constexpr (std::is_signed_v<Number>) {
    if (*number == std::numeric_limits<Number>::min()) return "(" + std::to_string(*number + 1) + suffix + " - 1)";
  }
  return std::to_string(*number) + suffix;
}

std::optional<std::string> real(std::string const& text) {
  auto const number = readNumber<double>(text);
  if (!number || !std::isfinite(*number)) return std::nullopt;
  return text.find_first_of(".eE") == std::string::npos ? text + ".0" : text;
}

std::optional<std::string> primitiveInitializer(std::string const& type, std::string const& text) {
  if (type == "Boolean") return text == "true" || text == "false" ? std::optional<std::string>(text) : std::nullopt;
  if (type == "Integer") return integer<std::int32_t>(text, "");
  if (type == "Integer64") return integer<std::int64_t>(text, "");
  if (type == "UInteger64") return integer<std::uint64_t>(text, "u");
  if (type == "UnlimitedNatural") return integer<std::uint32_t>(text, "u");
  if (type == "Real") return real(text);
  if (type == "String") return utf16Literal(text);
  return std::nullopt;
}

std::string literalName(Enum const& enumeration, Literal const& literal) {
  return naming::cppTypeName(enumeration) + "::" + literal.name;
}

}  // namespace

std::optional<std::string> defaultInitializer(Type const& type, std::string const& text) {
  if (type.kind == TypeKind::primitive) return primitiveInitializer(type.name, text);
  Enum const* const enumeration = asEnum(&type);
  Literal const* const literal = enumeration == nullptr ? nullptr : findLiteral(*enumeration, text);
  if (literal == nullptr) return std::nullopt;
  return literalName(*enumeration, *literal);
}

std::string zeroInitializer(Type const& type) {
  if (Enum const* const enumeration = asEnum(&type)) return literalName(*enumeration, enumeration->literals.front());
  if (type.kind != TypeKind::primitive || isString(type) || isHostArray(type)) return "";
  return *primitiveInitializer(type.name, type.name == "Boolean" ? "false" : "0");
}

std::string defaultForm(Type const& type) {
  if (Enum const* const enumeration = asEnum(&type)) {
    std::vector<std::string> names;
    for (Literal const& each : enumeration->literals) names.push_back(each.name);
    return alternatives(names);
  }
  if (type.kind != TypeKind::primitive || isHostArray(type))
    return "no default, as " + describe(type) + " has no text form";
  if (type.name == "Boolean") return "true or false";
  if (type.name == "Real") return "a finite decimal number";
  if (type.name == "Integer") return "a whole number of 32 bits";
  if (type.name == "Integer64") return "a whole number of 64 bits";
  if (type.name == "UInteger64") return "a whole number of 64 bits that is not negative";
  if (type.name == "UnlimitedNatural") return "a whole number of 32 bits that is not negative";
  return "a text";
}

}  // namespace modelgen
