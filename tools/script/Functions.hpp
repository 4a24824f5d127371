// Lua functions as functions of the host.
#pragma once

#include <lua.hpp>

#include "kestrel/object_array.hpp"

namespace luafront {

/// An array of the data type "function" that calls the Lua function.
kestrel::OwnedArray functionToHost(lua_State* state, int index);

/// Pushes the Lua function behind an object made by functionToHost; false, and nothing pushed, for any other object.
bool pushFunction(lua_State* state, kestrel::Object& object);

}  // namespace luafront
