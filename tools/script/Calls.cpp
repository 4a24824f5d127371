#include "Calls.hpp"

#include <algorithm>
#include <new>
#include <type_traits>
#include <vector>

#include "Context.hpp"
#include "Namespaces.hpp"
#include "Objects.hpp"
#include "ToHost.hpp"
#include "ToLua.hpp"
#include "corvid/Invocation.hpp"

namespace luafront {
namespace {

struct MethodName {
  corvid::CorvidClass const* hostClass;
  corvid::Identifier method;
  NamedOn namedOn;
};

// Arguments off the stack, kept for the length of a call; nil is one that is left out.
class Arguments {
 public:
  /// `types` may be fewer than the arguments: the rest is converted as "any".
  Arguments(lua_State* state, int first, std::vector<corvid::Identifier> const& types) {
    int const top = lua_gettop(state);
    m_values.reserve(static_cast<std::size_t>(std::max(top - first + 1, 0)));
    m_inputs.reserve(m_values.capacity());
    for (int index = first; index <= top; ++index) {
      std::size_t const position = m_inputs.size();
      if (lua_isnil(state, index)) {
        m_inputs.push_back(nullptr);
        continue;
      }
      m_values.push_back(position < types.size() ? toHostAs(state, index, types[position]) : toHost(state, index));
      m_inputs.push_back(&m_values.back().get());
    }
  }

  corvid::Inputs const& inputs() const noexcept { return m_inputs; }

 private:
  std::vector<HostValue> m_values;
  corvid::Inputs m_inputs;
};

std::size_t countArguments(lua_State* state, int first) {
  return static_cast<std::size_t>(std::max(lua_gettop(state) - first + 1, 0));
}

bool givesVector(corvid::CorvidMethodInfo const& method) {
  auto const& outputs = method.getSignature().outputs();
  std::string const ending = " vector";
  if (outputs.empty()) return false;
  std::string const& type = outputs.front().text();
  return type.size() > ending.size() && type.compare(type.size() - ending.size(), ending.size(), ending) == 0;
}

bool isStatic(corvid::CorvidClass const& hostClass, corvid::Identifier method) {
  auto const& methods = hostClass.getMethods(method);
  return !methods.empty() && (methods.back()->getAttributes() & corvid::MethodAttribute::STATIC) != 0;
}

int invokeNamed(lua_State* state) {
  auto const& name = *static_cast<MethodName const*>(lua_touserdata(state, lua_upvalueindex(1)));
  bool dropsFirst = false;
  if (name.namedOn == NamedOn::Class) {
    dropsFirst = toClass(state, 1) == name.hostClass;
  } else if (isStatic(*name.hostClass, name.method)) {
    dropsFirst = toObject(state, 1) != nullptr;
  }
  return callMethod(state, *name.hostClass, name.method, dropsFirst ? 2 : 1);
}

}  // namespace

void pushMethod(lua_State* state, corvid::CorvidClass const& hostClass, corvid::Identifier method, NamedOn namedOn) {
  // The name needs no finalizer: identifiers live as long as the process.
  static_assert(std::is_trivially_destructible_v<MethodName>);
  new (lua_newuserdatauv(state, sizeof(MethodName), 0)) MethodName{&hostClass, method, namedOn};
  lua_pushcclosure(state, guarded<invokeNamed>, 1);
}

int constructObject(lua_State* state, corvid::CorvidClass& hostClass, int firstArgument) {
  ++Context::of(state).changes;
  Arguments const arguments(state, firstArgument, {});
  pushValue(state, corvid::construct(hostClass, arguments.inputs()), Arity::Single);
  return 1;
}

int callMethod(lua_State* state, corvid::CorvidClass const& hostClass, corvid::Identifier method, int firstArgument) {
  std::size_t const count = countArguments(state, firstArgument);
  corvid::CorvidMethodInfo const& reached = corvid::requireMethod(hostClass, method, count);
  if ((reached.getAttributes() & corvid::MethodAttribute::PURE) == 0) ++Context::of(state).changes;
  Arguments const arguments(state, firstArgument, reached.getSignature().inputs());
  std::vector<kestrel::OwnedArray> further;
  kestrel::OwnedArray result = corvid::invoke(hostClass, method, arguments.inputs(), true, &further);
  if (result == nullptr) return 0;
  luaL_checkstack(state, static_cast<int>(further.size()) + 4, "too many results");
  Arity const arity = givesVector(reached) ? Arity::Many : Arity::Single;
  pushValue(state, std::move(result), arity);
  for (kestrel::OwnedArray& each : further) pushValue(state, std::move(each), arity);
  return static_cast<int>(further.size()) + 1;
}

}  // namespace luafront
