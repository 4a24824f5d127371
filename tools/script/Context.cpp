#include "Context.hpp"

#include <cstring>

namespace luafront {
namespace {

constexpr char const* ERROR_TYPE = "host error";
// The address is a key of the registry: a weak list of the last error that passed through native code, and its calls.
char const CALLS_KEY = 0;
enum KeptCalls { KEPT_ERROR = 1, KEPT_TEXT = 2 };

int errorToString(lua_State* state) {
  lua_settop(state, 1);
  lua_getfield(state, 1, "where");
  lua_getfield(state, 1, "sentence");
  lua_concat(state, 2);
  return 1;
}

int concatErrors(lua_State* state) {
  lua_settop(state, 2);
  luaL_tolstring(state, 1, nullptr);
  luaL_tolstring(state, 2, nullptr);
  lua_concat(state, 2);
  return 1;
}

int textOf(lua_State* state) {
  luaL_tolstring(state, 1, nullptr);
  return 1;
}

// Functions of C on the way have no line.
void pushWhere(lua_State* state) {
  lua_Debug frame;
  for (int level = 1; lua_getstack(state, level, &frame) != 0; ++level) {
    luaL_where(state, level);
    if (lua_rawlen(state, -1) != 0) return;
    lua_pop(state, 1);
  }
  lua_pushliteral(state, "");
}

// Pushes the list of kept calls; true when they are those of the error at stack index 1.
bool pushKeptCalls(lua_State* state) {
  lua_rawgetp(state, LUA_REGISTRYINDEX, &CALLS_KEY);
  lua_rawgeti(state, -1, KEPT_ERROR);
  bool const isSame = !lua_isnil(state, 1) && lua_rawequal(state, 1, -1) != 0;
  lua_pop(state, 1);
  return isSame;
}

}  // namespace

Context& Context::of(lua_State* state) {
  Context* context = nullptr;
  std::memcpy(&context, lua_getextraspace(state), sizeof context);
  return *context;
}

LuaReference::LuaReference(lua_State* state)
    : m_context(Context::of(state).shared_from_this()), m_reference(luaL_ref(state, LUA_REGISTRYINDEX)) {}

LuaReference::~LuaReference() {
  if (m_context->main != nullptr) luaL_unref(m_context->main, LUA_REGISTRYINDEX, m_reference);
}

void LuaReference::push(lua_State* state) const {
  if (m_context->main == nullptr)
    throw corvid::HostError(corvid::ErrorKey::INVALID_HANDLE, "The script that this value belongs to has ended.");
  lua_rawgeti(state, LUA_REGISTRYINDEX, m_reference);
}

std::string LuaReference::text() const {
  lua_State* const state = m_context->current != nullptr ? m_context->current : m_context->main;
  if (state == nullptr || lua_checkstack(state, 4) == 0) return "An error of a script.";
  push(state);
  pushText(state, -1);
  std::size_t length = 0;
  char const* const text = lua_tolstring(state, -1, &length);
  std::string copy(text, length);
  lua_pop(state, 2);
  return copy;
}

char const* ScriptFailure::what() const noexcept {
  try {
    if (m_sentence.empty()) m_sentence = m_value->text();
    return m_sentence.c_str();
  } catch (...) {
    return "An error of a script.";
  }
}

PlacedFailure::PlacedFailure(std::exception const& error, std::string const& place)
    : m_description(corvid::describeError(error)) {
  std::string& sentence = m_description.sentence;
  std::string const& identifier = m_description.identifier;
  std::string const head = identifier.substr(identifier.rfind(':') + 1) + ": ";
  if (sentence.compare(0, head.size(), head) == 0) sentence.insert(head.size(), place + ": ");
}

int rememberCalls(lua_State* state) {
  if (!pushKeptCalls(state)) {
    lua_pushvalue(state, 1);
    lua_rawseti(state, -2, KEPT_ERROR);
    luaL_traceback(state, state, nullptr, 1);
    lua_rawseti(state, -2, KEPT_TEXT);
  }
  lua_settop(state, 1);
  return 1;
}

int describeWithCalls(lua_State* state) {
  pushText(state, 1);
  lua_pushliteral(state, "\n");
  if (pushKeptCalls(state)) {
    lua_rawgeti(state, -1, KEPT_TEXT);
  } else {
    luaL_traceback(state, state, nullptr, 1);
  }
  lua_remove(state, -2);
  lua_concat(state, 3);
  return 1;
}

void pushText(lua_State* state, int index) {
  int const value = lua_absindex(state, index);
  lua_pushcfunction(state, textOf);
  lua_pushvalue(state, value);
  if (lua_pcall(state, 1, 1, 0) == LUA_OK) return;
  lua_pop(state, 1);
  lua_pushfstring(state, "(an error value of the type '%s', whose text can't be had)", luaL_typename(state, value));
}

std::string_view checkText(lua_State* state, int index) {
  if (lua_type(state, index) != LUA_TSTRING)
    throw corvid::HostError(corvid::ErrorKey::WRONG_TYPE, std::string("Expected a text, not a value of the type '") +
                                                              luaL_typename(state, index) + "'.");
  std::size_t length = 0;
  char const* const text = lua_tolstring(state, index, &length);
  return {text, length};
}

void finishType(lua_State* state, char const* type) {
  lua_pushstring(state, type);
  lua_setfield(state, -2, "__metatable");
  lua_pop(state, 1);
}

void pushError(lua_State* state, corvid::ErrorDescription const& error) {
  lua_createtable(state, 0, 3);
  lua_pushlstring(state, error.identifier.data(), error.identifier.size());
  lua_setfield(state, -2, "identifier");
  lua_pushlstring(state, error.sentence.data(), error.sentence.size());
  lua_setfield(state, -2, "sentence");
  pushWhere(state);
  lua_setfield(state, -2, "where");
  luaL_setmetatable(state, ERROR_TYPE);
}

void registerErrors(lua_State* state) {
  luaL_newmetatable(state, ERROR_TYPE);
  lua_pushcfunction(state, errorToString);
  lua_setfield(state, -2, "__tostring");
  lua_pushcfunction(state, concatErrors);
  lua_setfield(state, -2, "__concat");
  lua_pop(state, 1);

  lua_newtable(state);
  lua_createtable(state, 0, 1);
  lua_pushliteral(state, "v");
  lua_setfield(state, -2, "__mode");
  lua_setmetatable(state, -2);
  lua_rawsetp(state, LUA_REGISTRYINDEX, &CALLS_KEY);
}

}  // namespace luafront
