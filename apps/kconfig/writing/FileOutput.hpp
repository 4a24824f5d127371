// Writes what the program makes to where the user wants it, whatever is there. Keeps nothing. Used from one thread.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace kconfig {

// An output could not be written; the text names it and says why.
class OutputError : public std::runtime_error {
 public:
  OutputError(std::string const& name, std::string const& reason)
      : std::runtime_error("can't write " + name + ": " + reason) {}
};

// Makes text the content of a file. A regular file is replaced as a whole, keeping its permissions and, where the
// system allows it, its owner; until the new one is complete the old one stays as it is. A symbolic link stays and what
// it points at is written. Devices, pipes and what else is there is written to as it stands. Raises OutputError, and
// leaves nothing behind beside the file then.
void writeFile(std::string const& name, std::string_view text);

}  // namespace kconfig
