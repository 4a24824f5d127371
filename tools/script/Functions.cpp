#include "Functions.hpp"

#include "Context.hpp"
#include "ToHost.hpp"
#include "ToLua.hpp"
#include "corvid/Callable.hpp"

namespace luafront {
namespace {

// A value of a script that goes through the host unlooked at and comes back as itself.
class LuaValue final : public kestrel::Object {
 public:
  /// Takes the value off the top of the stack.
  explicit LuaValue(lua_State* state) : m_value(state) {}

  void addRef() noexcept override { ++m_references; }
  void release() noexcept override {
    if (--m_references == 0) delete this;
  }
  corvid::Identifier className() const noexcept override {
    static corvid::Identifier const name = corvid::internal::makeInterned("script value");
    return name;
  }
  void push(lua_State* state) const { m_value.push(state); }

 private:
  ~LuaValue() = default;

  LuaReference m_value;
  std::size_t m_references = 0;
};

class LuaFunction final : public corvid::Callable {
 public:
  /// Takes the function off the top of the stack.
  explicit LuaFunction(lua_State* state) : m_function(state) {}

  void addRef() noexcept override { ++m_references; }
  void release() noexcept override {
    if (--m_references == 0) delete this;
  }

  std::vector<kestrel::OwnedArray> call(corvid::Inputs const& inputs) override {
    return call(inputs, [](lua_State* state, int index) { return toHost(state, index).take(); });
  }
  std::vector<kestrel::OwnedArray> callForScript(corvid::Inputs const& inputs) override {
    return call(inputs, [](lua_State* state, int index) {
      lua_pushvalue(state, index);
      return kestrel::createObject(kestrel::ObjectRef(new LuaValue(state)));
    });
  }

  void push(lua_State* state) const { m_function.push(state); }

 private:
  ~LuaFunction() = default;

  template <class Take>
  std::vector<kestrel::OwnedArray> call(corvid::Inputs const& inputs, Take const& take) {
    lua_State* const state = runningState();
    int const base = lua_gettop(state);
    luaL_checkstack(state, static_cast<int>(inputs.size()) + 4, "too many arguments");
    lua_pushcfunction(state, rememberCalls);
    m_function.push(state);
    for (kestrel_array const* input : inputs) pushValue(state, kestrel::deepCopy(input), Arity::Single);
    if (lua_pcall(state, static_cast<int>(inputs.size()), LUA_MULTRET, base + 1) != LUA_OK) throw ScriptFailure(state);
    std::vector<kestrel::OwnedArray> results;
    int const last = lua_gettop(state);
    luaL_checkstack(state, 4, "too many results");
    for (int index = base + 2; index <= last; ++index) results.push_back(take(state, index));
    lua_settop(state, base);
    return results;
  }

  lua_State* runningState() const {
    Context const& context = m_function.context();
    return context.current != nullptr ? context.current : context.main;
  }

  LuaReference m_function;
  std::size_t m_references = 0;
};

}  // namespace

kestrel::OwnedArray functionToHost(lua_State* state, int index) {
  lua_pushvalue(state, index);
  return kestrel::createObject(kestrel::ObjectRef(new LuaFunction(state)));
}

bool pushScriptValue(lua_State* state, kestrel::Object& object) {
  if (auto const* const function = dynamic_cast<LuaFunction const*>(&object)) {
    function->push(state);
  } else if (auto const* const value = dynamic_cast<LuaValue const*>(&object)) {
    value->push(state);
  } else {
    return false;
  }
  return true;
}

}  // namespace luafront
