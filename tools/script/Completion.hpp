// What a name at the end of a line of Lua can be completed to: globals and packages, the classes of a package, the
// members of a class, the properties and methods of an object.
#pragma once

#include <lua.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace luafront {

/// The completions of the last name of a line, each with all that stands before it in the same chain of names
/// ("a.b.c"), sorted. Reads the chain as the script would, and completes nothing where that fails.
std::vector<std::string> completions(lua_State* state, std::string_view line);

/// The characters that end a chain of names, for a line editor.
constexpr char const* WORD_BREAKS = " \t\n\"\\'`@$><=;|&{(+-*/%^#~,)}[]";

}  // namespace luafront
