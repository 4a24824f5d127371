// Random sequences of operations on the real collections and on a plain model, compared after every step.
// One that fails is printed as rows for the table of kept sequences below.
#include <gtest/gtest.h>

#include <random>

#include "collections_driver.hpp"
#include "support/random_sequences.hpp"

namespace collections_test {
namespace {

using Steps = std::vector<Step>;

std::string run(Steps const& steps, bool listens, Coverage& coverage, std::size_t& position) {
  Driver driver(listens, coverage);
  for (position = 0; position < steps.size(); ++position) {
    std::string difference = driver.run(steps[position]);
    if (!difference.empty()) return difference;
  }
  return "";
}

Steps randomSteps(unsigned seed, std::size_t count) {
  // How often each operation comes, in the order of Op.
  constexpr double weights[] = {6, 20, 8, 6, 4, 3, 4, 8, 4, 3, 8, 6, 2, 4, 3, 1, 3, 3, 2, 2.5, 7, 5, 3.5};
  static_assert(std::size(weights) == Coverage::OPS);
  std::mt19937 random(seed);
  std::discrete_distribution<int> ops(std::begin(weights), std::end(weights));
  std::uniform_int_distribution<unsigned> numbers(0, 127);
  Steps steps;
  for (std::size_t i = 0; i < count; ++i) {
    auto const op = i < 30 ? Op::CREATE : static_cast<Op>(ops(random));
    unsigned const a = numbers(random), b = numbers(random), c = numbers(random), d = numbers(random);
    unsigned const chance = numbers(random);
    unsigned const passage = op == Op::COMMIT ? 1 : 1 + chance % 5;  // a commit passes one point only
    steps.push_back({op, a, b, c, d, chance < 16 ? passage : 0});
  }
  return steps;
}

/// Sequences that failed once, or that lead where a random one seldom does.
struct Kept {
  char const* name;
  Steps steps;
};

std::vector<Kept> kept() {
  return {
      {"the only member of a map is rekeyed",
       {{Op::CREATE, 94, 21, 23, 57, 0},
        {Op::CREATE, 99, 47, 99, 1, 0},
        {Op::CREATE, 127, 19, 90, 95, 0},
        {Op::INSERT_REPLACING, 26, 113, 61, 74, 0},
        {Op::REKEY, 61, 13, 76, 70, 0}}},
      {"a view is cleared whose parent keeps a proxy",
       {{Op::CREATE, 88, 80, 36, 111, 0},
        {Op::ADD_PROXY, 95, 67, 104, 25, 0},
        {Op::CREATE, 14, 7, 121, 107, 0},
        {Op::SUBSET_CLEAR, 127, 59, 27, 75, 0}}},
      {"an element leaves a container that holds it twice",
       {{Op::CREATE, 53, 107, 83, 108, 0},
        {Op::CREATE, 62, 21, 92, 71, 0},
        {Op::ADD, 67, 3, 42, 112, 0},
        {Op::ADD, 1, 91, 60, 123, 0},
        {Op::CREATE, 62, 110, 24, 47, 0},
        {Op::ADD, 89, 14, 105, 51, 0}}},
      {"a new collection is cleared after a committed inner transaction and taken back",
       {{Op::CREATE, 8, 0, 0, 0, 0},
        {Op::BEGIN, 0, 0, 0, 0, 0},
        {Op::CREATE, 8, 0, 0, 0, 0},
        {Op::BEGIN, 0, 0, 0, 0, 0},
        {Op::ADD, 1, 1, 0, 0, 0},
        {Op::COMMIT, 0, 0, 0, 0, 0},
        {Op::CLEAR, 1, 1, 0, 0, 0},
        {Op::ROLL_BACK, 0, 0, 0, 0, 0}}},
  };
}

TEST(CollectionsAgainstAPlainModel, AgreeOnKeptSequences) {
  for (Kept const& each : kept()) {
    for (bool const listens : {false, true}) {
      Coverage coverage;
      std::size_t position = 0;
      EXPECT_EQ(run(each.steps, listens, coverage, position), "") << each.name << ", step " << position;
    }
  }
}

TEST(CollectionsAgainstAPlainModel, AgreeAfterEveryStep) {
  support::ExtentOfRun const extent = support::extentOfRun({1, 24, 300});
  Coverage coverage;
  for (unsigned seed = extent.first; seed < extent.first + extent.count; ++seed) {
    bool const listens = seed % 2 == 0;
    support::RandomSequences<Step> const sequences(
        [&](Steps const& steps, std::size_t& position) { return run(steps, listens, coverage, position); });
    ASSERT_TRUE(sequences.hold(randomSteps(seed, extent.steps), extent.apart))
        << "seed " << seed << (listens ? ", with a listener" : "");
  }
  if (extent.apart) return;

  for (std::size_t op = 0; op < Coverage::OPS; ++op) {
    EXPECT_GT(coverage.done[op], 10U) << "operation " << op << " was hardly done";
  }
  for (Op const op : {Op::ADD, Op::INSERT, Op::REPLACE, Op::REKEY})
    EXPECT_GT(coverage.refused[static_cast<std::size_t>(op)], 0U);
#ifdef TESSEL_FAILURE_POINTS
  for (Op const op : {Op::CREATE, Op::ADD, Op::REPLACE, Op::REMOVE, Op::CLEAR, Op::REKEY, Op::SET_CATEGORY, Op::DESTROY,
                      Op::COMMIT}) {
    EXPECT_GT(coverage.failed[static_cast<std::size_t>(op)], 0U)
        << "operation " << static_cast<int>(op) << " never failed";
  }
#endif
  for (std::size_t feature = 0; feature < Coverage::FEATURES; ++feature) {
    EXPECT_GT(coverage.changed[feature], 0U) << feature;
    EXPECT_GT(coverage.toldOld[feature], 0U) << feature;
    EXPECT_GT(coverage.rolledBack[feature], 0U) << feature;
  }
  for (std::size_t depth = 1; depth < Coverage::DEPTHS; ++depth) {
    EXPECT_GT(coverage.rolledBackLevels[depth], 0U) << depth;
    EXPECT_GT(coverage.committedAt[depth], 0U) << depth;
  }
  EXPECT_GT(coverage.proxiesResolved, 0U);
  EXPECT_GT(coverage.reborn, 0U);
  EXPECT_GT(coverage.repeatedMembers, 0U);
  EXPECT_GT(coverage.crossedContainers, 0U);
}

}  // namespace
}  // namespace collections_test
