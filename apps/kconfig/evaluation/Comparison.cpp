#include "evaluation/Comparison.hpp"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace kconfig {

namespace {

enum class Reading { Text, Signed, Unsigned };

struct Number {
  Reading reading = Reading::Text;
  std::uint64_t bits = 0;
};

constexpr bool isHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

// A value counts as a number if all of its text is one in the notation of its type.
Number readNumber(ComparedValue const& value) {
  if (isLogical(value.type)) {
    return {};
  }
  std::string const text(value.text);
  char* end = nullptr;
  Number number;
  errno = 0;
  if (value.type == SymbolType::Hexadecimal) {
    number = {Reading::Unsigned, std::strtoull(text.c_str(), &end, 16)};
  } else {
    int const base = value.type == SymbolType::Integer ? 10 : 0;
    number = {Reading::Signed, static_cast<std::uint64_t>(std::strtoll(text.c_str(), &end, base))};
  }
  bool const complete = errno == 0 && *end == '\0' && end > text.c_str() && isHexDigit(end[-1]);
  return complete ? number : Number{};
}

int order(ComparedValue const& left, ComparedValue const& right) {
  if (left.type != SymbolType::String || right.type != SymbolType::String) {
    Number const a = readNumber(left);
    Number const b = readNumber(right);
    if (a.reading != Reading::Text && b.reading != Reading::Text) {
      if (a.reading == Reading::Unsigned || b.reading == Reading::Unsigned) {
        return (a.bits > b.bits) - (a.bits < b.bits);
      }
      auto const x = static_cast<std::int64_t>(a.bits);
      auto const y = static_cast<std::int64_t>(b.bits);
      return (x > y) - (x < y);
    }
  }
  return left.text.compare(right.text);
}

}  // namespace

bool holds(Operator op, ComparedValue const& left, ComparedValue const& right) {
  int const result = order(left, right);
  switch (op) {
    case Operator::Equal:
      return result == 0;
    case Operator::Unequal:
      return result != 0;
    case Operator::Less:
      return result < 0;
    case Operator::LessEqual:
      return result <= 0;
    case Operator::Greater:
      return result > 0;
    default:
      return result >= 0;
  }
}

long long leadingNumber(std::string_view text, int base) {
  return std::strtoll(std::string(text).c_str(), nullptr, base);
}

}  // namespace kconfig
