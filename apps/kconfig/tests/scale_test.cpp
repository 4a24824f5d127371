// Trees of a size and shape that no person writes: nothing may run out of stack or take more than linear time.
#include <gtest/gtest.h>

#include "TreeFixture.hpp"

namespace kconfig::test {
namespace {

constexpr int many = 20000;

std::string symbol(int index) { return "S" + std::to_string(index); }

TEST(Scale, LongChainsOfDependencies) {
  std::string tree = "config S0\n\tbool \"s\"\n\tdefault y\n";
  for (int i = 1; i < many; ++i) {
    tree += "config " + symbol(i) + "\n\tbool \"s\"\n\tdepends on " + symbol(i - 1) + "\n\tdefault y\n";
  }
  Completed const completed = complete({{{"Kconfig", tree}}});
  EXPECT_TRUE(completed.messages.empty());
  EXPECT_EQ(settingsOf(completed.configuration).back(), symbol(many - 1) + "=y");
}

TEST(Scale, LongChainsOfSelectionsBackwards) {
  std::string tree;
  for (int i = 0; i < many; ++i) {
    tree += "config " + symbol(i) + "\n\tbool\n" + (i > 0 ? "\tselect " + symbol(i - 1) + "\n" : "");
  }
  tree += "config LAST\n\tbool \"l\"\n\tselect " + symbol(many - 1) + "\n";
  Completed const completed = complete({{{"Kconfig", tree}}, {}, "CONFIG_LAST=y\n"});
  EXPECT_EQ(settingsOf(completed.configuration).front(), "S0=y");
}

TEST(Scale, LongLoops) {
  std::string tree;
  for (int i = 0; i < many; ++i) {
    tree += "config " + symbol(i) + "\n\tbool \"s\"\n\tdepends on " + symbol((i + 1) % many) + "\n";
  }
  EXPECT_EQ(complete({{{"Kconfig", tree}}}).messages.size(), 1U);
}

TEST(Scale, DeepNestingIsRefusedWithAMessage) {
  std::string blocks;
  for (int i = 0; i < many; ++i) {
    blocks += "if A\n";
  }
  std::vector<std::string> const messages = complete({{{"Kconfig", blocks}}}).messages;
  ASSERT_FALSE(messages.empty());
  EXPECT_EQ(messages.front(), "Kconfig:500: error: blocks are nested too deeply, the rest of the file is left out");
  for (char const* opening : {"(", "!", "!("}) {
    std::string expression = "config A\n\tbool\n\tdepends on ";
    for (int i = 0; i < many; ++i) {
      expression += opening;
    }
    EXPECT_EQ(complete({{{"Kconfig", expression + "B\n"}}}).messages.front(),
              "Kconfig:3: error: the expression is nested too deeply");
  }
}

TEST(Scale, LongExpressions) {
  std::string tree = "config A\n\tbool \"a\"\n\tdepends on y";
  for (int i = 0; i < 1000; ++i) {
    tree += (i % 2 != 0 ? " || " : " && ") + symbol(i);
  }
  EXPECT_TRUE(complete({{{"Kconfig", tree + "\n"}}}).messages.empty());
}

}  // namespace
}  // namespace kconfig::test
