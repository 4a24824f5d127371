#include "Records.hpp"

#include <algorithm>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

#include "ToHost.hpp"
#include "ToLua.hpp"
#include "corvid/Invocation.hpp"
#include "groundwork/Unicode.hpp"
#include "kestrel/Array.hpp"

namespace luafront {
namespace {

using kestrel::OwnedArray;

constexpr char const* RECORD_TYPE = "host record";
constexpr char const* ROOT_TYPE = "host record's root";
// The address is a key of the registry: the nodes by record, as long as the record is in use.
char const NODES_KEY = 0;

// What one property held when it was read or written last. User value: the object.
struct Root {
  HeldArray held;
  corvid::CorvidPropInfo const* property;
  // Grows with each change, which moves what the nodes have found.
  std::uint64_t generation;
};

// One record: an element of a struct array, or a whole cell or struct array as a list, and the step that leads to it.
struct Node {
  kestrel_array const* array;
  std::size_t element;
  bool isElement;
  std::uint64_t generation;
  // In a list, counted from 0; without meaning where there is a name.
  std::size_t position;

  // Instead of a generation: what the node stood for has been replaced.
  static constexpr std::uint64_t REPLACED = ~std::uint64_t{0};

  bool hasNames() const { return kestrel::isStruct(*array) && (isElement || kestrel::isScalar(*array)); }
};
static_assert(std::is_trivially_destructible_v<Root> && std::is_trivially_destructible_v<Node>);

// The user values of a node: its root, the node that it stands in or nil, and the name of its field or nil.
enum NodeValue { ROOT = 1, PARENT = 2, NAME = 3 };

bool isTabular(kestrel_array const& array) {
  kestrel::ClassId const id = kestrel::baseClass(array);
  return id == kestrel::ClassId::Struct || id == kestrel::ClassId::Cell;
}

[[noreturn]] void refuseStale(Root const& root) {
  throw corvid::HostError(corvid::ErrorKey::STALE_VALUE,
                          "The property '" + root.property->getName().text() +
                              "' has been changed since this table was read from it; read it again.");
}

[[noreturn]] void refuse(std::string const& sentence) {
  throw corvid::HostError(corvid::ErrorKey::WRONG_TYPE, sentence);
}

std::string nameAt(lua_State* state, int index) { return std::string(checkText(state, index)); }

// Pushes the node of the record at the index; null, and nothing pushed, for any other value.
Node* pushNodeOf(lua_State* state, int index) {
  int const record = lua_absindex(state, index);
  if (lua_type(state, record) != LUA_TTABLE || lua_getmetatable(state, record) == 0) return nullptr;
  luaL_getmetatable(state, RECORD_TYPE);
  bool const isRecord = lua_rawequal(state, -1, -2) != 0;
  lua_pop(state, 2);
  if (!isRecord) return nullptr;
  lua_rawgetp(state, LUA_REGISTRYINDEX, &NODES_KEY);
  lua_pushvalue(state, record);
  lua_rawget(state, -2);
  lua_remove(state, -2);
  return static_cast<Node*>(lua_touserdata(state, -1));
}

// The root of the node at the index; its array is there.
Root& rootOf(lua_State* state, int node) {
  lua_getiuservalue(state, node, ROOT);
  auto& root = *static_cast<Root*>(lua_touserdata(state, -1));
  lua_pop(state, 1);
  if (root.held.get() == nullptr)
    throw corvid::HostError(corvid::ErrorKey::INVALID_HANDLE, "The table has been collected.");
  return root;
}

struct Step {
  std::size_t position;
  std::string name;
  bool hasName;

  friend bool operator==(Step const& left, Step const& right) {
    return left.hasName == right.hasName && (left.hasName ? left.name == right.name : left.position == right.position);
  }
};

// The steps from the root to the node at the index, in this order; the root's own is left out.
std::vector<Step> stepsTo(lua_State* state, int index) {
  std::vector<Step> steps;
  lua_pushvalue(state, index);
  while (true) {
    auto* const node = static_cast<Node*>(lua_touserdata(state, -1));
    lua_getiuservalue(state, -1, NAME);
    bool const hasName = lua_type(state, -1) == LUA_TSTRING;
    steps.push_back({node->position, hasName ? nameAt(state, -1) : std::string(), hasName});
    lua_pop(state, 1);
    lua_getiuservalue(state, -1, PARENT);
    lua_remove(state, -2);
    if (lua_isnil(state, -1)) break;
  }
  lua_pop(state, 1);
  steps.pop_back();
  std::reverse(steps.begin(), steps.end());
  return steps;
}

// Where a way leads in an array, which may have another form by now.
struct Place {
  kestrel_array const* array;
  std::size_t element = 0;
  bool isElement = false;

  void go(Step const& step, Root const& root) {
    bool const hasNames = kestrel::isStruct(*array) && (isElement || kestrel::isScalar(*array));
    bool const fits = step.hasName ? hasNames && kestrel::hasField(*array, step.name)
                                   : !hasNames && step.position < kestrel::numberOfElements(*array);
    if (!fits) refuseStale(root);
    if (!step.hasName && kestrel::isStruct(*array)) {
      element = step.position;
      isElement = true;
    } else {
      array = step.hasName ? kestrel::field(*array, element, step.name) : kestrel::cell(*array, step.position);
      element = 0;
      isElement = false;
    }
    if (array == nullptr || !isTabular(*array)) refuseStale(root);
  }
};

Place follow(std::vector<Step> const& steps, Root const& root, kestrel_array const& array) {
  Place place{&array};
  for (Step const& step : steps) place.go(step, root);
  return place;
}

// The node at the index, with its array found anew where that has moved.
Node& refreshed(lua_State* state, int index) {
  auto& node = *static_cast<Node*>(lua_touserdata(state, index));
  Root const& root = rootOf(state, index);
  if (node.generation == Node::REPLACED) refuseStale(root);
  if (node.generation == root.generation) return node;
  Place const place = follow(stepsTo(state, index), root, *root.held);
  node.array = place.array;
  node.element = place.element;
  node.isElement = place.isElement;
  node.generation = root.generation;
  return node;
}

// Replaces the record at stack index 1 by its node.
Node& takeRecord(lua_State* state) {
  if (pushNodeOf(state, 1) == nullptr) refuse("Expected a table that was read from a property.");
  lua_replace(state, 1);
  return refreshed(state, 1);
}

// Pushes a record for the node on top of the stack, and removes that.
void pushRecordOfTop(lua_State* state) {
  lua_newtable(state);
  luaL_setmetatable(state, RECORD_TYPE);
  lua_rawgetp(state, LUA_REGISTRYINDEX, &NODES_KEY);
  lua_pushvalue(state, -2);
  lua_pushvalue(state, -4);
  lua_rawset(state, -3);
  lua_pop(state, 1);
  lua_remove(state, -2);
}

// Pushes what stands in the node at stack index 1 under a name or position, whichever is at the index `key`.
void pushHeld(lua_State* state, Node const& parent, kestrel_array const* array, std::size_t position, int key) {
  bool const isElement = array == parent.array;
  if (array == nullptr) return lua_pushnil(state);
  if (!isElement && !isTabular(*array)) return pushValue(state, kestrel::deepCopy(array), Arity::Unknown);
  new (lua_newuserdatauv(state, sizeof(Node), 3))
      Node{array, isElement ? position : 0, isElement, parent.generation, position};
  lua_getiuservalue(state, 1, ROOT);
  lua_setiuservalue(state, -2, ROOT);
  lua_pushvalue(state, 1);
  lua_setiuservalue(state, -2, PARENT);
  if (lua_type(state, key) == LUA_TSTRING) {
    lua_pushvalue(state, key);
    lua_setiuservalue(state, -2, NAME);
  }
  pushRecordOfTop(state);
}

// The position of a list that is at the index, counted from 0; past the end when it is none.
std::size_t positionAt(lua_State* state, int index) {
  int isInteger = 0;
  lua_Integer const position = lua_tointegerx(state, index, &isInteger);
  return isInteger != 0 && position >= 1 ? static_cast<std::size_t>(position) - 1 : ~std::size_t{0};
}

// Pushes the value under the key at the index.
void pushUnder(lua_State* state, Node const& node, int key) {
  if (node.hasNames()) {
    bool const isField = lua_type(state, key) == LUA_TSTRING && kestrel::hasField(*node.array, checkText(state, key));
    if (!isField) return lua_pushnil(state);
    return pushHeld(state, node, kestrel::field(*node.array, node.element, checkText(state, key)), 0, key);
  }
  std::size_t const position = positionAt(state, key);
  if (lua_type(state, key) == LUA_TSTRING || position >= kestrel::numberOfElements(*node.array))
    return lua_pushnil(state);
  bool const isCell = kestrel::baseClass(*node.array) == kestrel::ClassId::Cell;
  pushHeld(state, node, isCell ? kestrel::cell(*node.array, position) : node.array, position, key);
}

int index(lua_State* state) {
  Node const& node = takeRecord(state);
  pushUnder(state, node, 2);
  return 1;
}

int length(lua_State* state) {
  Node const& node = takeRecord(state);
  lua_pushinteger(state, node.hasNames() ? 0 : static_cast<lua_Integer>(kestrel::numberOfElements(*node.array)));
  return 1;
}

int equal(lua_State* state) {
  Node const* const left = pushNodeOf(state, 1) != nullptr ? &refreshed(state, -1) : nullptr;
  Node const* const right = pushNodeOf(state, 2) != nullptr ? &refreshed(state, -1) : nullptr;
  lua_pushboolean(state, left != nullptr && right != nullptr && left->array == right->array &&
                             left->element == right->element && left->isElement == right->isElement);
  return 1;
}

// Changes the value under the key at stack index 2 in an array that is laid out like the node's.
void change(lua_State* state, kestrel_array& array, Place const& place, OwnedArray value) {
  bool const hasNames = kestrel::isStruct(array) && (place.isElement || kestrel::isScalar(array));
  if (hasNames) {
    if (lua_type(state, 2) != LUA_TSTRING) refuse("A table has either names or positions, not both.");
    std::string const name = nameAt(state, 2);
    if (groundwork::toUtf8(groundwork::toUtf16(name)) != name) refuse("The text is not valid UTF-8.");
    if (value == nullptr && kestrel::isScalar(array)) return kestrel::removeField(array, name);
    return kestrel::setField(array, place.element, name, std::move(value));
  }
  std::size_t const count = kestrel::numberOfElements(array);
  std::size_t const position = lua_type(state, 2) == LUA_TSTRING ? ~std::size_t{0} : positionAt(state, 2);
  if (kestrel::isStruct(array)) refuse("A list of structs is assigned as a whole: assign a table where it came from.");
  bool const removesLast = value == nullptr && position + 1 == count;
  if (removesLast) return kestrel::resizeCells(array, position);
  if (value == nullptr || position > count)
    refuse("The positions of a list have to go from 1 to its length without a gap.");
  if (position == count) kestrel::resizeCells(array, count + 1);
  kestrel::setCell(array, position, std::move(value));
}

// Ends the nodes that stood at the key at stack index 2 of the node at index 1, or below it: a table that was read from
// there shows what was there, not what has come in its place.
void endReplaced(lua_State* state) {
  std::vector<Step> slot = stepsTo(state, 1);
  bool const hasName = lua_type(state, 2) == LUA_TSTRING;
  slot.push_back({hasName ? 0 : positionAt(state, 2), hasName ? nameAt(state, 2) : std::string(), hasName});
  lua_getiuservalue(state, 1, ROOT);
  int const root = lua_gettop(state);
  lua_rawgetp(state, LUA_REGISTRYINDEX, &NODES_KEY);
  for (lua_pushnil(state); lua_next(state, root + 1) != 0; lua_settop(state, root + 2)) {
    lua_getiuservalue(state, -1, ROOT);
    if (lua_rawequal(state, -1, root) == 0) continue;
    std::vector<Step> const steps = stepsTo(state, root + 3);
    bool const isBelow = steps.size() >= slot.size() && std::equal(slot.begin(), slot.end(), steps.begin());
    if (isBelow) static_cast<Node*>(lua_touserdata(state, root + 3))->generation = Node::REPLACED;
  }
  lua_settop(state, root - 1);
}

// The object, its property, the key and the value: all that an error may be about.
void write(lua_State* state, ObjectBox const& box, Root& root) {
  kestrel::OwnedArray const current = corvid::getProperty(*box.self, *root.property);
  if (!kestrel::equalContents(current.get(), root.held.get())) refuseStale(root);
  OwnedArray value = lua_isnil(state, 3) ? nullptr : toHost(state, 3).take();
  OwnedArray changed = kestrel::deepCopy(root.held.get());
  Place const place = follow(stepsTo(state, 1), root, *changed);
  change(state, const_cast<kestrel_array&>(*place.array), place, std::move(value));
  corvid::setProperty(*box.self, *root.property, *changed);
  OwnedArray kept = corvid::getProperty(*box.self, *root.property);
  HostMemory& memory = Context::of(state).memory;
  root.held.letGo(memory);
  ++root.generation;
  root.held.take(memory, kept != nullptr ? std::move(kept) : std::move(changed));
  endReplaced(state);
}

int newIndex(lua_State* state) {
  takeRecord(state);
  Root& root = rootOf(state, 1);
  lua_getiuservalue(state, 1, ROOT);
  lua_getiuservalue(state, -1, 1);
  ObjectBox const* const box = toUsableObject(state, -1);
  if (box == nullptr) refuseStale(root);
  ++Context::of(state).changes;
  namingProperty(*box, *root.property, [&] { write(state, *box, root); });
  return 0;
}

// Pushes a list of the names that the node has.
void pushNames(lua_State* state, Node const& node) {
  std::vector<std::string> const& names = kestrel::fieldNames(*node.array);
  lua_createtable(state, static_cast<int>(names.size()), 0);
  for (std::size_t i = 0; i < names.size(); ++i) {
    lua_pushlstring(state, names[i].data(), names[i].size());
    lua_rawseti(state, -2, static_cast<lua_Integer>(i) + 1);
  }
}

// Upvalues: the names, or nil for a list, and the position reached. Stack: the record.
int nextField(lua_State* state) {
  lua_settop(state, 1);
  Node const& node = takeRecord(state);
  bool const hasNames = !lua_isnil(state, lua_upvalueindex(1));
  lua_Integer position = lua_tointeger(state, lua_upvalueindex(2));
  auto const count = hasNames ? static_cast<lua_Integer>(lua_rawlen(state, lua_upvalueindex(1)))
                              : static_cast<lua_Integer>(kestrel::numberOfElements(*node.array));
  while (++position <= count) {
    lua_settop(state, 1);
    hasNames ? static_cast<void>(lua_rawgeti(state, lua_upvalueindex(1), position)) : lua_pushinteger(state, position);
    pushUnder(state, node, 2);
    if (lua_isnil(state, -1)) continue;
    lua_pushinteger(state, position);
    lua_replace(state, lua_upvalueindex(2));
    return 2;
  }
  return 0;
}

int pairs(lua_State* state) {
  lua_settop(state, 1);
  lua_pushvalue(state, 1);
  Node const& node = takeRecord(state);
  node.hasNames() ? pushNames(state, node) : lua_pushnil(state);
  lua_pushinteger(state, 0);
  lua_pushcclosure(state, guarded<nextField>, 2);
  lua_insert(state, 2);
  return 2;
}

// The position among the fields or elements behind the key at stack index 2.
std::size_t positionBehind(lua_State* state, Node const& node) {
  if (lua_isnoneornil(state, 2)) return 0;
  if (!node.hasNames()) return positionAt(state, 2) + 1;
  std::vector<std::string> const& names = kestrel::fieldNames(*node.array);
  auto const found = std::find(names.begin(), names.end(), checkText(state, 2));
  if (found == names.end()) luaL_error(state, "invalid key to 'next'");
  return static_cast<std::size_t>(found - names.begin()) + 1;
}

// Upvalue: the function of the library.
int nextOfAny(lua_State* state) {
  if (pushNodeOf(state, 1) == nullptr) {
    lua_pushvalue(state, lua_upvalueindex(1));
    lua_insert(state, 1);
    lua_call(state, lua_gettop(state) - 1, LUA_MULTRET);
    return lua_gettop(state);
  }
  lua_replace(state, 1);
  lua_settop(state, 2);
  Node const& node = refreshed(state, 1);
  std::size_t const count =
      node.hasNames() ? kestrel::fieldNames(*node.array).size() : kestrel::numberOfElements(*node.array);
  for (std::size_t position = positionBehind(state, node); position < count; ++position) {
    lua_settop(state, 1);
    if (node.hasNames()) {
      std::string const& name = kestrel::fieldNames(*node.array)[position];
      lua_pushlstring(state, name.data(), name.size());
    } else {
      lua_pushinteger(state, static_cast<lua_Integer>(position) + 1);
    }
    pushUnder(state, node, 2);
    if (!lua_isnil(state, -1)) return 2;
  }
  lua_pushnil(state);
  return 1;
}

int collectRoot(lua_State* state) {
  static_cast<Root*>(luaL_checkudata(state, 1, ROOT_TYPE))->held.letGo(Context::of(state).memory);
  return 0;
}

OwnedArray elementOf(kestrel_array const& structs, std::size_t element) {
  OwnedArray copy = kestrel::createStruct(kestrel::fieldNames(structs));
  for (std::string const& name : kestrel::fieldNames(structs))
    kestrel::setField(*copy, 0, name, kestrel::deepCopy(kestrel::field(structs, element, name)));
  return copy;
}

}  // namespace

void registerRecords(lua_State* state) {
  luaL_newmetatable(state, ROOT_TYPE);
  setFunction<collectRoot>(state, "__gc");
  finishType(state, ROOT_TYPE);
  luaL_newmetatable(state, RECORD_TYPE);
  lua_pushnil(state);
  lua_setfield(state, -2, "__name");  // its text is that of any table
  setFunction<index>(state, "__index");
  setFunction<newIndex>(state, "__newindex");
  setFunction<length>(state, "__len");
  setFunction<pairs>(state, "__pairs");
  setFunction<equal>(state, "__eq");
  finishType(state, RECORD_TYPE);

  lua_newtable(state);
  lua_createtable(state, 0, 1);
  lua_pushliteral(state, "k");
  lua_setfield(state, -2, "__mode");
  lua_setmetatable(state, -2);
  lua_rawsetp(state, LUA_REGISTRYINDEX, &NODES_KEY);

  lua_getglobal(state, "next");
  lua_pushcclosure(state, guarded<nextOfAny>, 1);
  lua_setglobal(state, "next");
}

bool isRecord(kestrel_array const& array) noexcept {
  return kestrel::isStruct(array) ? !kestrel::isEmpty(array)
                                  : kestrel::baseClass(array) == kestrel::ClassId::Cell && !kestrel::isEmpty(array);
}

void pushRecord(lua_State* state, int object, corvid::CorvidPropInfo const& property, OwnedArray array) {
  object = lua_absindex(state, object);
  HostMemory& memory = Context::of(state).memory;
  auto* const root = new (lua_newuserdatauv(state, sizeof(Root), 1)) Root{{}, &property, 1};
  luaL_setmetatable(state, ROOT_TYPE);
  lua_pushvalue(state, object);
  lua_setiuservalue(state, -2, 1);
  root->held.take(memory, std::move(array));
  new (lua_newuserdatauv(state, sizeof(Node), 3)) Node{root->held.get(), 0, false, root->generation, 0};
  lua_insert(state, -2);
  lua_setiuservalue(state, -2, ROOT);
  pushRecordOfTop(state);
  memory.collectIfDue(state);
}

bool pushRecordNames(lua_State* state, int index) {
  if (pushNodeOf(state, index) == nullptr) return false;
  Node const& node = refreshed(state, lua_gettop(state));
  node.hasNames() ? pushNames(state, node) : lua_newtable(state);
  lua_remove(state, -2);
  return true;
}

OwnedArray recordToHost(lua_State* state, int index) {
  luaL_checkstack(state, 8, "a table is nested too deeply");
  if (pushNodeOf(state, index) == nullptr) return nullptr;
  Node const& node = refreshed(state, lua_gettop(state));
  OwnedArray copy = node.isElement ? elementOf(*node.array, node.element) : kestrel::deepCopy(node.array);
  lua_pop(state, 1);
  return copy;
}

}  // namespace luafront
