#include "Coercion.hpp"

#include <cmath>
#include <limits>
#include <sstream>

#include "corvid/CorvidClass.hpp"
#include "corvid/HostError.hpp"
#include "corvid/factory/SelfTraits.hpp"
#include "groundwork/unicode.hpp"
#include "kestrel/array.hpp"

namespace corvid {
namespace {

using Kind = DataType::Kind;
using Shape = DataType::Shape;

bool hasShape(Shape shape, kestrel_array const& value) {
  kestrel::Dimensions const size = kestrel::dimensions(value);
  switch (shape) {
    case Shape::Scalar:
      return size.count() == 1;
    case Shape::Vector:
      return size.rows == 1 || size.columns == 1 || size == kestrel::EMPTY;
    default:
      return true;
  }
}

bool isPlain(kestrel_array const& value) {
  return (kestrel::classIdentifier(value) & kestrel::BUILT_IN_BASED_FLAG) == 0;
}

bool hasMissing(kestrel_array const& strings) {
  for (std::size_t i = 0; i < kestrel::numberOfElements(strings); ++i)
    if (!kestrel::stringElement(strings, i)) return true;
  return false;
}

bool isWholeString(kestrel_array const& value) {
  return kestrel::baseClass(value) == kestrel::ClassId::String && !hasMissing(value);
}

bool conformsToFactoryString(Shape shape, kestrel_array const& value) {
  bool const isChar = kestrel::baseClass(value) == kestrel::ClassId::Char;
  if (shape == Shape::Vector) return isWholeString(value) && hasShape(shape, value);
  return isChar || (isWholeString(value) && hasShape(shape, value));
}

bool isObjectOf(Identifier className, kestrel::ObjectRef const& object) {
  if (!object) return false;
  if (object->native(className) != nullptr) return true;
  CorvidClass const* const hostClass = CorvidClass::getClass(object->className());
  if (hostClass == nullptr || !hostClass->isSubclassOf(className)) return false;
  factory::impl::reportInvalidSelf(className);
}

bool conformsToClass(DataType const& type, kestrel_array const& value) {
  if (!hasShape(type.shape, value)) return false;
  if (kestrel::isEmpty(value)) return true;
  if (!kestrel::isObject(value)) return kestrel::className(value) == type.base;
  for (std::size_t i = 0; i < kestrel::numberOfElements(value); ++i)
    if (!isObjectOf(type.base, kestrel::object(value, i))) return false;
  return true;
}

// Whether a double or single array can be held by an integer class without loss.
bool fitsInteger(kestrel_array const& value, double minimum, double beyondMaximum) {
  for (std::size_t i = 0; i < kestrel::numberOfElements(value); ++i) {
    double const number = kestrel::elementAsDouble(value, i);
    if (!(number >= minimum && number < beyondMaximum && number == std::floor(number))) return false;
  }
  return true;
}

bool isFloating(kestrel::ClassId id) { return id == kestrel::ClassId::Double || id == kestrel::ClassId::Single; }

bool isSigned(kestrel::ClassId id) {
  return id == kestrel::ClassId::Int8 || id == kestrel::ClassId::Int16 || id == kestrel::ClassId::Int32 ||
         id == kestrel::ClassId::Int64;
}

int bitsOf(kestrel::ClassId id) {
  // Int8 and UInt8 stand first, then each width in turn.
  return 8 << ((static_cast<int>(id) - static_cast<int>(kestrel::ClassId::Int8)) / 2);
}

bool keepsNumbers(kestrel_array const& value, kestrel_array const& converted) {
  kestrel::ClassId const from = kestrel::baseClass(value);
  kestrel::ClassId const to = kestrel::baseClass(converted);
  if (isFloating(to) || to == kestrel::ClassId::Logical) return true;
  if (!isFloating(from)) return kestrel::equalContents(kestrel::convertNumeric(converted, from).get(), &value);
  int const digits = bitsOf(to) - (isSigned(to) ? 1 : 0);
  double const beyondMaximum = std::ldexp(1.0, digits);
  return fitsInteger(value, isSigned(to) ? -beyondMaximum : 0.0, beyondMaximum);
}

kestrel::OwnedArray convertToNumber(DataType const& type, kestrel_array const& value) {
  if (type.shape != Shape::Scalar && kestrel::isEmpty(value)) return kestrel::createEmpty(type.id);
  if (!kestrel::isNumeric(value) || !isPlain(value) || !hasShape(type.shape, value)) return nullptr;
  try {
    kestrel::OwnedArray converted = kestrel::convertNumeric(value, type.id);
    if (keepsNumbers(value, *converted)) return converted;
  } catch (kestrel::ArrayError const&) {
    // A NaN has no logical value: reported below as what it is.
  }
  throw HostError(ErrorKey::VALUE_OUT_OF_RANGE, "A value of the class '" + kestrel::nameOf(type.id).text() +
                                                    "' can't be " + describeValue(value) + ".");
}

// A cell array of texts as a string array; null when a cell holds anything else.
kestrel::OwnedArray stringsFromCells(kestrel_array const& cells) {
  kestrel::OwnedArray strings = kestrel::createStrings(kestrel::dimensions(cells));
  for (std::size_t i = 0; i < kestrel::numberOfElements(cells); ++i) {
    kestrel_array const* const cell = kestrel::cell(cells, i);
    if (cell == nullptr || !conformsToFactoryString(Shape::Scalar, *cell)) return nullptr;
    kestrel::setStringElement(*strings, i, std::u16string(kestrel::scalarText(*cell)));
  }
  return strings;
}

kestrel::OwnedArray convertToStrings(DataType const& type, kestrel_array const& value) {
  if (kestrel::baseClass(value) == kestrel::ClassId::Char) return kestrel::createString(kestrel::charText(value));
  if (type.shape != Shape::Vector || !hasShape(type.shape, value)) return nullptr;
  if (kestrel::isEmpty(value)) return kestrel::createEmpty(kestrel::ClassId::String);
  return kestrel::baseClass(value) == kestrel::ClassId::Cell ? stringsFromCells(value) : nullptr;
}

template <typename Number>
std::string numberText(kestrel_array const& value) {
  std::ostringstream text;
  text.precision(std::numeric_limits<double>::max_digits10 - 2);
  text << kestrel::element<Number>(value);
  return text.str();
}

}  // namespace

bool conforms(DataType const& type, kestrel_array const& value) {
  switch (type.kind) {
    case Kind::Any:
      return true;
    case Kind::Function:
      return factory::impl::nativeOf(value, type.base) != nullptr;
    case Kind::Number:
      return kestrel::baseClass(value) == type.id && isPlain(value) && hasShape(type.shape, value);
    case Kind::Char:
      return kestrel::baseClass(value) == kestrel::ClassId::Char;
    case Kind::String:
      return kestrel::baseClass(value) == kestrel::ClassId::String && hasShape(type.shape, value);
    case Kind::Struct:
      return kestrel::isStruct(value) && hasShape(type.shape, value);
    case Kind::Cell:
      return kestrel::baseClass(value) == kestrel::ClassId::Cell && hasShape(type.shape, value);
    case Kind::FactoryString:
      return conformsToFactoryString(type.shape, value);
    case Kind::Class:
      return conformsToClass(type, value);
  }
  return false;
}

kestrel::OwnedArray convertBuiltIn(DataType const& type, kestrel_array const& value) {
  switch (type.kind) {
    case Kind::Number:
      return convertToNumber(type, value);
    case Kind::Char:
      return isWholeString(value) && kestrel::isScalar(value) ? kestrel::createChar(kestrel::scalarText(value))
                                                              : nullptr;
    case Kind::String:
      return convertToStrings(type, value);
    case Kind::FactoryString:
      return type.shape == Shape::Vector ? convertToStrings(type, value) : nullptr;
    default:
      return nullptr;
  }
}

std::string describeValue(kestrel_array const& value) {
  kestrel::ClassId const id = kestrel::baseClass(value);
  if (conformsToFactoryString(Shape::Scalar, value)) return "'" + groundwork::toUtf8(kestrel::scalarText(value)) + "'";
  if (kestrel::isScalar(value) && isPlain(value)) {
    if (id == kestrel::ClassId::Logical) return kestrel::element<bool>(value) ? "true" : "false";
    if (id == kestrel::ClassId::Int64) return numberText<std::int64_t>(value);
    if (id == kestrel::ClassId::UInt64) return numberText<std::uint64_t>(value);
    if (kestrel::isNumeric(value)) return numberText<double>(*kestrel::convertNumeric(value, kestrel::ClassId::Double));
  }
  if (kestrel::isScalar(value)) return "one '" + kestrel::className(value).text() + "'";
  if (kestrel::isEmpty(value)) return "an empty '" + kestrel::className(value).text() + "'";
  kestrel::Dimensions const size = kestrel::dimensions(value);
  return std::to_string(size.rows) + " by " + std::to_string(size.columns) + " '" + kestrel::className(value).text() +
         "'";
}

}  // namespace corvid
