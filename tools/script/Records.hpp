// Structs and lists of values that a property holds, as tables that stay in step with it: a change of such a table, at
// whatever depth, is an assignment of the property, and is refused as that would be.
//
// A record is a table without fields of its own; pairs, ipairs, #, next and the functions of the library "table" work
// on it. Thread rule: the host's thread.
#pragma once

#include <exception>
#include <lua.hpp>

#include "Context.hpp"
#include "Objects.hpp"
#include "corvid/CorvidPropInfo.hpp"
#include "kestrel/ArrayBase.hpp"

namespace luafront {

/// Sets up records, and `next` so that it knows them.
void registerRecords(lua_State* state);

/// Whether an array that a property gave is shown as a record: a struct, or a list that isn't empty.
bool isRecord(kestrel_array const& array) noexcept;
/// Pushes what the property of the object at the index holds.
void pushRecord(lua_State* state, int object, corvid::CorvidPropInfo const& property, kestrel::OwnedArray array);

/// Pushes a list of the names that the record at the index has, none for a list; false, and nothing pushed, for any
/// other value.
bool pushRecordNames(lua_State* state, int index);

/// A copy of what the record at the index shows; null for any other value. Raises HostError when it has been changed
/// since in such a way that it has nothing to show.
kestrel::OwnedArray recordToHost(lua_State* state, int index);

/// Calls `action`, which sets a property of an object; its errors name class and property.
template <class Action>
void namingProperty(ObjectBox const& box, corvid::CorvidPropInfo const& property, Action const& action) {
  try {
    action();
  } catch (ScriptFailure const&) {
    throw;
  } catch (std::exception const& error) {
    throw PlacedFailure(
        error, "Property '" + property.getName().text() + "' of '" + box.hostClass->getFullName().text() + "'");
  }
}

}  // namespace luafront
