#include "HostLibrary.hpp"

#include <string>

#include "Arrays.hpp"
#include "Context.hpp"
#include "Namespaces.hpp"
#include "Objects.hpp"
#include "ToHost.hpp"
#include "corvid/CorvidTypeRepository.hpp"
#include "corvid/Host.hpp"
#include "corvid/Invocation.hpp"
#include "kestrel/Array.hpp"

namespace luafront {
namespace {

corvid::CorvidClass const& classOfArgument(lua_State* state) {
  if (ObjectBox const* const box = toObject(state, 1)) return *box->hostClass;
  if (corvid::CorvidClass const* const hostClass = toClass(state, 1)) return *hostClass;
  throw corvid::HostError(corvid::ErrorKey::WRONG_TYPE, "Expected an object or a class.");
}

// A class among the arguments, given as such or by its name.
std::string nameOfClass(lua_State* state, int index) {
  corvid::CorvidClass const* const hostClass = toClass(state, index);
  return hostClass != nullptr ? hostClass->getFullName().text() : std::string(checkText(state, index));
}

template <class Members>
int pushNames(lua_State* state, Members const& members) {
  lua_createtable(state, static_cast<int>(members.size()), 0);
  lua_Integer position = 0;
  for (auto const* member : members) {
    lua_pushstring(state, member->getName().c_str());
    lua_rawseti(state, -2, ++position);
  }
  return 1;
}

int properties(lua_State* state) { return pushNames(state, classOfArgument(state).listProperties()); }

int methods(lua_State* state) { return pushNames(state, classOfArgument(state).listMethods()); }

int classes(lua_State* state) {
  corvid::CorvidPackage* const package = toPackage(state, 1);
  if (package == nullptr) throw corvid::HostError(corvid::ErrorKey::WRONG_TYPE, "Expected a package.");
  lua_newtable(state);
  lua_Integer position = 0;
  for (corvid::CorvidClass const* hostClass : package->classes()) {
    if (hostClass->getInfo().isHidden()) continue;
    lua_pushstring(state, hostClass->getName().c_str());
    lua_rawseti(state, -2, ++position);
  }
  return 1;
}

int classOfValue(lua_State* state) {
  lua_pushstring(state, kestrel::className(toHost(state, 1).get()).c_str());
  return 1;
}

int isA(lua_State* state) {
  HostValue const value = toHost(state, 1);
  corvid::Identifier const name = corvid::internal::makeInterned(nameOfClass(state, 2));
  corvid::CorvidClass const* const hostClass = corvid::classOf(value.get());
  lua_pushboolean(state,
                  hostClass != nullptr ? hostClass->isSubclassOf(name) : kestrel::className(value.get()) == name);
  return 1;
}

int isValid(lua_State* state) {
  ObjectBox const* const box = toObject(state, 1);
  lua_pushboolean(state, box != nullptr && corvid::isLive(*box->self));
  return 1;
}

int array(lua_State* state) {
  std::string const type = std::string(checkText(state, 1)) + " vector";
  if (!lua_istable(state, 2))
    throw corvid::HostError(corvid::ErrorKey::WRONG_TYPE, "An array is made from a list of its elements.");
  kestrel::OwnedArray made;
  HostValue const list = toHost(state, 2, EmptyTable::AsList);
  kestrel_array const& coerced =
      corvid::CorvidTypeRepository::coerce(corvid::internal::makeInterned(type), list.get(), made);
  pushArray(state, made != nullptr ? std::move(made) : kestrel::deepCopy(&coerced));
  return 1;
}

void setCount(lua_State* state, char const* name, std::ptrdiff_t count) {
  lua_pushinteger(state, static_cast<lua_Integer>(count));
  lua_setfield(state, -2, name);
}

int census(lua_State* state) {
  // The second run frees what the finalizers of the first let go of.
  lua_gc(state, LUA_GCCOLLECT);
  lua_gc(state, LUA_GCCOLLECT);
  lua_newtable(state);
  setCount(state, "objects", corvid::liveObjectCount());
  setCount(state, "arrays", kestrel::liveArrayCount());
  setCount(state, "descriptions", corvid::liveDescriptionCount());
  return 1;
}

}  // namespace

void registerHostLibrary(lua_State* state) {
  lua_newtable(state);
  setFunction<classOfValue>(state, "class");
  setFunction<isA>(state, "isa");
  setFunction<isValid>(state, "isvalid");
  setFunction<properties>(state, "properties");
  setFunction<methods>(state, "methods");
  setFunction<classes>(state, "classes");
  setFunction<array>(state, "array");
  setFunction<census>(state, "census");
  lua_setglobal(state, "host");
}

}  // namespace luafront
