#include "kestrel/ArrayBase.hpp"

#include <array>

#include "ArrayData.hpp"

namespace kestrel {
namespace {

// Indexed by the class identifier; Object stands outside the table.
constexpr std::array<char const*, 16> CLASS_NAMES = {"",       "cell",   "struct", "logical", "char",  "string",
                                                     "double", "single", "int8",   "uint8",   "int16", "uint16",
                                                     "int32",  "uint32", "int64",  "uint64"};
constexpr std::array<std::size_t, 16> PLAIN_SIZES = {0, 0, 0, sizeof(bool), 2, 0, 8, 4, 1, 1, 2, 2, 4, 4, 8, 8};

}  // namespace

namespace detail {

std::size_t plainSize(ClassId id) noexcept { return id == ClassId::Object ? 0 : PLAIN_SIZES[std::size_t(id)]; }

void raiseWrongClass(kestrel_array const& array, char const* wanted) {
  throw ArrayError("Kestrel:array:WrongClass",
                   "Expected an array of class " + std::string(wanted) + ", not " + className(array).text() + ".");
}

void raiseTooLarge(Dimensions const& dimensions) {
  throw ArrayError("Kestrel:array:TooLarge", "No memory holds an array of " + std::to_string(dimensions.rows) + " by " +
                                                 std::to_string(dimensions.columns) + " elements.");
}

void checkIndex(kestrel_array const& array, std::size_t index) {
  if (index < numberOfElements(array)) return;
  throw ArrayError("Kestrel:array:OutOfRange", "Element " + std::to_string(index) + " lies outside an array of " +
                                                   std::to_string(numberOfElements(array)) + " elements.");
}

}  // namespace detail

PropertyArray copyForPropertyContainment(kestrel_array const* array) {
  return PropertyArray(deepCopy(array).release());
}

OwnedArray createEmpty(ClassId id) {
  switch (id) {
    case ClassId::Cell:
      return detail::makeArray<detail::Cells>(id, EMPTY);
    case ClassId::Struct:
      return detail::makeArray<detail::Fields>(id, EMPTY, std::vector<std::string>(), detail::Cells());
    case ClassId::String:
      return detail::makeArray<detail::Strings>(id, EMPTY);
    case ClassId::Object:
      return detail::makeArray<detail::Objects>(id, EMPTY);
    default:
      return detail::makeArray<detail::Plain>(id, EMPTY);
  }
}

OwnedArray createBuiltInBased(Identifier className, OwnedArray representation) {
  if (className.empty() || representation == nullptr || representation->id == ClassId::Object)
    throw ArrayError("Kestrel:array:NotBuiltIn", "A built-in based array needs a class name and a built-in array.");
  representation->ownClass = className;
  return representation;
}

ClassId baseClass(kestrel_array const& array) noexcept { return array.id; }

std::uint32_t classIdentifier(kestrel_array const& array) noexcept {
  bool const builtInBased = array.id != ClassId::Object && !array.ownClass.empty();
  return std::uint32_t(array.id) | (builtInBased ? BUILT_IN_BASED_FLAG : 0);
}

Identifier className(kestrel_array const& array) noexcept {
  return array.ownClass.empty() ? nameOf(array.id) : array.ownClass;
}

Identifier nameOf(ClassId id) noexcept {
  static std::array<Identifier, 17> const names = [] {
    std::array<Identifier, 17> interned;
    for (std::size_t i = 0; i < CLASS_NAMES.size(); ++i) interned[i] = intern(CLASS_NAMES[i]);
    interned.back() = intern("object");
    return interned;
  }();
  return id == ClassId::Object ? names.back() : names[std::size_t(id)];
}

Dimensions dimensions(kestrel_array const& array) noexcept { return array.dimensions; }

std::size_t numberOfElements(kestrel_array const& array) noexcept { return array.dimensions.count(); }

bool isNumeric(kestrel_array const& array) noexcept {
  return array.id == ClassId::Logical || (array.id >= ClassId::Double && array.id <= ClassId::UInt64);
}

std::ptrdiff_t liveArrayCount() noexcept { return detail::ArrayBlock::total(); }

}  // namespace kestrel
