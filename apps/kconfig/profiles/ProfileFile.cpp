#include "profiles/ProfileFile.hpp"

#include <algorithm>

namespace kconfig {

namespace {

constexpr bool startsWith(std::string_view text, std::string_view beginning) {
  return text.substr(0, beginning.size()) == beginning;
}

// "# PREFIX_NAME is not set"; the two characters in front may be any.
bool readUnset(std::string_view text, std::string_view prefix, ProfileLine& row) {
  text.remove_prefix(std::min<std::size_t>(2, text.size()));
  if (!startsWith(text, prefix)) {
    return false;
  }
  text.remove_prefix(prefix.size());
  std::size_t const blank = text.find(' ');
  if (blank == std::string_view::npos || !startsWith(text.substr(blank + 1), "is not set")) {
    return false;
  }
  row.name = text.substr(0, blank);
  return true;
}

bool readSet(std::string_view text, std::string_view prefix, ProfileLine& row) {
  text.remove_prefix(prefix.size());
  std::size_t const sign = text.find('=');
  if (sign == std::string_view::npos) {
    return false;
  }
  row.name = text.substr(0, sign);
  row.value = text.substr(sign + 1);
  row.set = true;
  return true;
}

}  // namespace

std::vector<ProfileLine> readProfile(std::string_view text, std::string_view prefix, std::string_view fileName,
                                     Diagnostics& diagnostics) {
  std::vector<ProfileLine> rows;
  std::uint32_t number = 0;
  while (!text.empty()) {
    std::size_t const end = std::min(text.find('\n'), text.size());
    bool const ended = end != text.size();
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    ProfileLine row;
    row.line = ++number;
    if (ended && !line.empty() && line.back() == '\r') {
      line.remove_suffix(1);
    }
    bool const comment = line.empty() || line.front() == '#';
    if (comment ? readUnset(line, prefix, row) : startsWith(line, prefix) && readSet(line, prefix, row)) {
      rows.push_back(row);
    } else if (!comment) {
      diagnostics.warning(fileName, number, "the line is neither a value nor a comment and is ignored");
    }
  }
  return rows;
}

}  // namespace kconfig
