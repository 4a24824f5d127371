// The interactive prompt: lines off the terminal with history and completion, or off any other input without.
#pragma once

#include <istream>
#include <memory>
#include <string>

#include "Interpreter.hpp"

namespace luafront {

/// Where a prompt gets its lines from.
class LineSource {
 public:
  enum class Input { Line, Interrupted, End };

  virtual ~LineSource() = default;
  /// Puts the next line, without its end, into `line`. Interrupted when the user gives up what has been entered so far.
  virtual Input readLine(char const* prompt, std::string& line) = 0;
  /// Keeps an entry for the user to come back to.
  virtual void remember(std::string const&) {}
};

/// Lines off a stream; shows no prompt.
class StreamLines final : public LineSource {
 public:
  explicit StreamLines(std::istream& input) : m_input(input) {}
  Input readLine(char const* prompt, std::string& line) override;

 private:
  std::istream& m_input;
};

/// Lines off the terminal with editing, the completion of names and a history that is kept in a file (none for an empty
/// path), to which each entry is added when it is made. Without the line editing library: lines off standard input
/// behind a prompt. One at a time.
std::unique_ptr<LineSource> terminalLines(lua_State* state, std::string const& historyFile);

/// Runs entries until the input ends. False, and an error is written, when the last entry was not complete.
bool runPrompt(Interpreter& interpreter, LineSource& lines);

}  // namespace luafront
