// Values in the sentences of errors.
#include <limits>
#include <sstream>

#include "corvid/HostError.hpp"
#include "groundwork/unicode.hpp"
#include "kestrel/array.hpp"

namespace corvid {
namespace {

constexpr std::size_t LONGEST_QUOTATION = 60;

template <class Number>
std::string numberText(Number number) {
  // Of which sign it is depends on the machine.
  if (number != number) return "NaN";
  std::ostringstream text;
  text.precision(std::numeric_limits<double>::max_digits10 - 2);
  text << number;
  return text.str();
}

std::string quoted(std::u16string_view text) {
  if (text.size() <= LONGEST_QUOTATION) return "'" + groundwork::toUtf8(text) + "'";
  // The conversion drops a surrogate that has lost its other half.
  return "'" + groundwork::toUtf8(text.substr(0, LONGEST_QUOTATION)) + "...'";
}

bool isOneText(kestrel_array const& value) {
  if (kestrel::baseClass(value) == kestrel::ClassId::Char) return true;
  return kestrel::baseClass(value) == kestrel::ClassId::String && kestrel::isScalar(value) &&
         kestrel::stringElement(value).has_value();
}

bool isPlainNumber(kestrel_array const& value) {
  bool const isPlain = (kestrel::classIdentifier(value) & kestrel::BUILT_IN_BASED_FLAG) == 0;
  return isPlain && kestrel::isScalar(value) && kestrel::isNumeric(value);
}

}  // namespace

std::string describeNumber(kestrel_array const& numbers, std::size_t index) {
  switch (kestrel::baseClass(numbers)) {
    case kestrel::ClassId::Logical:
      return kestrel::element<bool>(numbers, index) ? "true" : "false";
    case kestrel::ClassId::Int64:
      return numberText(kestrel::element<std::int64_t>(numbers, index));
    case kestrel::ClassId::UInt64:
      return numberText(kestrel::element<std::uint64_t>(numbers, index));
    default:
      return numberText(kestrel::elementAsDouble(numbers, index));
  }
}

std::string describeValue(kestrel_array const& value) {
  if (isOneText(value)) return quoted(kestrel::scalarText(value));
  if (isPlainNumber(value)) return describeNumber(value, 0);
  std::string const className = "'" + kestrel::className(value).text() + "'";
  kestrel::Dimensions const size = kestrel::dimensions(value);
  bool const isPlainDouble = kestrel::classIdentifier(value) == static_cast<std::uint32_t>(kestrel::ClassId::Double);
  if (isPlainDouble && size == kestrel::EMPTY) return "nothing";
  if (kestrel::isEmpty(value)) return "an empty " + className;
  if (kestrel::isStruct(value) && kestrel::fieldNames(value).empty()) return "a struct without fields";
  if (kestrel::isScalar(value)) return "one " + className;
  return std::to_string(size.rows) + " by " + std::to_string(size.columns) + " " + className;
}

}  // namespace corvid
