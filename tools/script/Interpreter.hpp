// One Lua interpreter with the classes of the host in it.
// Thread rule: the host's thread.
#pragma once

#include <lua.hpp>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "Context.hpp"

namespace luafront {

class Interpreter {
 public:
  /// Errors of scripts are written to `errors`, results of the prompt to `output`. Raises std::bad_alloc.
  Interpreter(std::ostream& output, std::ostream& errors);
  ~Interpreter();
  Interpreter(Interpreter const&) = delete;
  Interpreter& operator=(Interpreter const&) = delete;

  /// Runs a file, or standard input for "-", with the arguments in the global `arg` and as `...`. False after an error,
  /// which has been written with its line and the calls that led to it.
  bool runFile(std::string const& path, std::vector<std::string> const& arguments);
  bool runText(std::string_view text, std::string const& name);

  enum class Entry { Loaded, Failed, Incomplete };
  /// Reads what was entered at a prompt. Incomplete when more lines have to follow; a wrong entry is written as an
  /// error.
  Entry loadEntry(std::string const& text);
  /// Runs the entry that was loaded and writes its values. False after an error, which has been written.
  bool runEntry();

  /// Writes a sentence of the program's own with the errors.
  void report(std::string const& sentence);

  lua_State* state() const noexcept { return m_state; }

 private:
  bool runLoaded(int loadStatus, std::vector<std::string> const& arguments);
  bool callTop(int argumentCount);
  void writeError();

  std::ostream& m_output;
  std::ostream& m_errors;
  std::shared_ptr<Context> m_context;
  lua_State* m_state;
};

}  // namespace luafront
