// Lua values as host values.
//
// nil is an empty array, a boolean a logical, an integer an int64, a number a double, a string a char array, a function
// a function of the host. A table with names is a struct, one with positions a list: a row when its elements are all
// numbers, booleans, strings or objects, otherwise a cell array.
#pragma once

#include <lua.hpp>

#include "corvid/CorvidMethodInfo.hpp"
#include "corvid/Identifier.hpp"
#include "kestrel/ArrayBase.hpp"

namespace luafront {

/// What a table without elements stands for.
enum class EmptyTable { AsStruct, AsList };

/// A list for the types of objects, of vectors and of cells, a struct for all others.
EmptyTable emptyTableFor(corvid::Identifier dataType);

/// A converted value: borrowed off an object or array of Lua, which then has to stay on the stack, or made for it.
class HostValue {
 public:
  explicit HostValue(kestrel_array const& borrowed) : m_array(&borrowed) {}
  explicit HostValue(kestrel::OwnedArray made) : m_made(std::move(made)), m_array(m_made.get()) {}

  kestrel_array const& get() const noexcept { return *m_array; }
  /// A copy when the value is borrowed.
  kestrel::OwnedArray take();

 private:
  kestrel::OwnedArray m_made;
  kestrel_array const* m_array;
};

/// Raises HostError for what has no host value: text or a name that is no UTF-8, a table of names and positions
/// together, a table in itself, a coroutine, a class or package. Only in the field "class" of a table a class stands
/// for its name.
HostValue toHost(lua_State* state, int index, EmptyTable empty = EmptyTable::AsStruct);
/// The same for an argument of a data type: where it is "any", a class stands for its name.
HostValue toHostAs(lua_State* state, int index, corvid::Identifier dataType);

}  // namespace luafront
