#include "Interpreter.hpp"

#include <cstring>
#include <new>

#include "Arrays.hpp"
#include "Calls.hpp"
#include "HostLibrary.hpp"
#include "Namespaces.hpp"
#include "Objects.hpp"

namespace luafront {
namespace {

// Turns an error value into its text with the calls that led to it.
int addTraceback(lua_State* state) {
  luaL_tolstring(state, 1, nullptr);
  luaL_traceback(state, state, lua_tostring(state, -1), 1);
  return 1;
}

int openLibraries(lua_State* state) {
  luaL_openlibs(state);
  registerErrors(state);
  registerArrays(state);
  registerObjects(state);
  registerCalls(state);
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
  lua_close(m_state);
  // What natives still hold of the script finds it closed.
  m_context->main = nullptr;
  m_context->current = nullptr;
}

void Interpreter::writeError() {
  m_errors << "tessel-script: " << luaL_tolstring(m_state, -1, nullptr) << '\n';
  lua_pop(m_state, 2);
}

bool Interpreter::callTop(int argumentCount) {
  int const handler = lua_gettop(m_state) - argumentCount;
  lua_pushcfunction(m_state, addTraceback);
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
  lua_createtable(m_state, static_cast<int>(arguments.size()), 1);
  lua_pushstring(m_state, path.c_str());
  lua_rawseti(m_state, -2, 0);
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    lua_pushstring(m_state, arguments[i].c_str());
    lua_rawseti(m_state, -2, static_cast<lua_Integer>(i) + 1);
  }
  lua_setglobal(m_state, "arg");
  return runLoaded(luaL_loadfile(m_state, path == "-" ? nullptr : path.c_str()), arguments);
}

bool Interpreter::runText(std::string_view text, std::string const& name) {
  return runLoaded(luaL_loadbuffer(m_state, text.data(), text.size(), name.c_str()), {});
}

Interpreter::Entry Interpreter::runEntry(std::string const& text) {
  lua_settop(m_state, 0);
  std::string const expression = "return " + text;
  if (luaL_loadbuffer(m_state, expression.data(), expression.size(), "=prompt") != LUA_OK) {
    lua_settop(m_state, 0);
    int const status = luaL_loadbuffer(m_state, text.data(), text.size(), "=prompt");
    if (isIncomplete(m_state, status)) {
      lua_settop(m_state, 0);
      return Entry::Incomplete;
    }
    if (status != LUA_OK) {
      writeError();
      return Entry::Failed;
    }
  }
  if (!callTop(0)) return Entry::Failed;
  // The values are shown by print, which a script may replace.
  int const count = lua_gettop(m_state);
  if (count == 0) return Entry::Done;
  lua_getglobal(m_state, "print");
  lua_insert(m_state, 1);
  m_output.flush();
  return callTop(count) ? Entry::Done : Entry::Failed;
}

}  // namespace luafront
