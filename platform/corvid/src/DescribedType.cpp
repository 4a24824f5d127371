// Data types in the sentences of errors, in words of scripts.
#include <limits>

#include "Coercion.hpp"
#include "corvid/CorvidClass.hpp"

namespace corvid {
namespace {

struct Words {
  std::string one;
  std::string several;
};

template <class T>
std::string rangeText() {
  return " from " + std::to_string(std::numeric_limits<T>::min()) + " to " +
         std::to_string(std::numeric_limits<T>::max());
}

std::string rangeOf(kestrel::ClassId id) {
  switch (id) {
    case kestrel::ClassId::Int8:
      return rangeText<std::int8_t>();
    case kestrel::ClassId::UInt8:
      return rangeText<std::uint8_t>();
    case kestrel::ClassId::Int16:
      return rangeText<std::int16_t>();
    case kestrel::ClassId::UInt16:
      return rangeText<std::uint16_t>();
    case kestrel::ClassId::Int32:
      return rangeText<std::int32_t>();
    case kestrel::ClassId::UInt32:
      return rangeText<std::uint32_t>();
    case kestrel::ClassId::Int64:
      return rangeText<std::int64_t>();
    default:
      return rangeText<std::uint64_t>();
  }
}

Words wordsOfNumber(kestrel::ClassId id) {
  if (id == kestrel::ClassId::Logical) return {"a boolean", "booleans"};
  if (id == kestrel::ClassId::Double || id == kestrel::ClassId::Single) return {"a number", "numbers"};
  std::string const range = rangeOf(id);
  return {"an integer" + range, "integers" + range};
}

std::string literalsOf(CorvidClass const& enumeration) {
  std::string literals;
  for (auto const& member : enumeration.getEnumValues())
    literals += (literals.empty() ? "'" : ", '") + member->getName().text() + "'";
  return literals;
}

Words wordsOfClass(Identifier name) {
  CorvidClass const* const hostClass = CorvidClass::getClass(name);
  if (hostClass == nullptr || !hostClass->getInfo().isEnumeration())
    return {"an object of the class '" + name.text() + "'", "objects of the class '" + name.text() + "'"};
  std::string const literals = literalsOf(*hostClass);
  return {"one of " + literals, "strings, each one of " + literals};
}

Words wordsOf(DataType const& type) {
  switch (type.kind) {
    case DataType::Kind::Function:
      return {"a function", "functions"};
    case DataType::Kind::Number:
      return wordsOfNumber(type.id);
    case DataType::Kind::Char:
    case DataType::Kind::String:
    case DataType::Kind::FactoryString:
      return {"a string", "strings"};
    case DataType::Kind::Struct:
      return {"a table with names", "tables with names"};
    case DataType::Kind::Cell:
      return {"a list", "lists"};
    case DataType::Kind::Class:
      return wordsOfClass(type.base);
    default:
      return {"a value", "values"};
  }
}

}  // namespace

std::string describeType(DataType const& type, Multiplicity multiplicity) {
  Words const words = wordsOf(type);
  if (multiplicity == Multiplicity::Many) return "a list of " + words.several;
  return multiplicity == Multiplicity::Optional ? words.one + " or nil" : words.one;
}

HostError wrongType(DataType const& wanted, Multiplicity multiplicity, kestrel_array const& given) {
  return {ErrorKey::WRONG_TYPE,
          "Expected " + describeType(wanted, multiplicity) + ", not " + describeValue(given) + "."};
}

}  // namespace corvid
