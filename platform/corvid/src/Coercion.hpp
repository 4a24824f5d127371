// The check of a value against a data type, and the conversions that the host makes by itself.
#pragma once

#include "DataType.hpp"
#include "corvid/CorvidPropInfo.hpp"
#include "corvid/HostError.hpp"
#include "kestrel/ArrayBase.hpp"

namespace corvid {

/// Raises InvalidHandle for an object of the right class whose native is gone.
bool conforms(DataType const& type, kestrel_array const& value);

/// Between numbers and between texts; null where the host has no conversion. Raises ValueOutOfRange for a number that
/// the wanted class cannot hold.
kestrel::OwnedArray convertBuiltIn(DataType const& type, kestrel_array const& value);

/// As CorvidTypeRepository::coerce, but null where that raises WrongType.
kestrel_array const* coerceOrNull(Identifier type, kestrel_array const& value, kestrel::OwnedArray& holder);

/// What a sentence calls a value of a type, or a list of them: "a number", "one of 'A', 'B'".
std::string describeType(DataType const& type, Multiplicity multiplicity);
/// What was wanted, and what was given instead.
HostError wrongType(DataType const& wanted, Multiplicity multiplicity, kestrel_array const& given);

}  // namespace corvid
