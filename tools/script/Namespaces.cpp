#include "Namespaces.hpp"

#include <string>

#include "Calls.hpp"
#include "Context.hpp"
#include "corvid/HostError.hpp"
#include "corvid/Invocation.hpp"

namespace luafront {
namespace {

constexpr char const* PACKAGE_TYPE = "host package";
constexpr char const* CLASS_TYPE = "host class";

using corvid::CorvidClass;
using corvid::CorvidPackage;

template <class T>
void pushPointer(lua_State* state, T* pointer, char const* type) {
  *static_cast<T**>(lua_newuserdatauv(state, sizeof pointer, 0)) = pointer;
  luaL_setmetatable(state, type);
}

template <class T>
T* toPointer(lua_State* state, int index, char const* type) {
  void* const box = luaL_testudata(state, index, type);
  return box != nullptr ? *static_cast<T**>(box) : nullptr;
}

CorvidPackage& checkPackage(lua_State* state) {
  return **static_cast<CorvidPackage**>(luaL_checkudata(state, 1, PACKAGE_TYPE));
}

CorvidClass& checkClass(lua_State* state) {
  return **static_cast<CorvidClass**>(luaL_checkudata(state, 1, CLASS_TYPE));
}

int globalIndex(lua_State* state) {
  if (lua_type(state, 2) != LUA_TSTRING) return 0;
  CorvidPackage* const package = CorvidPackage::findTopLevelPackage(checkText(state, 2));
  if (package == nullptr) return 0;
  pushPointer(state, package, PACKAGE_TYPE);
  return 1;
}

int packageIndex(lua_State* state) {
  CorvidPackage& package = checkPackage(state);
  std::string const name(checkText(state, 2));
  if (CorvidPackage* const subpackage = package.findSubpackage(name)) {
    pushPointer(state, subpackage, PACKAGE_TYPE);
    return 1;
  }
  if (package.findClass(name) == nullptr)
    throw corvid::HostError(corvid::ErrorKey::NO_SUCH_CLASS,
                            "Package '" + package.getFullName().text() + "' has no class or package '" + name + "'.");
  pushPointer(state, CorvidClass::getClass(corvid::internal::makeInterned(name), &package), CLASS_TYPE);
  return 1;
}

int packageToString(lua_State* state) {
  lua_pushstring(state, checkPackage(state).getFullName().c_str());
  return 1;
}

int classIndex(lua_State* state) {
  CorvidClass const& hostClass = checkClass(state);
  corvid::Identifier const name = corvid::internal::makeInterned(checkText(state, 2));
  if (hostClass.findEnumValue(name) != nullptr) {
    lua_pushstring(state, name.c_str());
  } else if (!hostClass.getMethods(name).empty()) {
    pushMethod(state, hostClass, name, NamedOn::Class);
  } else {
    throw corvid::HostError(corvid::ErrorKey::NO_SUCH_MEMBER, "Class '" + hostClass.getFullName().text() +
                                                                  "' has no method or literal '" + name.text() + "'.");
  }
  return 1;
}

int classCall(lua_State* state) { return constructObject(state, checkClass(state), 2); }

int classToString(lua_State* state) {
  lua_pushstring(state, checkClass(state).getFullName().c_str());
  return 1;
}

template <class T, T* (*read)(lua_State*, int)>
int equalPointers(lua_State* state) {
  T* const left = read(state, 1);
  lua_pushboolean(state, left != nullptr && left == read(state, 2));
  return 1;
}

int refuseAssignment(lua_State*) {
  throw corvid::HostError(corvid::ErrorKey::READ_ONLY_PROPERTY, "Nothing can be assigned in a package or class.");
}

}  // namespace

CorvidPackage* toPackage(lua_State* state, int index) { return toPointer<CorvidPackage>(state, index, PACKAGE_TYPE); }

CorvidClass* toClass(lua_State* state, int index) { return toPointer<CorvidClass>(state, index, CLASS_TYPE); }

void registerNamespaces(lua_State* state) {
  luaL_newmetatable(state, PACKAGE_TYPE);
  setFunction<packageIndex>(state, "__index");
  setFunction<packageToString>(state, "__tostring");
  setFunction<equalPointers<CorvidPackage, toPackage>>(state, "__eq");
  setFunction<refuseAssignment>(state, "__newindex");
  finishType(state, PACKAGE_TYPE);

  luaL_newmetatable(state, CLASS_TYPE);
  setFunction<classIndex>(state, "__index");
  setFunction<classCall>(state, "__call");
  setFunction<classToString>(state, "__tostring");
  setFunction<equalPointers<CorvidClass, toClass>>(state, "__eq");
  setFunction<refuseAssignment>(state, "__newindex");
  finishType(state, CLASS_TYPE);

  lua_pushglobaltable(state);
  // True globals, which no metatable that a script gives them can hide; by the metatable, packages that come later.
  for (CorvidPackage* const package : CorvidPackage::topLevelPackages()) {
    lua_pushstring(state, package->getName().c_str());
    if (lua_rawget(state, -2) == LUA_TNIL) {
      pushPointer(state, package, PACKAGE_TYPE);
      lua_setfield(state, -3, package->getName().c_str());
    }
    lua_pop(state, 1);
  }
  lua_createtable(state, 0, 1);
  setFunction<globalIndex>(state, "__index");
  lua_setmetatable(state, -2);
  lua_pop(state, 1);
}

}  // namespace luafront
