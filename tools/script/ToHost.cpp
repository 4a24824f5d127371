#include "ToHost.hpp"

#include <algorithm>
#include <string>
#include <vector>

#include "Arrays.hpp"
#include "Context.hpp"
#include "Functions.hpp"
#include "Namespaces.hpp"
#include "Objects.hpp"
#include "Records.hpp"
#include "corvid/HostError.hpp"
#include "corvid/Invocation.hpp"
#include "groundwork/Unicode.hpp"
#include "kestrel/Array.hpp"

namespace luafront {
namespace {

// Each level takes some of the stack of the machine.
constexpr int DEEPEST_TABLE = 1000;
// The field by which a table of initial values names a class.
constexpr char const* CLASS_FIELD = "class";

[[noreturn]] void refuse(std::string const& sentence) {
  throw corvid::HostError(corvid::ErrorKey::WRONG_TYPE, sentence);
}

std::u16string utf16Of(lua_State* state, int index) {
  std::string_view const utf8 = checkText(state, index);
  std::u16string utf16 = groundwork::toUtf16(utf8);
  // Malformed sequences are left out in the conversion, and then the way back leads elsewhere.
  if (utf16.size() != utf8.size() && groundwork::toUtf8(utf16) != utf8) refuse("The text is not valid UTF-8.");
  return utf16;
}

// The class at the index under its name; null for any other value.
kestrel::OwnedArray nameOfClass(lua_State* state, int index) {
  corvid::CorvidClass const* const hostClass = toClass(state, index);
  return hostClass != nullptr ? kestrel::createChar(groundwork::toUtf16(hostClass->getFullName().text())) : nullptr;
}

enum class ListKind { Empty, Integers, Numbers, Booleans, Strings, Objects, Mixed };

ListKind kindOfElement(lua_State* state, int index) {
  switch (lua_type(state, index)) {
    case LUA_TNUMBER:
      return lua_isinteger(state, index) != 0 ? ListKind::Integers : ListKind::Numbers;
    case LUA_TBOOLEAN:
      return ListKind::Booleans;
    case LUA_TSTRING:
      return ListKind::Strings;
    case LUA_TUSERDATA:
      return toObject(state, index) != nullptr ? ListKind::Objects : ListKind::Mixed;
    default:
      return ListKind::Mixed;
  }
}

ListKind together(ListKind list, ListKind element) {
  if (list == element || list == ListKind::Empty) return element;
  bool const numeric = (list == ListKind::Integers || list == ListKind::Numbers) &&
                       (element == ListKind::Integers || element == ListKind::Numbers);
  return numeric ? ListKind::Numbers : ListKind::Mixed;
}

// One table on its way to the host; tables within it are converted with a smaller depth left.
class TableReader {
 public:
  TableReader(lua_State* state, int index, int depth)
      : m_state(state), m_index(lua_absindex(state, index)), m_depth(depth) {
    if (depth == 0)
      refuse("A table is nested more than " + std::to_string(DEEPEST_TABLE) + " levels deep, or in itself.");
    luaL_checkstack(state, 8, "a table is nested too deeply");
  }

  kestrel::OwnedArray read(EmptyTable empty) {
    readKeys();
    std::size_t const count = lua_rawlen(m_state, m_index);
    if (!m_names.empty()) {
      if (m_positions != 0) refuse("A table has either names or positions, not both.");
      return readStruct();
    }
    if (m_positions != count) refuse("The positions of a list have to go from 1 to its length without a gap.");
    if (count == 0)
      return empty == EmptyTable::AsList ? kestrel::createEmpty(kestrel::ClassId::Cell) : kestrel::createStruct({});
    return readList(count);
  }

 private:
  void readKeys() {
    lua_pushnil(m_state);
    while (lua_next(m_state, m_index) != 0) {
      lua_pop(m_state, 1);
      if (lua_type(m_state, -1) == LUA_TSTRING) {
        utf16Of(m_state, -1);
        m_names.emplace_back(checkText(m_state, -1));
      } else if (lua_isinteger(m_state, -1) != 0) {
        ++m_positions;
      } else {
        refuse("The keys of a table have to be names or positions.");
      }
    }
    // Lua has no order of keys: the fields stand in the order of their names, the same in every run.
    std::sort(m_names.begin(), m_names.end());
  }

  kestrel::OwnedArray convertTop() {
    kestrel::OwnedArray converted = recordToHost(m_state, -1);
    if (converted == nullptr)
      converted = lua_istable(m_state, -1) ? TableReader(m_state, -1, m_depth - 1).read(EmptyTable::AsStruct)
                                           : toHost(m_state, -1).take();
    lua_pop(m_state, 1);
    return converted;
  }

  kestrel::OwnedArray readStruct() {
    kestrel::OwnedArray array = kestrel::createStruct(m_names);
    for (std::string const& name : m_names) {
      lua_pushlstring(m_state, name.data(), name.size());
      lua_rawget(m_state, m_index);
      kestrel::OwnedArray className = name == CLASS_FIELD ? nameOfClass(m_state, -1) : nullptr;
      if (className != nullptr) lua_pop(m_state, 1);
      kestrel::setField(*array, 0, name, className != nullptr ? std::move(className) : convertTop());
    }
    return array;
  }

  template <class Put>
  void forEachElement(std::size_t count, Put put) {
    for (std::size_t i = 0; i < count; ++i) {
      lua_rawgeti(m_state, m_index, static_cast<lua_Integer>(i) + 1);
      put(i);
      lua_pop(m_state, 1);
    }
  }

  template <class T, class Read>
  kestrel::OwnedArray readRow(std::size_t count, Read read) {
    kestrel::OwnedArray array = kestrel::createNumeric<T>(kestrel::row(count));
    T* const elements = kestrel::mutableData<T>(*array);
    forEachElement(count, [&](std::size_t i) { elements[i] = read(); });
    return array;
  }

  kestrel::OwnedArray readList(std::size_t count) {
    ListKind kind = ListKind::Empty;
    forEachElement(count, [&](std::size_t) { kind = together(kind, kindOfElement(m_state, -1)); });
    switch (kind) {
      case ListKind::Integers:
        return readRow<std::int64_t>(count, [&] { return lua_tointeger(m_state, -1); });
      case ListKind::Numbers:
        return readRow<double>(count, [&] { return lua_tonumber(m_state, -1); });
      case ListKind::Booleans:
        return readRow<bool>(count, [&] { return lua_toboolean(m_state, -1) != 0; });
      case ListKind::Strings:
        return readStrings(count);
      case ListKind::Objects:
        return readObjects(count);
      default:
        return readCells(count);
    }
  }

  kestrel::OwnedArray readStrings(std::size_t count) {
    kestrel::OwnedArray array = kestrel::createStrings(kestrel::row(count));
    forEachElement(count, [&](std::size_t i) { kestrel::setStringElement(*array, i, utf16Of(m_state, -1)); });
    return array;
  }

  kestrel::OwnedArray readObjects(std::size_t count) {
    corvid::Identifier const unsettled = corvid::internal::makeInterned(kestrel::HETEROGENEOUS);
    kestrel::OwnedArray array = kestrel::createObjects(unsettled, kestrel::row(count));
    forEachElement(
        count, [&](std::size_t i) { kestrel::setObject(*array, i, kestrel::object(*toObject(m_state, -1)->self)); });
    corvid::settleClass(*array);
    return array;
  }

  kestrel::OwnedArray readCells(std::size_t count) {
    kestrel::OwnedArray array = kestrel::createCell(kestrel::row(count));
    for (std::size_t i = 0; i < count; ++i) {
      lua_rawgeti(m_state, m_index, static_cast<lua_Integer>(i) + 1);
      kestrel::setCell(*array, i, convertTop());
    }
    return array;
  }

  lua_State* m_state;
  int m_index;
  int m_depth;
  std::vector<std::string> m_names;
  std::size_t m_positions = 0;
};

HostValue userdataToHost(lua_State* state, int index) {
  if (ObjectBox const* const box = toUsableObject(state, index)) return HostValue(*box->self);
  if (kestrel_array const* const array = toArray(state, index)) return HostValue(*array);
  refuse("A package or class is no value here.");
}

bool endsWith(std::string const& text, std::string_view ending) {
  return text.size() >= ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

}  // namespace

EmptyTable emptyTableFor(corvid::Identifier dataType) {
  std::string const& name = dataType.text();
  // Only the name of a class has a dot.
  bool const isList = name == "cell" || endsWith(name, " vector") || name.find('.') != std::string::npos;
  return isList ? EmptyTable::AsList : EmptyTable::AsStruct;
}

kestrel::OwnedArray HostValue::take() { return m_made != nullptr ? std::move(m_made) : kestrel::deepCopy(m_array); }

HostValue toHost(lua_State* state, int index, EmptyTable empty) {
  switch (lua_type(state, index)) {
    case LUA_TNONE:
    case LUA_TNIL:
      return HostValue(kestrel::createEmpty(kestrel::ClassId::Double));
    case LUA_TBOOLEAN:
      return HostValue(kestrel::createScalar(lua_toboolean(state, index) != 0));
    case LUA_TNUMBER:
      if (lua_isinteger(state, index) != 0)
        return HostValue(kestrel::createScalar<std::int64_t>(lua_tointeger(state, index)));
      return HostValue(kestrel::createScalar<double>(lua_tonumber(state, index)));
    case LUA_TSTRING:
      return HostValue(kestrel::createChar(utf16Of(state, index)));
    case LUA_TTABLE:
      if (kestrel::OwnedArray record = recordToHost(state, index)) return HostValue(std::move(record));
      return HostValue(TableReader(state, index, DEEPEST_TABLE).read(empty));
    case LUA_TFUNCTION:
      return HostValue(functionToHost(state, index));
    case LUA_TUSERDATA:
      return userdataToHost(state, index);
    default:
      refuse(std::string("A value of the type '") + luaL_typename(state, index) + "' can't leave its script.");
  }
}

HostValue toHostAs(lua_State* state, int index, corvid::Identifier dataType) {
  if (dataType.text() == "any") {
    kestrel::OwnedArray name = nameOfClass(state, index);
    if (name != nullptr) return HostValue(std::move(name));
  }
  return toHost(state, index, emptyTableFor(dataType));
}

}  // namespace luafront
