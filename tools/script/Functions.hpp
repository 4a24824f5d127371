// Lua functions as functions of the host.
#pragma once

#include <lua.hpp>

#include "kestrel/ObjectArray.hpp"

namespace luafront {

/// An array of the data type "function" that calls the Lua function.
kestrel::OwnedArray functionToHost(lua_State* state, int index);

/// Pushes the Lua value behind an object that a script has given; false, and nothing pushed, for any other object.
bool pushScriptValue(lua_State* state, kestrel::Object& object);

}  // namespace luafront
