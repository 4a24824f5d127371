#include "Prompt.hpp"

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <iostream>

#include "Completion.hpp"

#if LUAFRONT_HAS_READLINE
#include <readline/history.h>
#include <readline/readline.h>
#endif

namespace luafront {
namespace {

constexpr char const* FIRST_PROMPT = "> ";
constexpr char const* NEXT_PROMPT = ">> ";

#if LUAFRONT_HAS_READLINE

// The library's callbacks have no argument of their own to carry this.
lua_State* completedState = nullptr;

char* nextCompletion(char const*, int continued) {
  static std::vector<std::string> found;
  static std::size_t position = 0;
  if (continued == 0) {
    found = completions(completedState, std::string_view(rl_line_buffer, static_cast<std::size_t>(rl_point)));
    position = 0;
  }
  // The library frees what it is given.
  return position < found.size() ? strdup(found[position++].c_str()) : nullptr;
}

char** complete(char const* text, int, int) {
  rl_attempted_completion_over = 1;
  rl_completion_append_character = '\0';
  return rl_completion_matches(text, nextCompletion);
}

class TerminalLines final : public LineSource {
 public:
  TerminalLines(lua_State* state, std::string historyFile) : m_historyFile(std::move(historyFile)) {
    completedState = state;
    rl_readline_name = "tessel-script";
    rl_completer_word_break_characters = const_cast<char*>(WORD_BREAKS);
    rl_attempted_completion_function = complete;
    using_history();
    if (!m_historyFile.empty()) read_history(m_historyFile.c_str());
  }
  ~TerminalLines() override {
    if (!m_historyFile.empty()) write_history(m_historyFile.c_str());
    rl_attempted_completion_function = nullptr;
    completedState = nullptr;
  }

  std::optional<std::string> readLine(char const* prompt) override {
    std::unique_ptr<char, void (*)(void*)> const line(readline(prompt), std::free);
    return line != nullptr ? std::optional<std::string>(line.get()) : std::nullopt;
  }
  void remember(std::string const& entry) override { add_history(entry.c_str()); }

 private:
  std::string m_historyFile;
};

#else

class TerminalLines final : public LineSource {
 public:
  TerminalLines(lua_State*, std::string const&) {}
  std::optional<std::string> readLine(char const* prompt) override {
    std::cout << prompt << std::flush;
    return StreamLines(std::cin).readLine(prompt);
  }
};

#endif

// While it exists, an interrupt from the keyboard ends the running script with an error, not the program.
class InterruptScope {
 public:
  explicit InterruptScope(lua_State* state) {
    interrupted = state;
    std::signal(SIGINT, [](int) {
      // The one function of Lua that may be called from a signal handler.
      if (interrupted != nullptr) lua_sethook(interrupted, raise, LUA_MASKCALL | LUA_MASKRET | LUA_MASKCOUNT, 1);
    });
  }
  ~InterruptScope() {
    std::signal(SIGINT, SIG_DFL);
    lua_sethook(interrupted, nullptr, 0, 0);
    interrupted = nullptr;
  }
  InterruptScope(InterruptScope const&) = delete;
  InterruptScope& operator=(InterruptScope const&) = delete;

 private:
  static void raise(lua_State* state, lua_Debug*) {
    lua_sethook(state, nullptr, 0, 0);
    luaL_error(state, "interrupted");
  }

  static lua_State* volatile interrupted;
};
lua_State* volatile InterruptScope::interrupted = nullptr;

}  // namespace

std::optional<std::string> StreamLines::readLine(char const*) {
  std::string line;
  return std::getline(m_input, line) ? std::optional<std::string>(std::move(line)) : std::nullopt;
}

std::unique_ptr<LineSource> terminalLines(lua_State* state, std::string const& historyFile) {
  return std::make_unique<TerminalLines>(state, historyFile);
}

bool runPrompt(Interpreter& interpreter, LineSource& lines) {
  std::string entry;
  while (std::optional<std::string> const line = lines.readLine(entry.empty() ? FIRST_PROMPT : NEXT_PROMPT)) {
    entry += entry.empty() ? *line : "\n" + *line;
    if (entry.find_first_not_of(" \t\n") == std::string::npos) {
      entry.clear();
      continue;
    }
    InterruptScope const interruptible(interpreter.state());
    if (interpreter.runEntry(entry) == Interpreter::Entry::Incomplete) continue;
    lines.remember(entry);
    entry.clear();
  }
  return entry.empty();
}

}  // namespace luafront
