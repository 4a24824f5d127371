#include "groundwork/Unicode.hpp"

#include <boost/locale/utf.hpp>
#include <iterator>

namespace groundwork {
namespace {

namespace utf = boost::locale::utf;

// The ready-made conversion goes on behind the unit at which it sees that a sequence is malformed, and so loses the
// character there, which may well be a good one. This one goes on behind the first unit of the sequence.
template <class Out, class In>
std::basic_string<Out> convert(std::basic_string_view<In> text) {
  std::basic_string<Out> converted;
  converted.reserve(text.size());
  In const* const end = text.data() + text.size();
  for (In const* at = text.data(); at != end;) {
    In const* const start = at;
    utf::code_point const character = utf::utf_traits<In>::decode(at, end);
    if (character == utf::illegal || character == utf::incomplete) {
      at = start + 1;
    } else {
      utf::utf_traits<Out>::encode(character, std::back_inserter(converted));
    }
  }
  return converted;
}

}  // namespace

std::string toUtf8(std::u16string_view text) { return convert<char>(text); }

std::u16string toUtf16(std::string_view text) { return convert<char16_t>(text); }

}  // namespace groundwork
