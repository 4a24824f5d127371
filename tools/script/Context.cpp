#include "Context.hpp"

#include <cstring>

namespace luafront {
namespace {

constexpr char const* ERROR_TYPE = "host error";

int errorToString(lua_State* state) {
  lua_settop(state, 1);
  lua_getfield(state, 1, "where");
  lua_getfield(state, 1, "sentence");
  lua_concat(state, 2);
  return 1;
}

std::string textOf(lua_State* state, int index) {
  std::size_t length = 0;
  char const* const text = luaL_tolstring(state, index, &length);
  std::string copy(text, length);
  lua_pop(state, 1);
  return copy;
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

ScriptFailure::ScriptFailure(lua_State* state) : m_value(nullptr), m_sentence(textOf(state, -1)) {
  m_value = std::make_shared<LuaReference>(state);
}

void pushError(lua_State* state, corvid::ErrorDescription const& error) {
  lua_createtable(state, 0, 3);
  lua_pushlstring(state, error.identifier.data(), error.identifier.size());
  lua_setfield(state, -2, "identifier");
  lua_pushlstring(state, error.sentence.data(), error.sentence.size());
  lua_setfield(state, -2, "sentence");
  luaL_where(state, 1);
  lua_setfield(state, -2, "where");
  luaL_setmetatable(state, ERROR_TYPE);
}

void registerErrors(lua_State* state) {
  luaL_newmetatable(state, ERROR_TYPE);
  lua_pushcfunction(state, errorToString);
  lua_setfield(state, -2, "__tostring");
  lua_pop(state, 1);
}

}  // namespace luafront
