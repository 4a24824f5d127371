// Tells on a terminal what long work is doing, and takes the time of each of its steps. Where standard error is no
// terminal it only takes the time.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace kconfig {

class Progress {
 public:
  struct Step {
    std::string name;
    double milliseconds;
  };

  Progress();
  Progress(Progress const&) = delete;
  Progress& operator=(Progress const&) = delete;
  ~Progress() { finish(); }

  // What comes now; ends the step before.
  void begin(std::string const& name);
  // Ends the last step and clears the line.
  void finish();

  std::vector<Step> const& steps() const { return m_steps; }

 private:
  using Clock = std::chrono::steady_clock;

  bool m_shown;
  bool m_running = false;
  Clock::time_point m_start;
  std::vector<Step> m_steps;
};

}  // namespace kconfig
