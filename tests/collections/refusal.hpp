// What a call raises, and what it changes, as texts to compare.
#pragma once

#include <string>
#include <variant>

#include "groundwork/Except.hpp"
#include "groundwork/Unicode.hpp"
#include "plinth/diagnostics/Fingerprint.hpp"

namespace collections_test {

/// The key of the message that `call` raises and its arguments, "Key(first, second)"; empty if it raises none.
template <class Call>
std::string raised(Call const& call) {
  try {
    call();
  } catch (groundwork::except::IMsgIDException const& exception) {
    std::string text = exception.get_error_id().key;
    char const* separator = "(";
    for (auto const& argument : exception.GetBaseMsgIDObj().arguments) {
      auto const* const wide = std::get_if<std::u16string>(&argument);
      auto const* const narrow = std::get_if<std::string>(&argument);
      text += separator + (wide != nullptr ? groundwork::toUtf8(*wide) : narrow != nullptr ? *narrow : "?");
      separator = ", ";
    }
    return separator[0] == '(' ? text : text + ")";
  }
  return "";
}

/// The first difference between the model and what it was; empty if there is none.
inline std::string changeSince(plinth::Fingerprint const& before, plinth::Model const& model) {
  auto const difference = diff(before, plinth::Fingerprint::of(model));
  return difference ? difference->text() : "";
}

}  // namespace collections_test
