// Arrays of text: a char array is one UTF-16 text, a string array has a whole UTF-16 text in each element, each of
// which may be missing.
//
// Asking an array of another class raises ArrayError "Kestrel:array:WrongClass", an index beyond the end OutOfRange.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kestrel/ArrayBase.hpp"

namespace kestrel {

using MaybeString = std::optional<std::u16string>;

/// A 1 by N char array; 0 by 0 for the empty text.
[[nodiscard]] TESSEL_EXPORT OwnedArray createChar(std::u16string_view text);
/// The text of a char array, its columns one after the other; valid until the array is destroyed.
TESSEL_EXPORT std::u16string_view charText(kestrel_array const& array);

/// A string array whose elements are all missing.
[[nodiscard]] TESSEL_EXPORT OwnedArray createStrings(Dimensions dimensions);
/// A 1 by 1 string array.
[[nodiscard]] TESSEL_EXPORT OwnedArray createString(std::u16string_view text);
/// A 1 by N string array; 0 by 0 for none.
[[nodiscard]] TESSEL_EXPORT OwnedArray createStringRow(std::vector<std::u16string> const& texts);

/// An element, empty when it is missing.
TESSEL_EXPORT MaybeString const& stringElement(kestrel_array const& array, std::size_t index = 0);
TESSEL_EXPORT void setStringElement(kestrel_array& array, std::size_t index, MaybeString text);

inline bool isText(kestrel_array const& array) noexcept {
  return baseClass(array) == ClassId::Char || baseClass(array) == ClassId::String;
}

/// Whether the array is one text: what scalarText gives.
TESSEL_EXPORT bool isOneText(kestrel_array const& array) noexcept;

/// The one text of a char array or of a string array of one element. Raises ArrayError "Kestrel:array:NotOneText" for
/// any other array, and for a missing string.
TESSEL_EXPORT std::u16string_view scalarText(kestrel_array const& array);

}  // namespace kestrel
