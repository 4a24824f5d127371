#include "support/Comparison.hpp"

#include <malloc.h>
#include <time.h>

#include <algorithm>
#include <cstdio>
#include <deque>
#include <limits>
#include <map>
#include <utility>

namespace bench {
namespace {

/// The sizes at which one iteration is work enough.
constexpr std::int64_t LARGE = 100000;

std::deque<Comparison>& comparisons() {
  static std::deque<Comparison> all;
  return all;
}

double threadSeconds() noexcept {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

std::string runName(Comparison const& comparison, char const* side, std::int64_t size) {
  return comparison.name() + "/" + side + "/" + std::to_string(size);
}

/// Gathers the repetitions of each run, tells of progress, and prints the table.
class TableReporter final : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(Context const&) override { return true; }
  void ReportRuns(std::vector<Run> const& runs) override {
    for (Run const& run : runs) {
      if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
      double const items = run.counters.at("items").value * static_cast<double>(run.iterations);
      Measured& measured = m_measured[run.run_name.function_name + "/" + run.run_name.args];
      measured.nanoseconds.push_back(1e9 * run.real_accumulated_time / items);
      measured.allocations = run.counters.at("allocations").value;
      measured.bytes = run.counters.at("bytes").value;
      std::fputc('.', stderr);
    }
  }
  void Finalize() override { std::fputc('\n', stderr); }
  void print() const {
    std::printf("%-50s %9s %10s %10s %7s %7s %7s  %s\n", "work, each", "size", "plain ns", "ours ns", "ratio", "allocs",
                "bytes", "aims (first, then)");
    for (Comparison const& comparison : comparisons()) {
      for (std::int64_t const size : comparison.sizes()) printRow(comparison, size);
    }
  }

 private:
  struct Measured {
    std::vector<double> nanoseconds;
    double allocations = 0;
    double bytes = 0;
    double median() const {
      std::vector<double> sorted = nanoseconds;
      std::sort(sorted.begin(), sorted.end());
      return sorted[sorted.size() / 2];
    }
  };
  static std::string verdict(double ratio, double aim) {
    if (aim == 0) return "";
    char text[64];
    if (ratio <= aim) {
      std::snprintf(text, sizeof text, "%.2f reached", aim);
    } else {
      std::snprintf(text, sizeof text, "%.2f missed by %.0f %%", aim, 100 * (ratio / aim - 1));
    }
    return text;
  }
  void printRow(Comparison const& comparison, std::int64_t size) const {
    auto const plain = m_measured.find(runName(comparison, "plain", size));
    auto const ours = m_measured.find(runName(comparison, "ours", size));
    if (plain == m_measured.end() || ours == m_measured.end()) return;
    double const ratio = ours->second.median() / plain->second.median();
    std::string const first = verdict(ratio, comparison.firstAim());
    std::printf("%-50s %9lld %10.1f %10.1f %7.2f %7.2f %7.0f  %s%s%s\n", comparison.name().c_str(),
                static_cast<long long>(size), plain->second.median(), ours->second.median(), ratio,
                ours->second.allocations, ours->second.bytes, first.c_str(), first.empty() ? "" : "; ",
                verdict(ratio, comparison.thenAim()).c_str());
  }
  std::map<std::string, Measured> m_measured;
};

}  // namespace

Meter::~Meter() {
  double const done = static_cast<double>(m_state->iterations()) * static_cast<double>(m_items);
  m_state->counters["items"] = static_cast<double>(m_items);
  m_state->counters["allocations"] = static_cast<double>(m_allocated) / done;
  m_state->counters["bytes"] = static_cast<double>(m_bytes) / done;
}

void Meter::begin() noexcept {
  m_before = allocations();
  m_start = threadSeconds();
}

void Meter::end() {
  double const seconds = threadSeconds() - m_start;
  Allocations const after = allocations();
  m_allocated += after.count - m_before.count;
  m_bytes += after.bytes - m_before.bytes;
  m_state->SetIterationTime(seconds);
}

Comparison& Comparison::sizes(std::vector<std::int64_t> sizes) {
  m_sizes = std::move(sizes);
  return *this;
}

Comparison& Comparison::iterations(std::int64_t count) noexcept {
  m_iterations = count;
  return *this;
}

Comparison& Comparison::aims(double first, double then) noexcept {
  m_first = first;
  m_then = then;
  return *this;
}

Comparison& Comparison::baseline(Side side) {
  m_baseline = std::move(side);
  return *this;
}

Comparison& Comparison::library(Side side) {
  m_library = std::move(side);
  return *this;
}

void Comparison::enter() const {
  for (auto const& [name, side] : {std::pair("plain", &m_baseline), std::pair("ours", &m_library)}) {
    for (std::int64_t const size : m_sizes) {
      auto* const entered = benchmark::RegisterBenchmark((m_name + "/" + name).c_str(), *side);
      entered->Arg(size)->UseManualTime()->Unit(benchmark::kNanosecond);
      if (size >= LARGE || m_iterations != 0) entered->Iterations(size >= LARGE ? 1 : m_iterations);
    }
  }
}

Comparison& compare(std::string name) { return comparisons().emplace_back(std::move(name)); }

int run(int argc, char** argv) {
  // What has been taken from the system stays: a page's first touch is the system's work and would hide everybody
  // else's.
  mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
  mallopt(M_MMAP_THRESHOLD, std::numeric_limits<int>::max());
  // What the caller gives comes behind, and counts.
  char repetitions[] = "--benchmark_repetitions=5";
  char interleaving[] = "--benchmark_enable_random_interleaving=true";
  char shortest[] = "--benchmark_min_time=0.02";
  std::vector<char*> arguments{argv[0], repetitions, interleaving, shortest};
  arguments.insert(arguments.end(), argv + 1, argv + argc);
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
  for (Comparison const& comparison : comparisons()) comparison.enter();
  TableReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.print();
  benchmark::Shutdown();
  return 0;
}

}  // namespace bench
