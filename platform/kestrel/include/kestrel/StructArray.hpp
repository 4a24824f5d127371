// Struct arrays (named fields, the same for every element) and cell arrays (an array in each element).
//
// A struct or cell array owns what it holds. Asking an array of another class raises ArrayError
// "Kestrel:array:WrongClass", an index beyond the end OutOfRange, a name that is no field NoSuchField.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kestrel/ArrayBase.hpp"

namespace kestrel {

/// All fields of all elements start as null, which stands for an empty double. Raises ArrayError
/// "Kestrel:array:DuplicateField" for a name given twice.
[[nodiscard]] TESSEL_EXPORT OwnedArray createStruct(std::vector<std::string> fieldNames,
                                                    Dimensions dimensions = SCALAR);

TESSEL_EXPORT std::vector<std::string> const& fieldNames(kestrel_array const& array);
[[nodiscard]] TESSEL_EXPORT bool hasField(kestrel_array const& array, std::string_view name);

/// Borrowed, null where nothing was stored.
TESSEL_EXPORT kestrel_array const* field(kestrel_array const& array, std::size_t index, std::string_view name);
/// Stores a value in a field of one element; a name that is no field yet becomes the last field of all elements.
TESSEL_EXPORT void setField(kestrel_array& array, std::size_t index, std::string_view name, OwnedArray value);

/// Takes a field from all elements; a name that is no field is ignored.
TESSEL_EXPORT void removeField(kestrel_array& array, std::string_view name);

/// All cells start as null.
[[nodiscard]] TESSEL_EXPORT OwnedArray createCell(Dimensions dimensions);
/// Borrowed, null where nothing was stored.
TESSEL_EXPORT kestrel_array const* cell(kestrel_array const& array, std::size_t index);
TESSEL_EXPORT void setCell(kestrel_array& array, std::size_t index, OwnedArray value);
/// Makes the cell array a row of that many cells; the first ones stay, new ones are null.
TESSEL_EXPORT void resizeCells(kestrel_array& array, std::size_t count);

}  // namespace kestrel
