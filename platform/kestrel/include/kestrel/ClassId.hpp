// The class identifiers of host arrays, and the C++ type of an element of each numeric class.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kestrel {

/// Struct and Char have their numbers by contract with the callers of the host; all are below 16 but Object.
enum class ClassId : std::uint32_t {
  Cell = 1,
  Struct = 2,
  Logical = 3,
  Char = 4,
  String = 5,
  Double = 6,
  Single = 7,
  Int8 = 8,
  UInt8 = 9,
  Int16 = 10,
  UInt16 = 11,
  Int32 = 12,
  UInt32 = 13,
  Int64 = 14,
  UInt64 = 15,
  Object = 32,
};

/// Set in the identifier of an array that has a class of its own over a built-in representation, as the members of an
/// enumeration over int32 have. Who only asks for the representation ignores the bit.
constexpr std::uint32_t BUILT_IN_BASED_FLAG = 16;

/// Class of the element types of logical, char and numeric arrays; no member for any other type.
template <class T>
struct ElementClass;

template <ClassId Id>
struct ElementClassIs {
  static constexpr ClassId value = Id;
};

template <>
struct ElementClass<bool> : ElementClassIs<ClassId::Logical> {};
template <>
struct ElementClass<char16_t> : ElementClassIs<ClassId::Char> {};
template <>
struct ElementClass<double> : ElementClassIs<ClassId::Double> {};
template <>
struct ElementClass<float> : ElementClassIs<ClassId::Single> {};
template <>
struct ElementClass<std::int8_t> : ElementClassIs<ClassId::Int8> {};
template <>
struct ElementClass<std::uint8_t> : ElementClassIs<ClassId::UInt8> {};
template <>
struct ElementClass<std::int16_t> : ElementClassIs<ClassId::Int16> {};
template <>
struct ElementClass<std::uint16_t> : ElementClassIs<ClassId::UInt16> {};
template <>
struct ElementClass<std::int32_t> : ElementClassIs<ClassId::Int32> {};
template <>
struct ElementClass<std::uint32_t> : ElementClassIs<ClassId::UInt32> {};
template <>
struct ElementClass<std::int64_t> : ElementClassIs<ClassId::Int64> {};
template <>
struct ElementClass<std::uint64_t> : ElementClassIs<ClassId::UInt64> {};

}  // namespace kestrel
