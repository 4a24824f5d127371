#include "ToLua.hpp"

#include <limits>
#include <string>

#include "Arrays.hpp"
#include "Functions.hpp"
#include "Objects.hpp"
#include "corvid/Invocation.hpp"
#include "groundwork/unicode.hpp"
#include "kestrel/array.hpp"

namespace luafront {
namespace {

void pushText(lua_State* state, std::u16string_view text) {
  std::string const utf8 = groundwork::toUtf8(text);
  lua_pushlstring(state, utf8.data(), utf8.size());
}

// The literal of an element of an enumeration; its number when it is no literal.
void pushMember(lua_State* state, corvid::CorvidClass const& enumeration, kestrel_array const& array,
                std::size_t index) {
  double const number = kestrel::elementAsDouble(array, index);
  for (auto const& member : enumeration.getEnumValues())
    if (kestrel::elementAsDouble(member->getValue()) == number)
      return static_cast<void>(lua_pushstring(state, member->getName().c_str()));
  lua_pushinteger(state, static_cast<lua_Integer>(number));
}

void pushUnsigned(lua_State* state, std::uint64_t number) {
  if (number <= static_cast<std::uint64_t>(std::numeric_limits<lua_Integer>::max())) {
    lua_pushinteger(state, static_cast<lua_Integer>(number));
  } else {
    // Beyond Lua's integers: an array of one keeps it exactly.
    pushArray(state, kestrel::createScalar(number));
  }
}

void pushNumber(lua_State* state, kestrel_array const& array, std::size_t index) {
  kestrel::ClassId const id = kestrel::baseClass(array);
  if (id == kestrel::ClassId::Double || id == kestrel::ClassId::Single) {
    lua_pushnumber(state, kestrel::elementAsDouble(array, index));
  } else if (id == kestrel::ClassId::Int64) {
    lua_pushinteger(state, kestrel::element<std::int64_t>(array, index));
  } else if (id == kestrel::ClassId::UInt64) {
    pushUnsigned(state, kestrel::element<std::uint64_t>(array, index));
  } else {
    lua_pushinteger(state, static_cast<lua_Integer>(kestrel::elementAsDouble(array, index)));
  }
}

void pushCopy(lua_State* state, kestrel_array const* array) {
  pushValue(state, kestrel::deepCopy(array), Arity::Unknown);
}

void pushFields(lua_State* state, kestrel_array const& array, std::size_t index) {
  lua_newtable(state);
  for (std::string const& name : kestrel::fieldNames(array)) {
    lua_pushlstring(state, name.data(), name.size());
    pushCopy(state, kestrel::field(array, index, name));
    lua_rawset(state, -3);
  }
}

bool isTabular(kestrel::ClassId id) { return id == kestrel::ClassId::Struct || id == kestrel::ClassId::Cell; }

// A list of the elements of a cell or struct array.
void pushList(lua_State* state, kestrel_array const& array) {
  std::size_t const count = kestrel::numberOfElements(array);
  lua_createtable(state, static_cast<int>(count), 0);
  for (std::size_t i = 0; i < count; ++i) {
    pushElement(state, array, i);
    lua_rawseti(state, -2, static_cast<lua_Integer>(i) + 1);
  }
}

}  // namespace

void pushElement(lua_State* state, kestrel_array const& array, std::size_t index) {
  luaL_checkstack(state, 4, "a value is nested too deeply");
  kestrel::ClassId const id = kestrel::baseClass(array);
  if (id == kestrel::ClassId::Object) return pushObject(state, kestrel::object(array, index));
  corvid::CorvidClass const* const ownClass = corvid::classOf(array);
  if (ownClass != nullptr && ownClass->getInfo().isEnumeration()) return pushMember(state, *ownClass, array, index);
  switch (id) {
    case kestrel::ClassId::Logical:
      return lua_pushboolean(state, kestrel::element<bool>(array, index));
    case kestrel::ClassId::Char:
      return pushText(state, kestrel::charText(array).substr(index, 1));
    case kestrel::ClassId::String:
      if (kestrel::MaybeString const& text = kestrel::stringElement(array, index)) return pushText(state, *text);
      return lua_pushnil(state);
    case kestrel::ClassId::Struct:
      return pushFields(state, array, index);
    case kestrel::ClassId::Cell:
      return pushCopy(state, kestrel::cell(array, index));
    default:
      return pushNumber(state, array, index);
  }
}

void pushValue(lua_State* state, kestrel::OwnedArray array, Arity arity) {
  if (array == nullptr) return lua_pushnil(state);
  luaL_checkstack(state, 4, "a value is nested too deeply");
  kestrel::ClassId const id = kestrel::baseClass(*array);
  if (id == kestrel::ClassId::Char) return pushText(state, kestrel::charText(*array));
  if (kestrel::isEmpty(*array) && arity == Arity::Single) return lua_pushnil(state);
  // A cell of one is still a list.
  bool const isElement = kestrel::isScalar(*array) && arity != Arity::Many && id != kestrel::ClassId::Cell;
  if (isElement) return pushElement(state, *array, 0);
  if (isTabular(id)) return pushList(state, *array);
  pushArray(state, std::move(array));
}

}  // namespace luafront
