#include "Prompt.hpp"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>

#include "Completion.hpp"
#include "Interrupt.hpp"

#ifdef LUAFRONT_HAS_READLINE
#include <readline/history.h>
#include <readline/readline.h>
#endif

namespace luafront {
namespace {

constexpr char const* FIRST_PROMPT = "> ";
constexpr char const* NEXT_PROMPT = ">> ";

#ifdef LUAFRONT_HAS_READLINE

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

std::sig_atomic_t volatile keyboardInterrupt = 0;
std::sig_atomic_t volatile windowChange = 0;

// While it exists, the signals of the terminal are noted and wait until the next key is waited for.
class TerminalSignals {
 public:
  TerminalSignals() {
    keyboardInterrupt = 0;
    m_interrupt = noteIn<keyboardInterrupt>(SIGINT);
    m_windowChange = noteIn<windowChange>(SIGWINCH);
    sigset_t noted;
    sigemptyset(&noted);
    sigaddset(&noted, SIGINT);
    sigaddset(&noted, SIGWINCH);
    sigprocmask(SIG_BLOCK, &noted, &m_unblocked);
  }
  ~TerminalSignals() {
    sigprocmask(SIG_SETMASK, &m_unblocked, nullptr);
    sigaction(SIGINT, &m_interrupt, nullptr);
    sigaction(SIGWINCH, &m_windowChange, nullptr);
  }
  TerminalSignals(TerminalSignals const&) = delete;
  TerminalSignals& operator=(TerminalSignals const&) = delete;

  /// False when an interrupt came instead of a key.
  bool waitForKey() const {
    pollfd keyboard{STDIN_FILENO, POLLIN, 0};
    while (keyboardInterrupt == 0) {
      int const ready = ppoll(&keyboard, 1, nullptr, &m_unblocked);
      if (ready >= 0 || errno != EINTR) return true;
      if (windowChange != 0) rl_resize_terminal();
      windowChange = 0;
    }
    return false;
  }

 private:
  template <std::sig_atomic_t volatile& flag>
  static struct sigaction noteIn(int signal) {
    struct sigaction noting = {};
    struct sigaction before = {};
    noting.sa_handler = [](int) { flag = 1; };
    sigaction(signal, &noting, &before);
    return before;
  }

  struct sigaction m_interrupt = {};
  struct sigaction m_windowChange = {};
  sigset_t m_unblocked = {};
};

// What the library's callback has been given: a line, or null at the end of input.
struct EndedLine {
  bool hasEnded = false;
  std::unique_ptr<char, void (*)(void*)> text{nullptr, std::free};
} endedLine;

void endLine(char* text) {
  rl_callback_handler_remove();
  endedLine.hasEnded = true;
  endedLine.text.reset(text);
}

class TerminalLines final : public LineSource {
 public:
  TerminalLines(lua_State* state, std::string historyFile) : m_historyFile(std::move(historyFile)) {
    completedState = state;
    rl_readline_name = "tessel-script";
    rl_completer_word_break_characters = const_cast<char*>(WORD_BREAKS);
    rl_attempted_completion_function = complete;
    using_history();
    // Only between time stamps does the library know the lines of an entry of several.
    history_write_timestamps = 1;
    history_comment_char = '#';
    if (!m_historyFile.empty()) readHistory();
  }
  ~TerminalLines() override {
    rl_attempted_completion_function = nullptr;
    completedState = nullptr;
  }

  Input readLine(char const* prompt, std::string& line) override {
    TerminalSignals const signals;
    endedLine.hasEnded = false;
    rl_callback_handler_install(prompt, endLine);
    while (!endedLine.hasEnded) {
      if (!signals.waitForKey()) {
        giveUpLine();
        return Input::Interrupted;
      }
      rl_callback_read_char();
    }
    if (endedLine.text == nullptr) {
      std::cout << std::endl;
      return Input::End;
    }
    line = endedLine.text.get();
    return Input::Line;
  }
  void remember(std::string const& entry) override {
    add_history(entry.c_str());
    if (!m_historyFile.empty()) append_history(1, m_historyFile.c_str());
  }

 private:
  static void giveUpLine() {
    rl_echo_signal_char(SIGINT);
    rl_free_line_state();
    rl_callback_sigcleanup();
    rl_callback_handler_remove();
    std::cout << std::endl;
  }

  void readHistory() const {
    // Entries are only appended later, to a file that has to be there.
    int const created = open(m_historyFile.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (created >= 0) ::close(created);
    std::ifstream file(m_historyFile);
    bool const hasTimeStamps = file.peek() == history_comment_char || file.peek() == std::ifstream::traits_type::eof();
    read_history(m_historyFile.c_str());
    if (!hasTimeStamps) write_history(m_historyFile.c_str());
  }

  std::string m_historyFile;
};

#else

class TerminalLines final : public LineSource {
 public:
  TerminalLines(lua_State*, std::string const&) {}
  Input readLine(char const* prompt, std::string& line) override {
    std::cout << prompt << std::flush;
    Input const input = StreamLines(std::cin).readLine(prompt, line);
    if (input == Input::End) std::cout << std::endl;
    return input;
  }
};

#endif

}  // namespace

LineSource::Input StreamLines::readLine(char const*, std::string& line) {
  return std::getline(m_input, line) ? Input::Line : Input::End;
}

std::unique_ptr<LineSource> terminalLines(lua_State* state, std::string const& historyFile) {
  return std::make_unique<TerminalLines>(state, historyFile);
}

bool runPrompt(Interpreter& interpreter, LineSource& lines) {
  std::string entry;
  std::string line;
  for (;;) {
    LineSource::Input const input = lines.readLine(entry.empty() ? FIRST_PROMPT : NEXT_PROMPT, line);
    if (input == LineSource::Input::End) break;
    if (input == LineSource::Input::Line) {
      entry += entry.empty() ? line : "\n" + line;
    } else {
      entry.clear();
    }
    if (entry.find_first_not_of(" \t\n") == std::string::npos) {
      entry.clear();
      continue;
    }
    Interpreter::Entry const loaded = interpreter.loadEntry(entry);
    if (loaded == Interpreter::Entry::Incomplete) continue;
    // Before it runs: it may end the program.
    lines.remember(entry);
    entry.clear();
    if (loaded == Interpreter::Entry::Failed) continue;
    InterruptScope const interruptible(interpreter.state());
    interpreter.runEntry();
  }
  if (!entry.empty()) interpreter.report("The input ended in the middle of an entry, which was not run.");
  return entry.empty();
}

}  // namespace luafront
