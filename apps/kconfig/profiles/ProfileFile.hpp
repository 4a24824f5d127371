// Reads a saved configuration: lines "PREFIX_NAME=value" and "# PREFIX_NAME is not set", all others being comments. The
// rows refer to the text that they were read from.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "language/Diagnostics.hpp"

namespace kconfig {

struct ProfileLine {
  std::string_view name;
  std::string_view value;  // as it stands, quotes included; empty for "is not set"
  bool set = false;
  std::uint32_t line = 0;
};

// fileName stands in the messages. Lines that are neither a value nor a comment are warned of and left out.
std::vector<ProfileLine> readProfile(std::string_view text, std::string_view prefix, std::string_view fileName,
                                     Diagnostics& diagnostics);

}  // namespace kconfig
