// Message records: what went wrong, as a catalogue, a key and arguments. A record carries no text; the catalogue gives
// it one. Thread rule: plain values.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "groundwork/export.hpp"

namespace groundwork {

/// One argument of a message: a number, an 8-bit (UTF-8) or a UTF-16 string.
using MessageArgument = std::variant<std::int64_t, std::string, std::u16string>;

struct MessageRecord {
  std::vector<MessageArgument> arguments;
  std::string catalog;
  std::string key;
};

/// Puts the first ten arguments for {0} to {9} into `pattern`; a placeholder without an argument stays as it stands,
/// and so does everything else in braces.
[[nodiscard]] TESSEL_EXPORT std::string formatMessage(std::string_view pattern,
                                                      std::vector<MessageArgument> const& arguments);

}  // namespace groundwork
