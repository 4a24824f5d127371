// Random sequences of steps: how long a run is, and how a sequence that fails is cut to a short one.
//
// A run is bounded; for a long one set TESSEL_SEEDS to "first:count" and TESSEL_STEPS to the length of each.
// TESSEL_APART runs each in a process of its own, to find and cut one that crashes; nothing is counted then.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace support {

struct ExtentOfRun {
  unsigned first = 1, count = 24;
  std::size_t steps = 300;
  bool apart = false;
};

/// `usual`, or what the environment asks for.
inline ExtentOfRun extentOfRun(ExtentOfRun usual) {
  if (char const* const seeds = std::getenv("TESSEL_SEEDS")) {
    std::string const text = seeds;
    usual.first = static_cast<unsigned>(std::stoul(text));
    usual.count = static_cast<unsigned>(std::stoul(text.substr(text.find(':') + 1)));
  }
  if (char const* const steps = std::getenv("TESSEL_STEPS")) usual.steps = std::stoul(steps);
  usual.apart = std::getenv("TESSEL_APART") != nullptr;
  return usual;
}

/// A kind of sequence: `S` prints as a row of a table of kept sequences.
template <class S>
class RandomSequences {
 public:
  using Steps = std::vector<S>;
  /// Runs the steps and gives what is wrong, or the empty text; sets the position to that of the last step done.
  using Run = std::function<std::string(Steps const& steps, std::size_t& position)>;

  explicit RandomSequences(Run run) : m_run(std::move(run)) {}

  /// Runs the steps. When they fail, gives the shortest sequence found that does, and why.
  testing::AssertionResult hold(Steps steps, bool apart) const {
    std::size_t position = steps.size();
    bool const fails = apart ? failsApart(steps) : !m_run(steps, position).empty();
    if (!fails) return testing::AssertionSuccess();
    steps.resize(std::min(steps.size(), position + 1));
    steps = shrunk(std::move(steps));
    failsApart(steps, true);
    std::ostringstream rows;
    for (S const& step : steps) rows << "      " << step << ",\n";
    return testing::AssertionFailure() << "these " << steps.size() << " steps suffice:\n" << rows.str();
  }

 private:
  /// In a process of its own, so that a sequence that crashes can be cut too.
  bool failsApart(Steps const& steps, bool tells = false) const {
    pid_t const child = fork();
    if (child == 0) {
      if (!tells && std::freopen("/dev/null", "w", stderr) == nullptr) _exit(2);
      std::size_t position = 0;
      std::string const difference = m_run(steps, position);
      if (tells) std::cerr << difference << '\n';
      _exit(difference.empty() ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status != 0;
  }

  /// Leaves out ever smaller stretches as long as what remains fails.
  Steps shrunk(Steps steps) const {
    for (std::size_t stretch = steps.size() / 2; stretch > 0; stretch /= 2) {
      for (std::size_t at = 0; at < steps.size();) {
        auto const from = steps.begin() + static_cast<std::ptrdiff_t>(at);
        auto const to = steps.begin() + static_cast<std::ptrdiff_t>(std::min(at + stretch, steps.size()));
        Steps fewer(steps.begin(), from);
        fewer.insert(fewer.end(), to, steps.end());
        if (failsApart(fewer)) {
          steps = std::move(fewer);
        } else {
          at += stretch;
        }
      }
    }
    return steps;
  }

  Run m_run;
};

}  // namespace support
