// Random UUIDs: stamped as such, and random in every other bit, in each thread by itself.
#include <gtest/gtest.h>

#include <array>
#include <set>
#include <thread>
#include <vector>

#include "plinth/ElementImpl.hpp"

using boost::uuids::uuid;

namespace {

constexpr std::size_t COUNT = 10'000;

std::vector<uuid> makeMany() {
  std::vector<uuid> made(COUNT);
  for (uuid& each : made) each = plinth::ElementImpl::generateNewUuid();
  return made;
}

TEST(RandomUuid, HasTheVersionAndIsSetInEveryOtherBitHalfOfTheTimes) {
  std::array<std::size_t, 128> timesSet{};
  for (uuid const& each : makeMany()) {
    ASSERT_EQ(each.version(), uuid::version_random_number_based);
    ASSERT_EQ(each.variant(), uuid::variant_rfc_4122);
    for (std::size_t bit = 0; bit < timesSet.size(); ++bit) timesSet[bit] += each.data[bit / 8] >> (7 - bit % 8) & 1U;
  }
  for (std::size_t bit = 0; bit < timesSet.size(); ++bit) {
    bool const isStamp = (bit >= 48 && bit < 52) || bit == 64 || bit == 65;
    if (isStamp) continue;
    // Ten standard deviations.
    EXPECT_NEAR(static_cast<double>(timesSet[bit]), COUNT / 2.0, 500) << "bit " << bit;
  }
}

TEST(RandomUuid, IsMadeOnceWhicheverThreadsMakeThem) {
  std::array<std::vector<uuid>, 4> made;
  std::vector<std::thread> threads;
  for (std::vector<uuid>& each : made) threads.emplace_back([&each] { each = makeMany(); });
  for (std::thread& thread : threads) thread.join();
  std::set<uuid> all;
  for (std::vector<uuid> const& each : made) all.insert(each.begin(), each.end());
  EXPECT_EQ(all.size(), made.size() * COUNT);
}

}  // namespace
