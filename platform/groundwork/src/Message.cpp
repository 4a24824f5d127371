#include "groundwork/Message.hpp"

#include "groundwork/Unicode.hpp"

namespace groundwork {
namespace {

std::string textOf(MessageArgument const& argument) {
  if (auto const* number = std::get_if<std::int64_t>(&argument)) return std::to_string(*number);
  if (auto const* narrow = std::get_if<std::string>(&argument)) return *narrow;
  return toUtf8(std::get<std::u16string>(argument));
}

}  // namespace

std::string formatMessage(std::string_view pattern, std::vector<MessageArgument> const& arguments) {
  std::string text;
  for (std::size_t at = 0; at < pattern.size(); ++at) {
    bool const placeholder = pattern[at] == '{' && at + 2 < pattern.size() && pattern[at + 2] == '}' &&
                             pattern[at + 1] >= '0' && pattern[at + 1] <= '9';
    auto const index = placeholder ? static_cast<std::size_t>(pattern[at + 1] - '0') : arguments.size();
    if (index < arguments.size()) {
      text += textOf(arguments[index]);
      at += 2;
    } else {
      text += pattern[at];
    }
  }
  return text;
}

}  // namespace groundwork
