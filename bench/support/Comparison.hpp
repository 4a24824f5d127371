// Benchmarks in pairs: what the library does, and the same work on plain structs, in one program and one run. The
// program ends with a table of the ratios and of the aims reached and missed.
// Thread rule: one thread.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "support/Allocations.hpp"

namespace bench {

/// Measures the part of each iteration that counts: processor time of the thread, and heap allocations.
class Meter {
 public:
  /// `items` is how many times the measured part does what the comparison is about.
  Meter(benchmark::State& state, std::size_t items) noexcept : m_state(&state), m_items(items) {}
  Meter(Meter const&) = delete;
  Meter& operator=(Meter const&) = delete;
  ~Meter();

  template <class Work>
  void measure(Work const& work) {
    begin();
    work();
    end();
  }

 private:
  void begin() noexcept;
  void end();

  benchmark::State* m_state;
  std::size_t m_items;
  double m_start = 0;
  Allocations m_before;
  std::uint64_t m_allocated = 0;
  std::int64_t m_bytes = 0;
};

/// One piece of work, done twice.
class Comparison {
 public:
  using Side = std::function<void(benchmark::State&)>;

  explicit Comparison(std::string name) : m_name(std::move(name)) {}
  /// Runs once for each size, which both sides find in `state.range(0)`.
  Comparison& sizes(std::vector<std::int64_t> sizes);
  /// How often each repetition measures; for work whose preparation takes much longer than itself.
  Comparison& iterations(std::int64_t count) noexcept;
  /// How many times the baseline's time the library may take; 0 stands for no aim.
  Comparison& aims(double first, double then) noexcept;
  Comparison& baseline(Side side);
  Comparison& library(Side side);

  std::string const& name() const noexcept { return m_name; }
  std::vector<std::int64_t> const& sizes() const noexcept { return m_sizes; }
  double firstAim() const noexcept { return m_first; }
  double thenAim() const noexcept { return m_then; }
  void enter() const;

 private:
  std::string m_name;
  std::vector<std::int64_t> m_sizes{10000};
  std::int64_t m_iterations = 0;  ///< 0: as many as it takes
  double m_first = 0;
  double m_then = 0;
  Side m_baseline;
  Side m_library;
};

/// A new comparison of this program.
Comparison& compare(std::string name);

/// Runs what has been described, with Google Benchmark's arguments, and prints the table. Gives the exit status.
int run(int argc, char** argv);

}  // namespace bench
