#include "Interpreter.hpp"

#include <cstring>
#include <new>

#include "Arrays.hpp"
#include "HostLibrary.hpp"
#include "Interrupt.hpp"
#include "Namespaces.hpp"
#include "Objects.hpp"
#include "Records.hpp"

namespace luafront {
namespace {

// Shows its arguments by print, which a script may replace.
int showValues(lua_State* state) {
  lua_getglobal(state, "print");
  lua_insert(state, 1);
  lua_call(state, lua_gettop(state) - 1, 0);
  return 0;
}

// Upvalue: the function of the library, which may close the interpreter.
int exitProgram(lua_State* state) {
  if (lua_toboolean(state, 2) != 0) Context::of(state).memory.beginClosing();
  lua_pushvalue(state, lua_upvalueindex(1));
  lua_insert(state, 1);
  lua_call(state, lua_gettop(state) - 1, 0);
  return 0;
}

void registerExit(lua_State* state) {
  lua_getglobal(state, LUA_OSLIBNAME);
  lua_getfield(state, -1, "exit");
  lua_pushcclosure(state, guarded<exitProgram>, 1);
  lua_setfield(state, -2, "exit");
  lua_pop(state, 1);
}

int openLibraries(lua_State* state) {
  luaL_openlibs(state);
  registerErrors(state);
  registerArrays(state);
  registerObjects(state);
  registerRecords(state);
  registerCoroutines(state);
  registerExit(state);
  registerNamespaces(state);
  registerHostLibrary(state);
  return 0;
}

bool isIncomplete(lua_State* state, int status) {
  if (status != LUA_ERRSYNTAX) return false;
  std::string_view const message = lua_tostring(state, -1);
  std::string_view const mark = "<eof>";
  return message.size() >= mark.size() && message.substr(message.size() - mark.size()) == mark;
}

}  // namespace

Interpreter::Interpreter(std::ostream& output, std::ostream& errors)
    : m_output(output), m_errors(errors), m_context(std::make_shared<Context>()), m_state(luaL_newstate()) {
  if (m_state == nullptr) throw std::bad_alloc();
  m_context->main = m_state;
  Context* const context = m_context.get();
  std::memcpy(lua_getextraspace(m_state), &context, sizeof context);
  lua_pushcfunction(m_state, openLibraries);
  if (lua_pcall(m_state, 0, 0, 0) != LUA_OK) {
    lua_close(m_state);
    throw std::bad_alloc();
  }
}

Interpreter::~Interpreter() {
  m_context->memory.beginClosing();
  lua_close(m_state);
  // What natives still hold of the script finds it closed.
  m_context->main = nullptr;
  m_context->current = nullptr;
  m_context->memory.freeLeftOver();
}

void Interpreter::report(std::string const& sentence) { m_errors << "tessel-script: " << sentence << '\n'; }

void Interpreter::writeError() {
  pushText(m_state, -1);
  report(lua_tostring(m_state, -1));
  lua_pop(m_state, 2);
}

bool Interpreter::callTop(int argumentCount) {
  int const handler = lua_gettop(m_state) - argumentCount;
  lua_pushcfunction(m_state, describeWithCalls);
  lua_insert(m_state, handler);
  int const status = lua_pcall(m_state, argumentCount, LUA_MULTRET, handler);
  lua_remove(m_state, handler);
  if (status != LUA_OK) writeError();
  return status == LUA_OK;
}

bool Interpreter::runLoaded(int loadStatus, std::vector<std::string> const& arguments) {
  if (loadStatus != LUA_OK) {
    writeError();
    return false;
  }
  luaL_checkstack(m_state, static_cast<int>(arguments.size()) + 4, "too many arguments");
  for (std::string const& argument : arguments) lua_pushlstring(m_state, argument.data(), argument.size());
  bool const succeeded = callTop(static_cast<int>(arguments.size()));
  lua_settop(m_state, 0);
  return succeeded;
}

bool Interpreter::runFile(std::string const& path, std::vector<std::string> const& arguments) {
  lua_pushglobaltable(m_state);
  lua_pushliteral(m_state, "arg");
  lua_createtable(m_state, static_cast<int>(arguments.size()), 1);
  lua_pushstring(m_state, path.c_str());
  lua_rawseti(m_state, -2, 0);
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    lua_pushstring(m_state, arguments[i].c_str());
    lua_rawseti(m_state, -2, static_cast<lua_Integer>(i) + 1);
  }
  // Past whatever a statement before the file has made of assignments to globals.
  lua_rawset(m_state, -3);
  lua_pop(m_state, 1);
  return runLoaded(luaL_loadfile(m_state, path == "-" ? nullptr : path.c_str()), arguments);
}

bool Interpreter::runText(std::string_view text, std::string const& name) {
  return runLoaded(luaL_loadbuffer(m_state, text.data(), text.size(), name.c_str()), {});
}

Interpreter::Entry Interpreter::loadEntry(std::string const& text) {
  lua_settop(m_state, 0);
  std::string const expression = "return " + text;
  if (luaL_loadbuffer(m_state, expression.data(), expression.size(), "=prompt") == LUA_OK) return Entry::Loaded;
  lua_settop(m_state, 0);
  int const status = luaL_loadbuffer(m_state, text.data(), text.size(), "=prompt");
  if (status == LUA_OK) return Entry::Loaded;
  if (!isIncomplete(m_state, status)) {
    writeError();
    return Entry::Failed;
  }
  lua_settop(m_state, 0);
  return Entry::Incomplete;
}

bool Interpreter::runEntry() {
  if (!callTop(0)) return false;
  int const count = lua_gettop(m_state);
  if (count == 0) return true;
  luaL_checkstack(m_state, 4, "too many values");
  lua_pushcfunction(m_state, showValues);
  lua_insert(m_state, 1);
  m_output.flush();
  return callTop(count);
}

}  // namespace luafront
