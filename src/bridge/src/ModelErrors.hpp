// Errors of the model, with what only the bridge knows of them: their cause, and their place in what a script gave.
// Thread rule: pure functions.
#pragma once

#include <string>

#include "plinth/Messages.hpp"

namespace plinth::bridge {

namespace detail {
/// Raises a message whose sentence is the key, a colon and `cause`.
template <class M>
[[noreturn]] void reportCause(M const& message, std::string const& cause) {
  groundwork::except::Exception<M, std::exception> exception(message, message.key + ": " + cause);
  exception.get_error_id() = {message.catalog, message.key};
  throw exception;
}
}  // namespace detail

/// Raises InvalidValue; `cause` says in whole words what was given and what was expected.
[[noreturn]] inline void reportInvalidValue(std::string const& cause) {
  detail::reportCause(messages::InvalidValue(), cause);
}

/// Called in a handler: raises what is handled again, with the place in front of its sentence and under the same
/// identifier. An error without an identifier passes as it is.
[[noreturn]] void rethrowAt(std::string const& place);

}  // namespace plinth::bridge
