// The canonical text of a plain value: equal values have equal texts, different ones different texts.
// Thread rule: pure functions of values, once the metamodel stands.
#pragma once

#include <string>
#include <string_view>

#include "plinth/Value.hpp"

namespace plinth {

/// Numbers are written exactly (a real with as many digits as bring it back), strings quoted and escaped, enumerations
/// by literal, datatypes field by field; "none" is an optional without value. A value that only a layer above this one
/// knows has the text that `setOpaqueText` was given, or its hash. Not for elements and collections. Linear in the
/// value.
TESSEL_EXPORT std::string valueText(Value const& value);

/// The string as UTF-8 in quotes; control characters, quotes, backslashes and halves of surrogate pairs are escaped.
TESSEL_EXPORT std::string quoted(std::u16string_view text);

/// The same without the quotes around it, and with quotes in it as they stand: a text of one line.
TESSEL_EXPORT std::string escaped(std::u16string_view text);

/// Tells how values of types that the foundation has no text for, such as host arrays, are written. Null brings back
/// the hash. May be called at any time before the first text is asked for.
TESSEL_EXPORT void setOpaqueText(std::string (*text)(Value const& value)) noexcept;

}  // namespace plinth
