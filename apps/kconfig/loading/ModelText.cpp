#include "loading/ModelText.hpp"

#include <algorithm>
#include <groundwork/Unicode.hpp>

namespace kconfig {

namespace {

// A text that is no UTF-8 goes through byte by byte: units behind this one are halves that no valid text has alone.
constexpr char16_t byteUnits = 0xDC00;

constexpr bool isHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool isByteUnit(char16_t unit) { return unit >= byteUnits + 0x80 && unit <= byteUnits + 0xFF; }

bool holdsBytes(std::u16string_view text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (isByteUnit(text[at]) && (at == 0 || !isHighSurrogate(text[at - 1]))) {
      return true;
    }
  }
  return false;
}

constexpr bool isAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }

}  // namespace

std::u16string toModel(std::string_view text) {
  if (std::all_of(text.begin(), text.end(), isAscii)) {
    return std::u16string(text.begin(), text.end());
  }
  std::u16string converted = groundwork::toUtf16(text);
  if (groundwork::toUtf8(converted) != text) {
    converted.clear();
    for (char const c : text) {
      converted += static_cast<char16_t>(isAscii(c) ? c : byteUnits + static_cast<unsigned char>(c));
    }
  }
  return converted;
}

std::string fromModel(std::u16string_view text) {
  bool const ascii = std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
  if (!ascii && !holdsBytes(text)) {
    return groundwork::toUtf8(text);
  }
  std::string bytes(text.size(), '\0');
  std::transform(text.begin(), text.end(), bytes.begin(), [](char16_t unit) { return static_cast<char>(unit & 0xFF); });
  return bytes;
}

}  // namespace kconfig
