// The one error of host arrays: a caller asked an array for what it does not have.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

#include "groundwork/export.hpp"

namespace kestrel {

class TESSEL_EXPORT ArrayError : public std::invalid_argument {
 public:
  /// The identifier names the error for programs ("Kestrel:array:WrongClass"), the sentence is for people.
  ArrayError(std::string identifier, std::string const& sentence)
      : std::invalid_argument(sentence), m_identifier(std::move(identifier)) {}

  std::string const& identifier() const noexcept { return m_identifier; }

 private:
  std::string m_identifier;
};

}  // namespace kestrel
