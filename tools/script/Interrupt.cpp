#include "Interrupt.hpp"

namespace luafront {
namespace {

constexpr char const* INTERRUPTED = "interrupted";

Context* volatile interruptible = nullptr;

void raise(lua_State* state, lua_Debug*) {
  if (Context::of(state).interrupted != 0) luaL_error(state, INTERRUPTED);
  // A thread that has not run since the interrupt, which is over.
  lua_sethook(state, nullptr, 0, 0);
}

void hook(lua_State* state) {
  // The one function of Lua that may be called from a signal handler. Not calls, but instructions are counted:
  // functions of C, such as the handler that describes the error, are left alone.
  if (state != nullptr) lua_sethook(state, raise, LUA_MASKCOUNT, 1);
}

void interrupt(int) {
  std::signal(SIGINT, SIG_DFL);
  Context* const context = interruptible;
  if (context == nullptr) return;
  context->interrupted = 1;
  hook(context->main);
  hook(context->current);
}

// Calls the function on the bottom of the stack, which runs `thread`, with all that is above it.
int callInThread(lua_State* state, lua_State* thread) {
  {
    RunningThread const running(thread != nullptr ? thread : state);
    lua_call(state, lua_gettop(state) - 1, LUA_MULTRET);
  }
  // This thread may be one between the main and the interrupted one, which has no hook of its own.
  if (Context::of(state).interrupted != 0) luaL_error(state, INTERRUPTED);
  return lua_gettop(state);
}

// Upvalue: the function of the library.
int runThread(lua_State* state) {
  lua_State* const thread = lua_tothread(state, 1);
  lua_pushvalue(state, lua_upvalueindex(1));
  lua_insert(state, 1);
  return callInThread(state, thread);
}

// Upvalues: what the library's "wrap" has made, and its thread.
int runWrapped(lua_State* state) {
  lua_pushvalue(state, lua_upvalueindex(1));
  lua_insert(state, 1);
  return callInThread(state, lua_tothread(state, lua_upvalueindex(2)));
}

// Upvalue: the function of the library.
int wrap(lua_State* state) {
  lua_pushvalue(state, lua_upvalueindex(1));
  lua_insert(state, 1);
  lua_call(state, lua_gettop(state) - 1, 1);
  if (lua_getupvalue(state, -1, 1) == nullptr) lua_pushnil(state);
  lua_pushcclosure(state, guarded<runWrapped>, 2);
  return 1;
}

void replace(lua_State* state, char const* name, lua_CFunction function) {
  lua_getfield(state, -1, name);
  lua_pushcclosure(state, function, 1);
  lua_setfield(state, -2, name);
}

}  // namespace

void registerCoroutines(lua_State* state) {
  lua_getglobal(state, LUA_COLIBNAME);
  replace(state, "resume", guarded<runThread>);
  replace(state, "close", guarded<runThread>);
  replace(state, "wrap", guarded<wrap>);
  lua_pop(state, 1);
}

InterruptScope::InterruptScope(lua_State* state) : m_context(Context::of(state)) {
  interruptible = &m_context;
  std::signal(SIGINT, interrupt);
}

InterruptScope::~InterruptScope() {
  std::signal(SIGINT, SIG_DFL);
  interruptible = nullptr;
  m_context.interrupted = 0;
  lua_sethook(m_context.main, nullptr, 0, 0);
}

}  // namespace luafront
