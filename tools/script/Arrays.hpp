// Host arrays that are no single Lua value: rows of numbers or texts, object arrays, empty arrays that keep their
// class.
//
// An array is a value: #array, array[i] from 1, ipairs, pairs and == (equality of contents) work on it, and it is
// changed by assigning a whole array or table where it came from. Ownership: the userdata owns the array.
#pragma once

#include <lua.hpp>

#include "kestrel/ArrayBase.hpp"

namespace luafront {

void registerArrays(lua_State* state);
void pushArray(lua_State* state, kestrel::OwnedArray array);
/// Null when the value is no array.
kestrel_array const* toArray(lua_State* state, int index);

}  // namespace luafront
