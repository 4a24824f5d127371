// Changes and commands: what is tried out leaves no trace, differences are told, bad input ends in messages and exit
// codes, and texts that the fuzzer has kept do no harm.
#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <plinth/Fingerprint.hpp>
#include <plinth/Verify.hpp>
#include <sstream>

#include "TreeFixture.hpp"
#include "commands/Commands.hpp"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace kconfig::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr char const* smallTree =
    "config L\n\tstring\n\toption defconfig_list\n\tdefault \"missing\"\n\tdefault \"saved\"\n"
    "config A\n\tbool \"a\"\nconfig B\n\tint \"b\"\n\tdepends on A\n\trange 1 9\n\tdefault 3\n"
    "config S\n\tstring \"s\"\n\tdefault \"x\" if A\n";

std::string printed(std::function<void()> const& action) {
  testing::internal::CaptureStdout();
  action();
  return testing::internal::GetCapturedStdout();
}

TEST(Workspace, TryingOutLeavesNoTrace) {
  Bench bench(Input{{{"Kconfig", smallTree}}, {}, "CONFIG_S=\"mine\"\n"});
  Workspace& workspace = bench.workspace;
  workspace.produce();
  ShownValues const before = workspace.writer().shown();
  plinth::Fingerprint const fingerprint = plinth::Fingerprint::of(workspace.model());
  std::string differences;
  workspace.tryOut(bench.profile, {settingFrom(workspace, "A=y"), settingFrom(workspace, "CONFIG_S=new")}, false, [&] {
    EXPECT_NE(plinth::Fingerprint::of(workspace.model()), fingerprint);
    EXPECT_EQ(workspace.writer().countDeviations(), 0U);
    differences = printed([&] { printDifferences(workspace, before, workspace.writer().shown()); });
  });
  EXPECT_EQ(differences, "-# CONFIG_A is not set\n+CONFIG_A=y\n+CONFIG_B=3\n-CONFIG_S=\"mine\"\n+CONFIG_S=\"new\"\n");
  auto const difference = diff(fingerprint, plinth::Fingerprint::of(workspace.model()));
  EXPECT_FALSE(difference) << difference->text();
  EXPECT_EQ(workspace.writer().countDeviations(), 0U);
  workspace.produce();
  EXPECT_FALSE(diff(fingerprint, plinth::Fingerprint::of(workspace.model()))) << "values are those of before as well";
}

TEST(Workspace, KeepsWhatIsNotTakenBack) {
  Bench bench(Input{{{"Kconfig", smallTree}}});
  bench.workspace.tryOut(bench.profile, {{"A", "y"}, {"B", "12"}, {"NONE", "y"}, {"A", "what"}}, true, [] {});
  bench.workspace.produce();
  EXPECT_THAT(settingsOf(scriptOf(bench.workspace.states().root, key::configuration)),
              ElementsAre("L=\"missing\"", "A=y", "B=3", "S=\"x\""));
  EXPECT_THAT(textsOf(bench.workspace.diagnostics()),
              ElementsAre("the command line: warning: there is no symbol 'NONE'",
                          "the command line: warning: 'what' is no value for 'A', which is bool",
                          "the command line: warning: the value 12 of 'B' is out of its range and does not count"));
  EXPECT_TRUE(plinth::verify(bench.workspace.model()).empty());
}

TEST(Workspace, ProfilesCanBeAppliedInTurn) {
  Bench bench(Input{{{"Kconfig", smallTree}, {"other", "CONFIG_A=y\nCONFIG_B=4\n"}}});
  Workspace& workspace = bench.workspace;
  ShownValues const before = workspace.writer().shown();
  workspace.apply(workspace.load("other"));
  EXPECT_EQ(printed([&] { printDifferences(workspace, before, workspace.writer().shown()); }),
            "-# CONFIG_A is not set\n+CONFIG_A=y\n+CONFIG_B=4\n-CONFIG_S=\"\"\n+CONFIG_S=\"x\"\n");
  workspace.apply(bench.profile);
  EXPECT_EQ(printed([&] { printDifferences(workspace, before, workspace.writer().shown()); }), "");
  EXPECT_EQ(workspace.writer().countDeviations(), 0U);
}

TEST(Workspace, FindsTheProfileThatTheTreeNames) {
  Bench bench(Input{{{"Kconfig", smallTree}, {"saved", "CONFIG_A=y\n"}}});
  EXPECT_EQ(bench.workspace.defaultProfile(), "saved");
}

class Commands : public testing::Test {
 protected:
  Commands() {
    std::filesystem::create_directories(m_folder);
    options.root = file("Kconfig", smallTree);
    options.quiet = true;
    options.noProfile = true;
  }
  ~Commands() override { std::filesystem::remove_all(m_folder); }

  std::string file(std::string const& name, std::string const& text) {
    std::ofstream(m_folder / name) << text;
    return (m_folder / name).string();
  }
  int run(int (*command)(kconfig::Run&)) {
    testing::internal::CaptureStderr();
    int code = -1;
    output = printed([&] {
      kconfig::Run made(options);
      code = command(made);
    });
    errors = testing::internal::GetCapturedStderr();
    return code;
  }

  std::filesystem::path m_folder = std::filesystem::path(testing::TempDir()) / ("kconfig" + std::to_string(getpid()));
  CommandOptions options;
  std::string output;
  std::string errors;
};

TEST_F(Commands, EndWithTheCodeThatIsDocumented) {
  EXPECT_EQ(run(runCheck), exitDone) << errors;
  EXPECT_THAT(output, HasSubstr("the model is sound"));
  options.configuration = (m_folder / "none" / "config").string();
  EXPECT_EQ(run(runGenerate), exitOutputFailed);
  EXPECT_THAT(errors, HasSubstr("can't write"));
  options.settings = {"A"};
  EXPECT_EQ(run(runSet), exitUsage);
  EXPECT_EQ(errors, "tessel-kconfig: 'A' is not of the form SYMBOL=VALUE\n");
  options.symbol = "NONE";
  EXPECT_EQ(run(runShow), exitInputErrors);
  options.profile = (m_folder / "gone").string();
  EXPECT_EQ(run(runSummary), exitInputErrors);
  EXPECT_THAT(errors, HasSubstr("gone: error: the profile can't be read"));
  options.root = file("Broken", "config A\n\tbool\n\tdepends A\n");
  EXPECT_EQ(run(runTree), exitInputErrors);
  EXPECT_THAT(errors, HasSubstr("Broken:3: error: expected 'on' behind 'depends'"));
}

TEST_F(Commands, TellWhatTheyAreAskedFor) {
  options.settings = {"A=y"};
  options.dryRun = true;
  EXPECT_EQ(run(runSet), exitDone);
  EXPECT_THAT(output, HasSubstr("+CONFIG_B=3\n"));
  EXPECT_THAT(output, HasSubstr("taken back: the state is as it was\n"));
  options.profile = file("one", "CONFIG_A=y\n");
  options.other = file("two", "CONFIG_A=y\nCONFIG_B=5\n");
  EXPECT_EQ(run(runDiff), exitDone);
  EXPECT_EQ(output, "-CONFIG_B=3\n+CONFIG_B=5\n");
  options.symbol = "CONFIG_B";
  EXPECT_EQ(run(runShow), exitDone);
  EXPECT_THAT(output, HasSubstr("a default at " + options.root + ":12"));
  EXPECT_EQ(run(runTree), exitDone);
  EXPECT_THAT(output, HasSubstr("  A = y   \"a\" *\n    B = 3   \"b\"\n"));
}

TEST(Fuzzer, WhatItHasKeptDoesNoHarm) {
  std::vector<std::string> texts;
  for (auto const& entry : std::filesystem::directory_iterator(KCONFIG_REGRESSIONS)) {
    std::ostringstream text;
    text << std::ifstream(entry.path(), std::ios::binary).rdbuf();
    texts.push_back(text.str());
  }
  ASSERT_FALSE(texts.empty());
  for (std::string const& text : texts) {
    EXPECT_EQ(LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const*>(text.data()), text.size()), 0);
  }
}

}  // namespace
}  // namespace kconfig::test
