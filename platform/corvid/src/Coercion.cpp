#include "Coercion.hpp"

#include <cmath>
#include <cstdint>
#include <limits>

#include "corvid/CorvidClass.hpp"
#include "corvid/HostError.hpp"
#include "corvid/factory/SelfTraits.hpp"
#include "kestrel/Array.hpp"

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

bool isFloating(kestrel::ClassId id) { return id == kestrel::ClassId::Double || id == kestrel::ClassId::Single; }

bool isSigned(kestrel::ClassId id) {
  return id == kestrel::ClassId::Int8 || id == kestrel::ClassId::Int16 || id == kestrel::ClassId::Int32 ||
         id == kestrel::ClassId::Int64;
}

int bitsOf(kestrel::ClassId id) {
  // Int8 and UInt8 stand first, then each width in turn.
  return 8 << ((static_cast<int>(id) - static_cast<int>(kestrel::ClassId::Int8)) / 2);
}

// An integer of any class.
struct Whole {
  bool negative;
  std::uint64_t magnitude;

  static Whole of(std::int64_t number) {
    auto const bits = static_cast<std::uint64_t>(number);
    return {number < 0, number < 0 ? 0 - bits : bits};
  }
  friend bool operator==(Whole const& left, Whole const& right) {
    return left.negative == right.negative && left.magnitude == right.magnitude;
  }
};

Whole wholeAt(kestrel_array const& integers, std::size_t index) {
  kestrel::ClassId const id = kestrel::baseClass(integers);
  if (id == kestrel::ClassId::UInt64) return {false, kestrel::element<std::uint64_t>(integers, index)};
  if (id == kestrel::ClassId::Int64) return Whole::of(kestrel::element<std::int64_t>(integers, index));
  return Whole::of(static_cast<std::int64_t>(kestrel::elementAsDouble(integers, index)));
}

bool isWhole(double number, double minimum, double beyondMaximum) {
  return number >= minimum && number < beyondMaximum && number == std::floor(number);
}

bool isSame(Whole const& whole, double number) {
  double const magnitude = std::abs(number);
  return isWhole(magnitude, 0, std::ldexp(1.0, 64)) &&
         whole == Whole{number < 0, static_cast<std::uint64_t>(magnitude)};
}

// Whether the other class has room for one element. Conversions clamp, so a changed integer is one that has none.
bool keepsNumber(kestrel_array const& value, kestrel_array const& converted, std::size_t index) {
  kestrel::ClassId const from = kestrel::baseClass(value);
  kestrel::ClassId const to = kestrel::baseClass(converted);
  if (to == kestrel::ClassId::Logical) return true;
  if (!isFloating(from))
    return isFloating(to) ? isSame(wholeAt(value, index), kestrel::elementAsDouble(converted, index))
                          : wholeAt(value, index) == wholeAt(converted, index);
  double const number = kestrel::elementAsDouble(value, index);
  if (isFloating(to)) return !std::isfinite(number) || std::isfinite(kestrel::elementAsDouble(converted, index));
  double const beyondMaximum = std::ldexp(1.0, bitsOf(to) - (isSigned(to) ? 1 : 0));
  return isWhole(number, isSigned(to) ? -beyondMaximum : 0.0, beyondMaximum);
}

// The first element that the other class has no room for; the number of elements when there is none.
std::size_t firstLost(kestrel_array const& value, kestrel_array const& converted) {
  std::size_t const count = kestrel::numberOfElements(value);
  std::size_t index = 0;
  // What scripts convert most, and nearly always within the integers that are all doubles.
  if (kestrel::baseClass(value) == kestrel::ClassId::Int64 &&
      kestrel::baseClass(converted) == kestrel::ClassId::Double) {
    constexpr std::int64_t exact = std::int64_t{1} << std::numeric_limits<double>::digits;
    std::int64_t const* const numbers = kestrel::data<std::int64_t>(value);
    while (index < count && numbers[index] >= -exact && numbers[index] <= exact) ++index;
  }
  while (index < count && keepsNumber(value, converted, index)) ++index;
  return index;
}

[[noreturn]] void refuseNumber(DataType const& type, kestrel_array const& value, std::size_t index) {
  std::string const place = kestrel::isScalar(value) ? "" : " (element " + std::to_string(index + 1) + ")";
  DataType one = type;
  one.shape = Shape::Scalar;
  std::string wanted = describeType(one, Multiplicity::Single);
  if (isFloating(type.id)) wanted += type.id == kestrel::ClassId::Double ? " of 53 bits at most" : " below 3.4e38";
  throw HostError(ErrorKey::VALUE_OUT_OF_RANGE,
                  "Expected " + wanted + ", not " + describeNumber(value, index) + place + ".");
}

std::size_t firstNan(kestrel_array const& value) {
  std::size_t index = 0;
  while (!std::isnan(kestrel::elementAsDouble(value, index))) ++index;
  return index;
}

kestrel::OwnedArray convertToNumber(DataType const& type, kestrel_array const& value) {
  if (type.shape != Shape::Scalar && kestrel::isEmpty(value)) return kestrel::createEmpty(type.id);
  if (!kestrel::isNumeric(value) || !isPlain(value) || !hasShape(type.shape, value)) return nullptr;
  kestrel::OwnedArray converted;
  try {
    converted = kestrel::convertNumeric(value, type.id);
  } catch (kestrel::ArrayError const&) {
    // Of all numbers only a NaN has no logical value.
    refuseNumber(type, value, firstNan(value));
  }
  std::size_t const lost = firstLost(value, *converted);
  if (lost < kestrel::numberOfElements(value)) refuseNumber(type, value, lost);
  return converted;
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

}  // namespace corvid
