// Conversion between the UTF-16 strings of the model and UTF-8. Malformed sequences are left out, and nothing beside
// them. Thread rule: pure functions.
#pragma once

#include <string>
#include <string_view>

#include "groundwork/export.hpp"

namespace groundwork {

/// UTF-16 to UTF-8; linear in the length.
[[nodiscard]] TESSEL_EXPORT std::string toUtf8(std::u16string_view text);

/// UTF-8 to UTF-16; linear in the length.
[[nodiscard]] TESSEL_EXPORT std::u16string toUtf16(std::string_view text);

}  // namespace groundwork
