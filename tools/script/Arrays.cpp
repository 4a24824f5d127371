#include "Arrays.hpp"

#include <algorithm>
#include <cstdint>
#include <new>
#include <string>

#include "Context.hpp"
#include "ToLua.hpp"
#include "kestrel/Array.hpp"

namespace luafront {
namespace {

constexpr char const* ARRAY_TYPE = "host array";
constexpr std::size_t SHOWN_ELEMENTS = 16;

// Raises InvalidHandle in a finalizer that comes after the array's own.
kestrel_array const& checkArray(lua_State* state, int index) {
  luaL_checkudata(state, index, ARRAY_TYPE);
  return *toArray(state, index);
}

int index(lua_State* state) {
  kestrel_array const& array = checkArray(state, 1);
  int isInteger = 0;
  lua_Integer const position = lua_tointegerx(state, 2, &isInteger);
  bool const inside =
      isInteger != 0 && position >= 1 && static_cast<std::size_t>(position) <= kestrel::numberOfElements(array);
  if (inside) {
    pushElement(state, array, static_cast<std::size_t>(position) - 1);
  } else {
    lua_pushnil(state);
  }
  return 1;
}

int refuseChange(lua_State*) {
  throw corvid::HostError(corvid::ErrorKey::READ_ONLY_PROPERTY,
                          "An array is a value: assign a whole table where it came from.");
}

int length(lua_State* state) {
  lua_pushinteger(state, static_cast<lua_Integer>(kestrel::numberOfElements(checkArray(state, 1))));
  return 1;
}

int nextElement(lua_State* state) {
  lua_Integer const position = lua_tointeger(state, 2) + 1;
  kestrel_array const& array = checkArray(state, 1);
  if (static_cast<std::size_t>(position) > kestrel::numberOfElements(array)) return 0;
  lua_pushinteger(state, position);
  pushElement(state, array, static_cast<std::size_t>(position) - 1);
  return 2;
}

int pairs(lua_State* state) {
  lua_pushcfunction(state, guarded<nextElement>);
  lua_pushvalue(state, 1);
  lua_pushinteger(state, 0);
  return 3;
}

int equal(lua_State* state) {
  kestrel_array const* const left = toArray(state, 1);
  kestrel_array const* const right = toArray(state, 2);
  lua_pushboolean(state, left != nullptr && right != nullptr && kestrel::equalContents(left, right));
  return 1;
}

// Beyond Lua's integers an element is an array of its own, which would show itself for ever.
void pushElementText(lua_State* state, kestrel_array const& array, std::size_t index) {
  if (kestrel::baseClass(array) == kestrel::ClassId::UInt64) {
    lua_pushstring(state, std::to_string(kestrel::element<std::uint64_t>(array, index)).c_str());
  } else {
    pushElement(state, array, index);
    luaL_tolstring(state, -1, nullptr);
    lua_remove(state, -2);
  }
}

int toString(lua_State* state) {
  kestrel_array const& array = checkArray(state, 1);
  kestrel::Dimensions const size = kestrel::dimensions(array);
  luaL_Buffer text;
  luaL_buffinit(state, &text);
  lua_pushfstring(state, "%I by %I %s [", static_cast<lua_Integer>(size.rows), static_cast<lua_Integer>(size.columns),
                  kestrel::className(array).c_str());
  luaL_addvalue(&text);
  for (std::size_t i = 0; i < std::min(size.count(), SHOWN_ELEMENTS); ++i) {
    if (i != 0) luaL_addstring(&text, ", ");
    pushElementText(state, array, i);
    luaL_addvalue(&text);
  }
  luaL_addstring(&text, size.count() > SHOWN_ELEMENTS ? ", ...]" : "]");
  luaL_pushresult(&text);
  return 1;
}

int collect(lua_State* state) {
  static_cast<HeldArray*>(luaL_checkudata(state, 1, ARRAY_TYPE))->letGo(Context::of(state).memory);
  return 0;
}

}  // namespace

void registerArrays(lua_State* state) {
  luaL_newmetatable(state, ARRAY_TYPE);
  setFunction<index>(state, "__index");
  setFunction<refuseChange>(state, "__newindex");
  setFunction<length>(state, "__len");
  setFunction<pairs>(state, "__pairs");
  setFunction<equal>(state, "__eq");
  setFunction<toString>(state, "__tostring");
  setFunction<collect>(state, "__gc");
  finishType(state, ARRAY_TYPE);
}

void pushArray(lua_State* state, kestrel::OwnedArray array) {
  HostMemory& memory = Context::of(state).memory;
  auto* const held = new (lua_newuserdatauv(state, sizeof(HeldArray), 0)) HeldArray{};
  luaL_setmetatable(state, ARRAY_TYPE);
  held->take(memory, std::move(array));
  memory.collectIfDue(state);
}

kestrel_array const* toArray(lua_State* state, int index) {
  auto const* const held = static_cast<HeldArray*>(luaL_testudata(state, index, ARRAY_TYPE));
  if (held == nullptr) return nullptr;
  if (held->get() == nullptr)
    throw corvid::HostError(corvid::ErrorKey::INVALID_HANDLE, "The array has been collected.");
  return held->get();
}

}  // namespace luafront
