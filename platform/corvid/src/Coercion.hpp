// The check of a value against a data type, and the conversions that the host makes by itself.
#pragma once

#include "DataType.hpp"
#include "kestrel/array_base.hpp"

namespace corvid {

/// Raises InvalidHandle for an object of the right class whose native is gone.
bool conforms(DataType const& type, kestrel_array const& value);

/// Between numbers and between texts; null where the host has no conversion. Raises ValueOutOfRange for a number that
/// the wanted class cannot hold.
kestrel::OwnedArray convertBuiltIn(DataType const& type, kestrel_array const& value);

}  // namespace corvid
