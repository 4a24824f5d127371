// The interrupt from the keyboard: it ends the running script with an error, not the program.
//
// The error is raised by a hook, which has to be set on the Lua thread that runs: the functions of the library
// "coroutine" therefore tell the context of their interpreter which thread that is. Thread rule: the host's thread; one
// scope at a time.
#pragma once

#include "Context.hpp"

namespace luafront {

/// Replaces those functions of the library "coroutine" that run another thread.
void registerCoroutines(lua_State* state);

/// While it exists, an interrupt raises the error "interrupted" in the running script, again and again until the scope
/// ends, so that no protected call can go on; a second interrupt ends the program.
class InterruptScope {
 public:
  explicit InterruptScope(lua_State* state);
  ~InterruptScope();
  InterruptScope(InterruptScope const&) = delete;
  InterruptScope& operator=(InterruptScope const&) = delete;

 private:
  Context& m_context;
};

}  // namespace luafront
