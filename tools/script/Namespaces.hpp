// Packages and classes in Lua. An undefined global of the name of a top-level package is that package; a package has
// its packages and classes by dot, a class its static methods and the literals of an enumeration, and calling it
// constructs. Ownership: the host owns packages and classes; it has to outlive the interpreter.
#pragma once

#include <lua.hpp>

#include "corvid/CorvidClass.hpp"
#include "corvid/CorvidPackage.hpp"

namespace luafront {

void registerNamespaces(lua_State* state);

/// Null when the value is none.
corvid::CorvidPackage* toPackage(lua_State* state, int index);
corvid::CorvidClass* toClass(lua_State* state, int index);

}  // namespace luafront
