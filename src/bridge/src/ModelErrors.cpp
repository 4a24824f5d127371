#include "ModelErrors.hpp"

#include "corvid/HostError.hpp"

namespace plinth::bridge {

using groundwork::except::IMsgIDException;

void rethrowAt(std::string const& place) {
  try {
    throw;
  } catch (corvid::HostError const& error) {
    throw error.at(place);
  } catch (IMsgIDException const& error) {
    auto const* const described = dynamic_cast<std::exception const*>(&error);
    std::string const head = error.get_error_id().key + ": ";
    std::string const sentence = described != nullptr ? described->what() : "";
    if (sentence.compare(0, head.size(), head) != 0) throw;
    detail::reportCause(error.GetBaseMsgIDObj(), place + ": " + sentence.substr(head.size()));
  }
}

}  // namespace plinth::bridge
