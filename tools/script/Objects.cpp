#include "Objects.hpp"

#include <new>

#include "Calls.hpp"
#include "Context.hpp"
#include "Functions.hpp"
#include "Records.hpp"
#include "ToHost.hpp"
#include "ToLua.hpp"
#include "corvid/Invocation.hpp"

namespace luafront {
namespace {

using corvid::CorvidClass;
using corvid::CorvidPropInfo;
using corvid::internal::makeInterned;

constexpr char const* OBJECT_TYPE = "host object";
// Addresses of these are keys of the registry: the userdata by object, and the members by class.
char const OBJECTS_KEY = 0;
char const MEMBERS_KEY = 0;

ObjectBox& checkObject(lua_State* state, int index) {
  luaL_checkudata(state, index, OBJECT_TYPE);
  return *toUsableObject(state, index);
}

bool hasMethod(ObjectBox const& box, char const* name) {
  return !box.hostClass->getMethods(makeInterned(name)).empty();
}

// Maps have a shorter name for "at".
char const* keyedAccess(CorvidClass const& hostClass) {
  char const* const get = "get";
  return hostClass.getMethods(makeInterned(get)).empty() ? corvid::ContainerMethod::AT : get;
}

// Pushes the table of a class's members: property by name as a light userdata, method by name as a function.
void pushMembers(lua_State* state, CorvidClass const& hostClass) {
  lua_rawgetp(state, LUA_REGISTRYINDEX, &MEMBERS_KEY);
  if (lua_rawgetp(state, -1, &hostClass) == LUA_TNIL) {
    lua_pop(state, 1);
    lua_newtable(state);
    lua_pushvalue(state, -1);
    lua_rawsetp(state, -3, &hostClass);
  }
  lua_remove(state, -2);
}

[[noreturn]] void refuseMember(CorvidClass const& hostClass, corvid::Identifier name) {
  std::string sentence =
      "Class '" + hostClass.getFullName().text() + "' has no property or method '" + name.text() + "'";
  if (!hostClass.getMethods(makeInterned(corvid::ContainerMethod::KEYS)).empty())
    sentence += "; an element is reached by its key with the method '" + std::string(keyedAccess(hostClass)) + "'";
  throw corvid::HostError(corvid::ErrorKey::NO_SUCH_MEMBER, sentence + ".");
}

// Pushes the member of an object's class under the name at stack index 2, as it stands in the table of members.
void pushMember(lua_State* state, CorvidClass const& hostClass) {
  pushMembers(state, hostClass);
  lua_pushvalue(state, 2);
  if (lua_rawget(state, -2) != LUA_TNIL) return lua_remove(state, -2);
  lua_pop(state, 1);

  corvid::Identifier const name = makeInterned(checkText(state, 2));
  if (CorvidPropInfo const* const property = hostClass.findProperty(name)) {
    lua_pushlightuserdata(state, const_cast<CorvidPropInfo*>(property));
  } else if (!hostClass.getMethods(name).empty()) {
    pushMethod(state, hostClass, name, NamedOn::Object);
  } else {
    refuseMember(hostClass, name);
  }
  lua_pushvalue(state, 2);
  lua_pushvalue(state, -2);
  lua_rawset(state, -4);
  lua_remove(state, -2);
}

int callWith(lua_State* state, char const* method) {
  return callMethod(state, *checkObject(state, 1).hostClass, makeInterned(method), 1);
}

int index(lua_State* state) {
  ObjectBox const& box = checkObject(state, 1);
  if (lua_type(state, 2) != LUA_TSTRING) return callWith(state, corvid::ContainerMethod::AT);
  pushMember(state, *box.hostClass);
  if (lua_islightuserdata(state, -1) == 0) return 1;
  auto const& property = *static_cast<CorvidPropInfo const*>(lua_touserdata(state, -1));
  bool const isMany = property.getMultiplicity() == corvid::Multiplicity::Many;
  kestrel::OwnedArray value = corvid::getProperty(*box.self, property);
  if (value != nullptr && isRecord(*value) && !property.isReadOnly()) {
    pushRecord(state, 1, property, std::move(value));
  } else {
    pushValue(state, std::move(value), isMany ? Arity::Many : Arity::Single);
  }
  return 1;
}

// Sets a property to the value at a stack index; errors name class and property.
void assign(lua_State* state, ObjectBox const& box, CorvidPropInfo const& property, int index) {
  ++Context::of(state).changes;
  bool const isMany = property.getMultiplicity() == corvid::Multiplicity::Many;
  EmptyTable const empty = isMany ? EmptyTable::AsList : emptyTableFor(property.getDataType());
  namingProperty(box, property, [&] { corvid::setProperty(*box.self, property, toHost(state, index, empty).get()); });
}

int newIndex(lua_State* state) {
  ObjectBox const& box = checkObject(state, 1);
  if (lua_type(state, 2) != LUA_TSTRING)
    throw corvid::HostError(corvid::ErrorKey::READ_ONLY_PROPERTY,
                            "Only properties are assigned; the elements of a collection are changed by its methods.");
  pushMember(state, *box.hostClass);
  if (lua_islightuserdata(state, -1) == 0)
    throw corvid::HostError(corvid::ErrorKey::READ_ONLY_PROPERTY,
                            "'" + std::string(lua_tostring(state, 2)) + "' is a method and can't be assigned.");
  assign(state, box, *static_cast<CorvidPropInfo const*>(lua_touserdata(state, -1)), 3);
  return 0;
}

int length(lua_State* state) {
  lua_settop(state, 1);
  return callWith(state, corvid::ContainerMethod::SIZE);
}

// Walks go over what was there when they began, and leave out what isn't any more.

// Upvalues: the keys and the position reached in them. Gives the next key whose element is there.
int nextKeyed(lua_State* state) {
  lua_settop(state, 1);
  ObjectBox const& box = checkObject(state, 1);
  lua_Integer position = lua_tointeger(state, lua_upvalueindex(2));
  lua_Integer const count = luaL_len(state, lua_upvalueindex(1));
  while (++position <= count) {
    lua_settop(state, 1);
    lua_geti(state, lua_upvalueindex(1), position);
    lua_pushvalue(state, 1);
    lua_pushvalue(state, 2);
    int const results = callMethod(state, *box.hostClass, makeInterned(corvid::ContainerMethod::AT), 3);
    if (results == 0 || lua_isnil(state, -1)) continue;
    lua_pushinteger(state, position);
    lua_replace(state, lua_upvalueindex(2));
    lua_pushvalue(state, 2);
    lua_insert(state, -2);
    return 2;
  }
  return 0;
}

// Upvalue: the position reached, among those that there are now.
int nextPosition(lua_State* state) {
  lua_settop(state, 1);
  ObjectBox const& box = checkObject(state, 1);
  lua_Integer const position = lua_tointeger(state, lua_upvalueindex(1)) + 1;
  if (position > luaL_len(state, 1)) return 0;
  lua_pushinteger(state, position);
  lua_replace(state, lua_upvalueindex(1));
  lua_pushinteger(state, position);
  if (callMethod(state, *box.hostClass, makeInterned(corvid::ContainerMethod::AT), 1) == 0) lua_pushnil(state);
  lua_pushinteger(state, position);
  lua_insert(state, -2);
  return 2;
}

// Whether the object at the top of the stack is still in the collection at stack index 1. One that has been destroyed
// can't be asked for, but may still be listed.
bool isStillThere(lua_State* state, CorvidClass const& hostClass) {
  ObjectBox const* const element = toObject(state, -1);
  int const top = lua_gettop(state);
  if (element != nullptr && !corvid::isLive(*element->self)) {
    lua_pushvalue(state, 1);
    callMethod(state, hostClass, makeInterned(corvid::ContainerMethod::VALUES), top + 1);
    bool isListed = false;
    for (lua_Integer i = luaL_len(state, -1); i > 0 && !isListed; --i, lua_pop(state, 1)) {
      lua_geti(state, top + 2, i);
      isListed = lua_rawequal(state, -1, top) != 0;
    }
    lua_settop(state, top);
    return isListed;
  }
  lua_pushvalue(state, 1);
  lua_pushvalue(state, top);
  callMethod(state, hostClass, makeInterned(corvid::ContainerMethod::CONTAINS), top + 1);
  bool const isThere = lua_toboolean(state, -1) != 0;
  lua_settop(state, top);
  return isThere;
}

// Upvalues: the array of all elements, the position reached in it, and the count of changes when it was read. As long
// as nothing has been changed since, nothing can have been taken out.
int nextValue(lua_State* state) {
  lua_settop(state, 1);
  ObjectBox const& box = checkObject(state, 1);
  bool const isChanged =
      Context::of(state).changes != static_cast<std::uint64_t>(lua_tointeger(state, lua_upvalueindex(3)));
  bool const isChecked = isChanged && hasMethod(box, corvid::ContainerMethod::CONTAINS);
  lua_Integer position = lua_tointeger(state, lua_upvalueindex(2));
  lua_Integer const count = luaL_len(state, lua_upvalueindex(1));
  while (++position <= count) {
    lua_settop(state, 1);
    lua_pushinteger(state, position);
    lua_geti(state, lua_upvalueindex(1), position);
    if (isChecked && !isStillThere(state, *box.hostClass)) continue;
    lua_pushinteger(state, position);
    lua_replace(state, lua_upvalueindex(2));
    return 2;
  }
  return 0;
}

int pairs(lua_State* state) {
  lua_settop(state, 1);
  ObjectBox const& box = checkObject(state, 1);
  if (hasMethod(box, corvid::ContainerMethod::KEYS)) {
    callWith(state, corvid::ContainerMethod::KEYS);
    lua_pushinteger(state, 0);
    lua_pushcclosure(state, guarded<nextKeyed>, 2);
  } else if (hasMethod(box, corvid::ContainerMethod::VALUES)) {
    callWith(state, corvid::ContainerMethod::VALUES);
    lua_pushinteger(state, 0);
    lua_pushinteger(state, static_cast<lua_Integer>(Context::of(state).changes));
    lua_pushcclosure(state, guarded<nextValue>, 3);
  } else if (hasMethod(box, corvid::ContainerMethod::AT)) {
    lua_pushinteger(state, 0);
    lua_pushcclosure(state, guarded<nextPosition>, 1);
  } else {
    throw corvid::HostError(
        corvid::ErrorKey::NO_SUCH_MEMBER,
        "An object of the class '" + box.hostClass->getFullName().text() + "' has no elements to walk.");
  }
  lua_pushvalue(state, 1);
  lua_pushnil(state);
  return 3;
}

int equal(lua_State* state) {
  ObjectBox const* const left = toObject(state, 1);
  ObjectBox const* const right = toObject(state, 2);
  lua_pushboolean(state,
                  left != nullptr && right != nullptr && kestrel::equalContents(left->self.get(), right->self.get()));
  return 1;
}

int lessThan(lua_State* state) {
  lua_settop(state, 2);
  return callWith(state, "lt");
}

int toString(lua_State* state) {
  ObjectBox const& box = checkObject(state, 1);
  lua_pushfstring(state, "%s%s: %p", box.hostClass->getFullName().c_str(),
                  corvid::isLive(*box.self) ? "" : " (destroyed)",
                  static_cast<void const*>(kestrel::object(*box.self).get()));
  return 1;
}

int close(lua_State* state) {
  lua_settop(state, 1);
  ObjectBox const& box = checkObject(state, 1);
  if (corvid::isLive(*box.self) && hasMethod(box, corvid::CLOSE_METHOD)) callWith(state, corvid::CLOSE_METHOD);
  return 0;
}

int collect(lua_State* state) {
  ++Context::of(state).changes;  // a transaction that is let go of takes back what it did
  static_cast<ObjectBox*>(luaL_checkudata(state, 1, OBJECT_TYPE))->self.letGo(Context::of(state).memory);
  return 0;
}

void createRegistryTable(lua_State* state, char const* key, char const* mode) {
  lua_newtable(state);
  if (mode != nullptr) {
    lua_createtable(state, 0, 1);
    lua_pushstring(state, mode);
    lua_setfield(state, -2, "__mode");
    lua_setmetatable(state, -2);
  }
  lua_rawsetp(state, LUA_REGISTRYINDEX, key);
}

}  // namespace

void registerObjects(lua_State* state) {
  createRegistryTable(state, &OBJECTS_KEY, "v");
  createRegistryTable(state, &MEMBERS_KEY, nullptr);
  luaL_newmetatable(state, OBJECT_TYPE);
  setFunction<index>(state, "__index");
  setFunction<newIndex>(state, "__newindex");
  setFunction<length>(state, "__len");
  setFunction<pairs>(state, "__pairs");
  setFunction<equal>(state, "__eq");
  setFunction<lessThan>(state, "__lt");
  setFunction<toString>(state, "__tostring");
  setFunction<close>(state, "__close");
  setFunction<collect>(state, "__gc");
  finishType(state, OBJECT_TYPE);
}

void pushObject(lua_State* state, kestrel::ObjectRef const& object) {
  if (!object) return lua_pushnil(state);
  lua_rawgetp(state, LUA_REGISTRYINDEX, &OBJECTS_KEY);
  // While the interpreter closes, what has been finalized is still in the table, perhaps for an object that is gone.
  if (lua_rawgetp(state, -1, object.get()) == LUA_TUSERDATA &&
      static_cast<ObjectBox*>(lua_touserdata(state, -1))->self.get() != nullptr)
    return lua_remove(state, -2);
  lua_pop(state, 1);
  if (pushScriptValue(state, *object)) return lua_remove(state, -2);

  CorvidClass const& hostClass = CorvidClass::requireClass(object->className());
  HostMemory& memory = Context::of(state).memory;
  auto* const box = new (lua_newuserdatauv(state, sizeof(ObjectBox), 0)) ObjectBox{{}, &hostClass};
  luaL_setmetatable(state, OBJECT_TYPE);
  box->self.take(memory, kestrel::createObject(object));
  lua_pushvalue(state, -1);
  lua_rawsetp(state, -3, object.get());
  lua_remove(state, -2);
  memory.collectIfDue(state);
}

ObjectBox* toObject(lua_State* state, int index) {
  auto* const box = static_cast<ObjectBox*>(luaL_testudata(state, index, OBJECT_TYPE));
  return box != nullptr && box->self.get() != nullptr ? box : nullptr;
}

ObjectBox* toUsableObject(lua_State* state, int index) {
  auto* const box = static_cast<ObjectBox*>(luaL_testudata(state, index, OBJECT_TYPE));
  if (box != nullptr && box->self.get() == nullptr)
    throw corvid::HostError(corvid::ErrorKey::INVALID_HANDLE, "The object has been collected.");
  return box;
}

}  // namespace luafront
