// Changes and commands: what is tried out leaves no trace, differences are told, bad input ends in messages and exit
// codes, and texts that the fuzzer has kept do no harm.
#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <plinth/diagnostics/Fingerprint.hpp>
#include <plinth/diagnostics/Verify.hpp>
#include <sstream>

#include "TreeFixture.hpp"
#include "commands/Commands.hpp"
#include "loading/ModelText.hpp"

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
              ElementsAre("the command line: error: there is no symbol 'NONE'",
                          "the command line: error: 'what' is no value for 'A', which is bool",
                          "the command line: error: 'B=12' comes to 3: its range is 1 to 9"));
  EXPECT_TRUE(plinth::verify(bench.workspace.model()).empty());
}

TEST(Workspace, TellsOfEachSettingWhyItHasNoEffect) {
  Bench bench(Input{{{"Kconfig",
                      "config MODULES\n\tbool \"mod\"\n\toption modules\nconfig A\n\tbool \"a\"\n"
                      "config B\n\tint \"b\"\n\tdepends on A && !MODULES\n\trange 2 9\nconfig H\n\thex\n\tdefault 0x7\n"
                      "config E\n\tstring\n\toption env=\"V\"\nconfig S\n\tbool \"s\"\n\tselect W if A\n"
                      "config W\n\tbool \"w\"\nconfig J\n\tbool \"j\"\n\timply T\nconfig U\n\ttristate \"u\"\n"
                      "config T\n\ttristate \"t\" if U\nconfig LONGNAME\n\tbool\n"
                      "choice\n\tprompt \"c\"\n\tdepends on A\nconfig C1\n\tbool \"c1\"\nconfig C2\n\tbool \"c2\"\n"
                      "endchoice\n"}},
                    {{"V", "v"}}});
  struct Row {
    std::vector<Setting> settings;
    char const* last;  // of what is told, nothing if all is well
  };
  for (Row const& row : std::vector<Row>{
           {{{"A", "y"}, {"B", "4"}, {"C2", "y"}, {"MODULES", "n"}}, ""},
           {{{"LONGNAMES", "y"}}, "there is no symbol 'LONGNAMES'; did you mean 'LONGNAME'?"},
           {{{"U", "7"}}, "'7' is no value for 'U', which is tristate"},
           {{{"H", "0x8"}}, "'H=0x8' comes to 0x7: it has no prompt, so that its value only follows from others"},
           {{{"H", "0x7"}}, ""},
           {{{"E", "\"e\""}}, "'E=\"e\"' comes to v: its value comes from the environment or the tool"},
           {{{"B", "4"}, {"MODULES", "y"}}, "'B=4' comes to nothing: it needs 'A' and '!MODULES'"},
           {{{"A", "y"}, {"B", "10"}}, "'B=10' comes to 2: its range is 2 to 9"},
           {{{"A", "y"}, {"S", "y"}, {"W", "n"}}, "'W=n' comes to y: it is selected by 'S'"},
           {{{"U", "m"}}, "'U=m' comes to y: there are no modules"},
           {{{"MODULES", "y"}, {"U", "m"}, {"T", "y"}}, "'T=y' comes to m: it can be m at most, as 'U' is"},
           {{{"MODULES", "y"}, {"U", "y"}, {"J", "y"}, {"T", "m"}}, "'T=m' comes to y: it is implied"},
           {{{"A", "y"}, {"C1", "y"}, {"C2", "y"}}, "'C1=y' comes to n: its choice has 'C2'"},
           {{{"A", "y"}, {"C1", "n"}}, "'C1=n' comes to y: one member of its choice has to be y; set another one"},
           {{{"A", "n"}, {"C1", "y"}}, "'C1=y' comes to n: it needs 'A'"},
           {{{"A", "n"}, {"A", "y"}}, "'A=n' comes to y: a later setting replaces it"},
       }) {
    std::size_t const before = bench.workspace.diagnostics().entries().size();
    bench.workspace.tryOut(bench.profile, row.settings, false, [] {});
    auto const& told = bench.workspace.diagnostics().entries();
    EXPECT_EQ(told.size() == before ? "" : told.back().message, row.last);
    EXPECT_LE(told.size(), before + 1);
  }
}

TEST(Workspace, KeepsTheValueThatStoodWhereASettingIsOutOfRange) {
  Bench bench(Input{{{"Kconfig", smallTree}}, {}, "CONFIG_A=y\nCONFIG_B=4\n"});
  for (auto const& [settings, value] : std::vector<std::pair<std::vector<Setting>, char const*>>{
           {{{"B", "12"}}, "4"}, {{{"B", "5"}, {"B", "0"}}, "5"}, {{{"B", "0"}, {"B", "6"}}, "6"}}) {
    bench.workspace.tryOut(bench.profile, settings, false, [&, expected = value] {
      EXPECT_EQ(bench.workspace.states().root->getParams()->find(u"B")->getCachedCode(), toModel(expected));
    });
  }
  EXPECT_THAT(textsOf(bench.workspace.diagnostics()),
              ElementsAre("the command line: error: 'B=12' comes to 4: its range is 1 to 9",
                          "the command line: error: 'B=0' comes to 5: its range is 1 to 9",
                          "the command line: error: 'B=0' comes to 6: a later setting replaces it"));
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
    testing::internal::GetCapturedStderr();
    return code;
  }

  std::filesystem::path m_folder = std::filesystem::path(testing::TempDir()) / ("kconfig" + std::to_string(getpid()));
  CommandOptions options;
  std::string output;
};

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
