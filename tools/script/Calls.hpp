// Calls from Lua: constructors, methods and static methods, with their arguments converted as the signature asks.
#pragma once

#include <lua.hpp>

#include "corvid/CorvidClass.hpp"

namespace luafront {

/// How a method is named: on an object or on its class. A static method named on an object drops the object that a
/// colon puts before the arguments; any method named on a class drops the class.
enum class NamedOn { Object, Class };

/// Pushes a function that calls the method of a class.
void pushMethod(lua_State* state, corvid::CorvidClass const& hostClass, corvid::Identifier method, NamedOn namedOn);

/// Constructs an object with the arguments from `firstArgument` to the top, and pushes it.
int constructObject(lua_State* state, corvid::CorvidClass& hostClass, int firstArgument);

/// Calls a method with the arguments from `firstArgument` to the top, and pushes its result. Returns how many it
/// pushed.
int callMethod(lua_State* state, corvid::CorvidClass const& hostClass, corvid::Identifier method, int firstArgument);

}  // namespace luafront
