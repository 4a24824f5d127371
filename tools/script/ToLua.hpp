// Host values as Lua values.
//
// Scalars become booleans, integers, numbers and strings (UTF-8), members of an enumeration the text of their literal,
// structs and cells tables, functions of a script the function itself; what has several elements, or none, stays an
// array.
#pragma once

#include <lua.hpp>

#include "kestrel/ArrayBase.hpp"

namespace luafront {

/// What is known of a value's number of elements. A single one is nil when it is empty; many stay an array, or a list,
/// also when there is just one; an unknown number is an element when it is one, and an array otherwise. A char array is
/// a text in any case.
enum class Arity { Single, Many, Unknown };

/// Null is nil.
void pushValue(lua_State* state, kestrel::OwnedArray array, Arity arity);

/// One element of an array.
void pushElement(lua_State* state, kestrel_array const& array, std::size_t index);

}  // namespace luafront
