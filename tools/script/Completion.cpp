#include "Completion.hpp"

#include <algorithm>
#include <set>

#include "Context.hpp"
#include "Namespaces.hpp"
#include "Objects.hpp"
#include "Records.hpp"
#include "corvid/CorvidClass.hpp"
#include "corvid/CorvidPackage.hpp"

namespace luafront {
namespace {

constexpr char const* KEYWORDS[] = {"and",      "break",  "do",   "else", "elseif", "end",  "false", "for",
                                    "function", "goto",   "if",   "in",   "local",  "nil",  "not",   "or",
                                    "repeat",   "return", "then", "true", "until",  "while"};

// A chain of names cut in its parts: "a.b:c" is the path a, b and the beginning "c" behind a colon.
struct Chain {
  std::vector<std::string> path;
  std::string before;
  std::string beginning;
  bool afterColon = false;
};

Chain readChain(std::string_view line) {
  std::size_t const space = line.find_last_of(WORD_BREAKS);
  std::string_view rest = space == std::string_view::npos ? line : line.substr(space + 1);
  Chain chain;
  for (std::size_t end = rest.find_first_of(".:"); end != std::string_view::npos; end = rest.find_first_of(".:")) {
    chain.path.emplace_back(rest.substr(0, end));
    chain.before += std::string(rest.substr(0, end + 1));
    chain.afterColon = rest[end] == ':';
    rest.remove_prefix(end + 1);
  }
  chain.beginning = std::string(rest);
  return chain;
}

template <class Members>
void addNames(std::set<std::string>& names, Members const& members) {
  for (auto const& member : members) names.insert(member->getName().text());
}

void addClassMembers(std::set<std::string>& names, corvid::CorvidClass const& hostClass) {
  addNames(names, hostClass.getEnumValues());
  for (corvid::CorvidMethodInfo const* method : hostClass.listMethods()) {
    bool const isStatic = (method->getAttributes() & corvid::MethodAttribute::STATIC) != 0;
    if (isStatic || hostClass.getInfo().isEnumeration()) names.insert(method->getName().text());
  }
}

void addPackageMembers(std::set<std::string>& names, corvid::CorvidPackage& package) {
  addNames(names, package.subpackages());
  for (corvid::CorvidClass const* hostClass : package.classes())
    if (!hostClass->getInfo().isHidden()) names.insert(hostClass->getName().text());
}

void addKeys(lua_State* state, std::set<std::string>& names) {
  lua_pushnil(state);
  while (lua_next(state, -2) != 0) {
    lua_pop(state, 1);
    if (lua_type(state, -1) == LUA_TSTRING) names.insert(lua_tostring(state, -1));
  }
}

void addGlobals(lua_State* state, std::set<std::string>& names) {
  lua_pushglobaltable(state);
  addKeys(state, names);
  addNames(names, corvid::CorvidPackage::topLevelPackages());
  names.insert(std::begin(KEYWORDS), std::end(KEYWORDS));
}

void addMembersOfTop(lua_State* state, std::set<std::string>& names, bool onlyMethods) {
  if (corvid::CorvidPackage* const package = toPackage(state, -1)) {
    addPackageMembers(names, *package);
  } else if (corvid::CorvidClass const* const hostClass = toClass(state, -1)) {
    addClassMembers(names, *hostClass);
  } else if (ObjectBox const* const box = toObject(state, -1)) {
    addNames(names, box->hostClass->listMethods());
    if (!onlyMethods) addNames(names, box->hostClass->listProperties());
  } else if (lua_type(state, -1) == LUA_TSTRING) {
    lua_getglobal(state, "string");
    if (lua_istable(state, -1)) addKeys(state, names);
  } else if (pushRecordNames(state, -1)) {
    for (lua_Integer i = 1; lua_rawgeti(state, -1, i) == LUA_TSTRING; ++i, lua_pop(state, 1))
      names.insert(lua_tostring(state, -1));
    lua_pop(state, 2);
  } else if (lua_istable(state, -1)) {
    addKeys(state, names);
  }
}

struct Search {
  Chain chain;
  std::set<std::string> names;
};

// Runs protected: reading a chain calls whatever stands behind its names.
int search(lua_State* state) {
  Search& wanted = *static_cast<Search*>(lua_touserdata(state, 1));
  if (wanted.chain.path.empty()) {
    addGlobals(state, wanted.names);
    return 0;
  }
  lua_pushglobaltable(state);
  for (std::string const& name : wanted.chain.path) lua_getfield(state, -1, name.c_str());
  addMembersOfTop(state, wanted.names, wanted.chain.afterColon);
  return 0;
}

}  // namespace

std::vector<std::string> completions(lua_State* state, std::string_view line) {
  Search wanted{readChain(line), {}};
  int const top = lua_gettop(state);
  lua_pushcfunction(state, guarded<search>);
  lua_pushlightuserdata(state, &wanted);
  lua_pcall(state, 1, 0, 0);
  lua_settop(state, top);

  std::vector<std::string> completed;
  for (std::string const& name : wanted.names)
    if (name.compare(0, wanted.chain.beginning.size(), wanted.chain.beginning) == 0)
      completed.push_back(wanted.chain.before + name);
  return completed;
}

}  // namespace luafront
