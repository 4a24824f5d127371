#include "Functions.hpp"

#include "Context.hpp"
#include "ToHost.hpp"
#include "ToLua.hpp"
#include "corvid/Callable.hpp"

namespace luafront {
namespace {

class LuaFunction final : public corvid::Callable {
 public:
  /// Takes the function off the top of the stack.
  explicit LuaFunction(lua_State* state) : m_function(state) {}

  void addRef() noexcept override { ++m_references; }
  void release() noexcept override {
    if (--m_references == 0) delete this;
  }

  std::vector<kestrel::OwnedArray> call(corvid::Inputs const& inputs) override {
    lua_State* const state = runningState();
    int const base = lua_gettop(state);
    luaL_checkstack(state, static_cast<int>(inputs.size()) + 4, "too many arguments");
    lua_pushcfunction(state, rememberCalls);
    m_function.push(state);
    for (kestrel_array const* input : inputs) pushValue(state, kestrel::deepCopy(input), Arity::Single);
    if (lua_pcall(state, static_cast<int>(inputs.size()), LUA_MULTRET, base + 1) != LUA_OK) throw ScriptFailure(state);
    std::vector<kestrel::OwnedArray> results;
    for (int index = base + 2; index <= lua_gettop(state); ++index) results.push_back(toHost(state, index).take());
    lua_settop(state, base);
    return results;
  }

  void push(lua_State* state) const { m_function.push(state); }

 private:
  ~LuaFunction() = default;

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

bool pushFunction(lua_State* state, kestrel::Object& object) {
  auto const* const function = dynamic_cast<LuaFunction const*>(&object);
  if (function != nullptr) function->push(state);
  return function != nullptr;
}

}  // namespace luafront
