// Script objects in Lua: one userdata for each object, with its properties by dot and its methods by colon.
//
// An object that is a collection is walked by its methods: #object is "size", object[i] is "at", pairs(object) goes
// over "keys" or over the positions from 1. A class with the method "close" may be used with <close>. Ownership: the
// userdata holds the object; collecting it lets go.
#pragma once

#include <lua.hpp>

#include "HeldArray.hpp"
#include "corvid/CorvidClass.hpp"
#include "kestrel/ObjectArray.hpp"

namespace luafront {

struct ObjectBox {
  /// 1 by 1; null after the userdata was finalized.
  HeldArray self;
  corvid::CorvidClass const* hostClass;
};

void registerObjects(lua_State* state);

/// Pushes the object of a 1 by 1 object array: the same userdata as before while Lua holds one.
void pushObject(lua_State* state, kestrel::ObjectRef const& object);

/// Null when the value is no object, or one that has been finalized.
ObjectBox* toObject(lua_State* state, int index);
/// The same, but raises InvalidHandle for one that has been finalized.
ObjectBox* toUsableObject(lua_State* state, int index);

}  // namespace luafront
