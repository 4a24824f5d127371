#include "corvid/HostError.hpp"

#include <new>

#include "kestrel/ArrayError.hpp"

namespace corvid {

namespace {

// A sentence is told as a C string, and may quote a name with a NUL in it.
std::string visible(std::string sentence) {
  for (std::size_t at = sentence.find('\0'); at != std::string::npos; at = sentence.find('\0', at))
    sentence.replace(at, 1, "\\0");
  return sentence;
}

}  // namespace

HostError::HostError(char const* key, std::string const& sentence)
    : Exception({{}, "Kestrel:class", key}, visible(std::string(key) + ": " + sentence)) {
  get_error_id() = {"Kestrel:class", key};
}

HostError HostError::at(std::string const& place) const {
  // what() is the key, a colon and a blank, and the sentence.
  return {key().c_str(), place + ": " + std::string(what()).substr(key().size() + 2)};
}

ErrorDescription describeError(std::exception const& error) {
  if (auto const* withIdentifier = dynamic_cast<groundwork::except::IMsgIDException const*>(&error))
    return {withIdentifier->GetID(), error.what()};
  if (auto const* arrayError = dynamic_cast<kestrel::ArrayError const*>(&error))
    return {arrayError->identifier(), error.what()};
  if (dynamic_cast<std::bad_alloc const*>(&error) != nullptr)
    return {"Kestrel:native:OutOfMemory", "There is not enough memory."};
  return {"Kestrel:native:Exception", error.what()};
}

}  // namespace corvid
