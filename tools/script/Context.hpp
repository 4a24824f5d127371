// One interpreter's shared state, and the crossing of errors: every C++ function that Lua calls goes through guarded,
// which turns a C++ exception into a Lua error with the script's line, and back into the script's own error where it
// began there. Ownership: the interpreter owns the context; what natives keep of a script holds on to it and finds it
// closed later. Thread rule: the host's thread.
#pragma once

#include <csignal>
#include <cstdint>
#include <exception>
#include <lua.hpp>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "HeldArray.hpp"
#include "corvid/HostError.hpp"

namespace luafront {

struct Context : std::enable_shared_from_this<Context> {
  /// Null once the interpreter is closed.
  lua_State* main = nullptr;
  /// The Lua thread that runs now.
  lua_State* current = nullptr;
  /// Set while an interrupt from the keyboard ends the running script.
  std::sig_atomic_t volatile interrupted = 0;
  HostMemory memory;
  /// Grows with each call that may have changed what a walk goes over.
  std::uint64_t changes = 0;

  static Context& of(lua_State* state);
};

/// A Lua value that C++ keeps alive.
class LuaReference {
 public:
  /// Takes the value off the top of the stack.
  explicit LuaReference(lua_State* state);
  ~LuaReference();
  LuaReference(LuaReference const&) = delete;
  LuaReference& operator=(LuaReference const&) = delete;

  /// Pushes the value. Raises HostError when the script has ended.
  void push(lua_State* state) const;
  /// The text of the value, as tostring gives it; a substitute where that fails.
  std::string text() const;
  Context& context() const noexcept { return *m_context; }

 private:
  std::shared_ptr<Context> m_context;
  int m_reference;
};

/// An error of a script on its way through native code: carries the script's own error value.
class ScriptFailure final : public std::exception {
 public:
  /// Takes the error value off the top of the stack.
  explicit ScriptFailure(lua_State* state) : m_value(std::make_shared<LuaReference>(state)) {}
  /// Asks the script for the text of its value when it is first called.
  char const* what() const noexcept override;
  void push(lua_State* state) const { m_value->push(state); }

 private:
  std::shared_ptr<LuaReference> m_value;
  mutable std::string m_sentence;
};

/// An error with the place of the script's object that it is about, on its way to the script.
class PlacedFailure final : public std::exception {
 public:
  /// The place goes in front of the sentence, behind its key; an error without a key stays as it is.
  PlacedFailure(std::exception const& error, std::string const& place);
  char const* what() const noexcept override { return m_description.sentence.c_str(); }
  corvid::ErrorDescription const& description() const noexcept { return m_description; }

 private:
  corvid::ErrorDescription m_description;
};

/// Message handlers for protected calls. The first keeps the calls that led to an error that passes through native
/// code, and leaves the error as it is; the second turns an error into its text with the calls that led to it, the kept
/// ones where it was the same error.
int rememberCalls(lua_State* state);
int describeWithCalls(lua_State* state);

/// Pushes the text of a value, as tostring gives it; a substitute where that fails. Raises nothing but memory errors.
void pushText(lua_State* state, int index);
/// A text among the arguments; valid while it is on the stack. Raises HostError WrongType for any other value.
std::string_view checkText(lua_State* state, int index);

/// Pushes the Lua form of an error: a table with `identifier`, `sentence` and `where` (file and line of the script),
/// whose text is where and sentence together, also when it is joined to another text. `where` is the nearest line of
/// the script that is being run.
void pushError(lua_State* state, corvid::ErrorDescription const& error);
void registerErrors(lua_State* state);

/// Sets the running Lua thread for the length of a call.
class RunningThread {
 public:
  explicit RunningThread(lua_State* state) : m_context(Context::of(state)), m_outer(m_context.current) {
    m_context.current = state;
  }
  ~RunningThread() { m_context.current = m_outer; }
  RunningThread(RunningThread const&) = delete;
  RunningThread& operator=(RunningThread const&) = delete;

 private:
  Context& m_context;
  lua_State* m_outer;
};

/// What Lua is given in place of `function`.
template <lua_CFunction function>
int guarded(lua_State* state) {
  try {
    RunningThread const running(state);
    return function(state);
  } catch (ScriptFailure const& failure) {
    failure.push(state);
  } catch (PlacedFailure const& failure) {
    pushError(state, failure.description());
  } catch (std::exception const& error) {
    pushError(state, corvid::describeError(error));
  }
  return lua_error(state);
}

/// Adds guarded functions to the table on top of the stack.
template <lua_CFunction function>
void setFunction(lua_State* state, char const* name) {
  lua_pushcfunction(state, guarded<function>);
  lua_setfield(state, -2, name);
}

/// Takes the finished metatable of a type off the stack. Scripts that ask for it get the type's name instead.
void finishType(lua_State* state, char const* type);

}  // namespace luafront
