// The table `host` of a script: what it can ask about classes and values, and the census of what it holds.
#pragma once

#include <lua.hpp>

namespace luafront {

/// Sets the global `host`:
///   host.class(value)            the name of the value's class
///   host.isa(value, class)       whether the value is of the class, given as such or by its name, or of a subclass
///   host.isvalid(object)         whether the object can still be used
///   host.properties(x)           the names of the properties of an object or class, without hidden ones
///   host.methods(x)              the same for methods
///   host.classes(package)        the names of the classes of a package, without hidden ones
///   host.array(class, list)      an array of a numeric class or of "string"
///   host.census()                counts of script objects, arrays and descriptions, after a collection of garbage
void registerHostLibrary(lua_State* state);

}  // namespace luafront
