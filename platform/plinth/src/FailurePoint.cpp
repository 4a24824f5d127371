#include "plinth/FailurePoint.hpp"

#ifdef TESSEL_FAILURE_POINTS

#include <new>
#include <string>

namespace plinth {
namespace {

struct Armed {
  std::string name;
  std::size_t remaining = 0;
  bool fired = false;
};

Armed& armed() {
  thread_local Armed state;
  return state;
}

}  // namespace

void failurePoint(char const* name) {
  Armed& state = armed();
  if (state.remaining == 0 || (!state.name.empty() && state.name != name)) return;
  if (--state.remaining > 0) return;
  state.fired = true;
  throw std::bad_alloc();
}

void armFailurePoint(char const* name, std::size_t passage) { armed() = Armed{name, passage, false}; }

bool disarmFailurePoint() {
  bool const fired = armed().fired;
  armed() = Armed{};
  return fired;
}

}  // namespace plinth

#endif
