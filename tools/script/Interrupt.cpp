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

// This thread may be one between the main and the interrupted one, which has no hook of its own.
void passInterrupt(lua_State* state) {
  if (Context::of(state).interrupted != 0) luaL_error(state, INTERRUPTED);
}

// Threads are resumed here, not by the functions of the library: a call of those would take a second C call of each
// thread that another one runs, and of these Lua allows two hundred.

// Moves the topmost values to the thread and runs it. Gives the number of its results on top of the stack, or -1 for an
// error there.
int resume(lua_State* state, lua_State* thread, int count) {
  if (lua_checkstack(thread, count) == 0) {
    lua_pushliteral(state, "too many arguments to resume");
    return -1;
  }
  lua_xmove(state, thread, count);
  int results = 0;
  int status = LUA_OK;
  {
    RunningThread const running(thread);
    status = lua_resume(thread, state, count, &results);
  }
  passInterrupt(state);
  if (status != LUA_OK && status != LUA_YIELD) {
    lua_xmove(thread, state, 1);
    return -1;
  }
  if (lua_checkstack(state, results + 1) == 0) {
    lua_pop(thread, results);
    lua_pushliteral(state, "too many results to resume");
    return -1;
  }
  lua_xmove(thread, state, results);
  return results;
}

int resumeThread(lua_State* state) {
  lua_State* const thread = lua_tothread(state, 1);
  luaL_argexpected(state, thread != nullptr, 1, "coroutine");
  int const results = resume(state, thread, lua_gettop(state) - 1);
  int const moved = results < 0 ? 1 : results;
  lua_pushboolean(state, results >= 0);
  lua_insert(state, -(moved + 1));
  return moved + 1;
}

// Upvalue: the thread. An error closes it, and goes on with the place of the call in front.
int runWrapped(lua_State* state) {
  lua_State* const thread = lua_tothread(state, lua_upvalueindex(1));
  int const results = resume(state, thread, lua_gettop(state));
  if (results >= 0) return results;
  int status = lua_status(thread);
  if (status != LUA_OK && status != LUA_YIELD) {
    lua_pushvalue(state, -1);
    lua_xmove(state, thread, 1);
    status = lua_resetthread(thread);
    lua_xmove(thread, state, 1);
  }
  if (status != LUA_ERRMEM && lua_type(state, -1) == LUA_TSTRING) {
    luaL_where(state, 1);
    lua_insert(state, -2);
    lua_concat(state, 2);
  }
  return lua_error(state);
}

int wrap(lua_State* state) {
  luaL_checktype(state, 1, LUA_TFUNCTION);
  lua_State* const thread = lua_newthread(state);
  lua_pushvalue(state, 1);
  lua_xmove(state, thread, 1);
  lua_pushcclosure(state, guarded<runWrapped>, 1);
  return 1;
}

// Upvalue: the function of the library.
int closeThread(lua_State* state) {
  lua_State* const thread = lua_tothread(state, 1);
  lua_pushvalue(state, lua_upvalueindex(1));
  lua_insert(state, 1);
  {
    RunningThread const running(thread != nullptr ? thread : state);
    lua_call(state, lua_gettop(state) - 1, LUA_MULTRET);
  }
  passInterrupt(state);
  return lua_gettop(state);
}

void replace(lua_State* state, char const* name, lua_CFunction function) {
  lua_getfield(state, -1, name);
  lua_pushcclosure(state, function, 1);
  lua_setfield(state, -2, name);
}

}  // namespace

void registerCoroutines(lua_State* state) {
  lua_getglobal(state, LUA_COLIBNAME);
  setFunction<resumeThread>(state, "resume");
  setFunction<wrap>(state, "wrap");
  replace(state, "close", guarded<closeThread>);
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
