// Values in the sentences of errors.
#include <limits>
#include <sstream>

#include "corvid/HostError.hpp"
#include "groundwork/Unicode.hpp"
#include "kestrel/Array.hpp"

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

namespace {

// Whether of all arrays it is the one that stands for nothing.
bool isNothing(kestrel_array const& value) {
  bool const isPlainDouble = kestrel::classIdentifier(value) == static_cast<std::uint32_t>(kestrel::ClassId::Double);
  return isPlainDouble && kestrel::dimensions(value) == kestrel::EMPTY;
}

bool isPlainNumeric(kestrel_array const& value) {
  return kestrel::isNumeric(value) && (kestrel::classIdentifier(value) & kestrel::BUILT_IN_BASED_FLAG) == 0;
}

// The noun for an element, and for several.
std::string nounOf(kestrel_array const& value, bool several) {
  if (isPlainNumeric(value)) {
    bool const isTruth = kestrel::baseClass(value) == kestrel::ClassId::Logical;
    return std::string(isTruth ? "boolean" : "number") + (several ? "s" : "");
  }
  switch (kestrel::baseClass(value)) {
    case kestrel::ClassId::Char:
    case kestrel::ClassId::String:
      return several ? "strings" : "string";
    case kestrel::ClassId::Struct:
      return several ? "tables" : "table";
    case kestrel::ClassId::Cell:
      return several ? "values" : "value";
    default:
      return (several ? "objects of the class '" : "object of the class '") + kestrel::className(value).text() + "'";
  }
}

std::string describeOne(kestrel_array const& value) {
  if (kestrel::baseClass(value) == kestrel::ClassId::Cell) return "a list of one value";
  if (kestrel::isStruct(value)) return kestrel::fieldNames(value).empty() ? "an empty table" : "a table with names";
  if (kestrel::className(value).text() == "function") return "a function";
  std::string const noun = nounOf(value, false);
  return (noun.front() == 'o' ? "an " : "a ") + noun;
}

}  // namespace

std::string describeValue(kestrel_array const& value) {
  if (kestrel::isOneText(value)) return "the string " + quoted(kestrel::scalarText(value));
  if (isPlainNumber(value)) {
    bool const isTruth = kestrel::baseClass(value) == kestrel::ClassId::Logical;
    return (isTruth ? "" : "the number ") + describeNumber(value, 0);
  }
  if (isNothing(value)) return "nil";
  if (kestrel::baseClass(value) == kestrel::ClassId::Cell && kestrel::isEmpty(value)) return "an empty list";
  if (kestrel::isEmpty(value)) return "an empty list of " + nounOf(value, true);
  if (kestrel::isScalar(value)) return describeOne(value);
  kestrel::Dimensions const size = kestrel::dimensions(value);
  bool const isRow = size.rows == 1 || size.columns == 1;
  std::string const extent =
      isRow ? std::to_string(size.count()) : std::to_string(size.rows) + " by " + std::to_string(size.columns);
  return (isRow ? "a list of " : "an array of ") + extent + " " + nounOf(value, true);
}

}  // namespace corvid
