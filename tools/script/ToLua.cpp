#include "ToLua.hpp"

#include <limits>
#include <string>

#include "Arrays.hpp"
#include "Functions.hpp"
#include "Objects.hpp"
#include "corvid/HostError.hpp"
#include "corvid/Invocation.hpp"
#include "groundwork/Unicode.hpp"
#include "kestrel/Array.hpp"

namespace luafront {
namespace {

// Each level takes some of the stack of the machine.
constexpr int DEEPEST_VALUE = 1000;

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

bool isTabular(kestrel::ClassId id) { return id == kestrel::ClassId::Struct || id == kestrel::ClassId::Cell; }

// Structs and cells on their way to tables; those within them with a smaller depth left.
class TableMaker {
 public:
  TableMaker(lua_State* state, int depth) : m_state(state), m_depth(depth) {
    if (depth == 0)
      throw corvid::HostError(
          corvid::ErrorKey::WRONG_TYPE,
          "A value is nested more than " + std::to_string(DEEPEST_VALUE) + " levels deep, which no table shows.");
    luaL_checkstack(state, 6, "a value is nested too deeply");
  }

  void pushAll(kestrel_array const& array) const {
    std::size_t const count = kestrel::numberOfElements(array);
    lua_createtable(m_state, static_cast<int>(count), 0);
    for (std::size_t i = 0; i < count; ++i) {
      pushOne(array, i);
      lua_rawseti(m_state, -2, static_cast<lua_Integer>(i) + 1);
    }
  }
  void pushOne(kestrel_array const& array, std::size_t index) const {
    if (kestrel::baseClass(array) == kestrel::ClassId::Cell) return pushHeld(kestrel::cell(array, index));
    lua_newtable(m_state);
    for (std::string const& name : kestrel::fieldNames(array)) {
      lua_pushlstring(m_state, name.data(), name.size());
      pushHeld(kestrel::field(array, index, name));
      lua_rawset(m_state, -3);
    }
  }

 private:
  // A copy is made only of what stays an array.
  void pushHeld(kestrel_array const* held) const {
    if (held == nullptr) return lua_pushnil(m_state);
    if (!isTabular(kestrel::baseClass(*held))) return pushValue(m_state, kestrel::deepCopy(held), Arity::Unknown);
    TableMaker const inner(m_state, m_depth - 1);
    kestrel::isStruct(*held) && kestrel::isScalar(*held) ? inner.pushOne(*held, 0) : inner.pushAll(*held);
  }

  lua_State* m_state;
  int m_depth;
};

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
    case kestrel::ClassId::Cell:
      return TableMaker(state, DEEPEST_VALUE).pushOne(array, index);
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
  if (isTabular(id)) return TableMaker(state, DEEPEST_VALUE).pushAll(*array);
  pushArray(state, std::move(array));
}

}  // namespace luafront
