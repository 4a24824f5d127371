#include "commands/Progress.hpp"

#include <unistd.h>

#include <cstdio>

namespace kconfig {

namespace {
constexpr char const* clearLine = "\r\033[K";
}  // namespace

Progress::Progress() : m_shown(isatty(STDERR_FILENO) == 1) {}

void Progress::begin(std::string const& name) {
  finish();
  m_running = true;
  m_steps.push_back({name, 0});
  m_start = Clock::now();
  if (m_shown) {
    std::fprintf(stderr, "%s%s ...", clearLine, name.c_str());
    std::fflush(stderr);
  }
}

void Progress::finish() {
  if (!m_running) {
    return;
  }
  m_running = false;
  m_steps.back().milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - m_start).count();
  if (m_shown) {
    std::fputs(clearLine, stderr);
    std::fflush(stderr);
  }
}

}  // namespace kconfig
