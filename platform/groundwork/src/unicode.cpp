#include "groundwork/unicode.hpp"

#include <boost/locale/encoding_utf.hpp>

namespace groundwork {

std::string toUtf8(std::u16string_view text) {
  return boost::locale::conv::utf_to_utf<char>(text.data(), text.data() + text.size());
}

std::u16string toUtf16(std::string_view text) {
  return boost::locale::conv::utf_to_utf<char16_t>(text.data(), text.data() + text.size());
}

}  // namespace groundwork
