// The values that symbols get, one table of small trees. Where the reference tool is installed, each row is put to it
// too, so that the table says what the language means and not what this program does.
#include <gmock/gmock.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "TreeFixture.hpp"

namespace kconfig::test {
namespace {

using testing::ElementsAre;

struct Case {
  char const* behaviour;
  char const* tree;
  char const* profile;
  std::vector<std::string> settings;
};

constexpr char const* modulesEntry = "config MODULES\n\tbool \"modules\"\n\toption modules\n\tdefault y\n";

std::vector<Case> const& cases() {
  static std::vector<Case> const all = {
      {"a prompt that is shown takes the user's value, else the default",
       "config A\n\tbool \"a\"\nconfig B\n\tbool \"b\"\n\tdefault y\nconfig C\n\tbool \"c\"\n\tdefault y\n",
       "CONFIG_A=y\n# CONFIG_C is not set\n",
       {"A=y", "B=y", "C unset"}},
      {"a symbol without a prompt ignores the user",
       "config A\n\tbool\nconfig B\n\tint\n\tdefault 3\nconfig C\n\tbool\n\tdefault y\n",
       "CONFIG_A=y\nCONFIG_B=7\n# CONFIG_C is not set\n",
       {"B=3", "C=y"}},
      {"dependencies of menus and conditional blocks reach everything inside",
       "config A\n\tbool \"a\"\nmenu \"m\"\n\tdepends on A\nif !A\nconfig B\n\tbool \"b\"\n\tdefault y\nendif\n"
       "config C\n\tbool \"c\"\n\tdefault y\nendmenu\n",
       "CONFIG_A=y\nCONFIG_B=y\n",
       {"A=y", "C=y"}},
      {"what is not visible keeps its default",
       "config A\n\tbool \"a\"\nmenu \"m\"\n\tvisible if A\nconfig B\n\tbool \"b\"\n\tdefault y\nendmenu\n",
       "# CONFIG_B is not set\n",
       {"A unset", "B=y"}},
      {"the first default in force counts",
       "config A\n\tbool \"a\"\n\tdefault y\nconfig S\n\tstring\n\tdefault \"no\" if !A\n\tdefault \"yes\" if A\n"
       "\tdefault \"last\"\n",
       "",
       {"A=y", "S=\"yes\""}},
      {"select forces a symbol even where its own dependencies do not hold",
       "config A\n\tbool \"a\"\n\tselect B\nconfig B\n\tbool \"b\"\n\tdepends on A && C\nconfig C\n\tbool\n",
       "CONFIG_A=y\n# CONFIG_B is not set\n",
       {"A=y", "B=y"}},
      {"imply suggests, and the user may refuse",
       "config A\n\tbool \"a\"\n\tdefault y\n\timply B\n\timply C\nconfig B\n\tbool \"b\"\nconfig C\n\tbool \"c\"\n",
       "# CONFIG_C is not set\n",
       {"A=y", "B=y", "C unset"}},
      {"numbers are brought into their range, and out of it the user's do not count",
       "config A\n\tint \"a\"\n\trange 1 10\n\tdefault 50\nconfig B\n\thex \"b\"\n\trange 0x10 0x20\n\tdefault 0x18\n"
       "config C\n\tint \"c\"\n\trange -5 A\n",
       "CONFIG_B=0x99\nCONFIG_C=11\n",
       {"A=10", "B=0x18", "C="}},
      {"a symbol that saw a number out of range keeps what it worked out",
       "config A\n\tint \"a\"\n\trange 1 10\n\tdefault 4\nconfig B\n\tint\n\tdefault A\n",
       "CONFIG_A=50\n",
       {"A=4", "B=10"}},
      {"a number that is dropped is worked out again only when all that are have been found",
       "config Z910\n\tint \"a\"\n\trange 28 29\n\tdefault 50\nconfig Z98\n\tint \"b\"\n\trange Z910 5\n"
       "config Z95\n\tint \"c\"\n\trange 58 Z98\n\tdefault 99\n",
       "CONFIG_Z910=12\nCONFIG_Z98=12\nCONFIG_Z95=30\n",
       {"Z910=29", "Z98=29", "Z95=29"}},
      {"one member of a choice is y",
       "choice\n\tprompt \"c\"\n\tdefault B\nconfig A\n\tbool \"a\"\nconfig B\n\tbool \"b\"\nconfig C\n\tbool \"c\"\n"
       "endchoice\n",
       "CONFIG_A=y\nCONFIG_C=y\n",
       {"A unset", "B unset", "C=y"}},
      {"a choice falls back to its default, then to its first member that is shown",
       "config X\n\tbool\nchoice\n\tprompt \"c\"\n\tdefault B if X\nconfig A\n\tbool \"a\" if X\nconfig B\n\tbool "
       "\"b\"\n"
       "endchoice\nchoice\n\tprompt \"d\"\n\tdefault D\nconfig C\n\tbool \"c\"\nconfig D\n\tbool \"d\"\nendchoice\n",
       "CONFIG_A=y\n",
       {"B=y", "C unset", "D=y"}},
      {"an optional choice may stay empty",
       "choice\n\tbool \"c\"\n\toptional\nconfig A\n\tbool \"a\"\nendchoice\n",
       "",
       {}},
      {"a line for a named choice leaves it the member that its other lines ask for",
       "choice C\n\tprompt \"c\"\nconfig A\n\tbool \"a\"\nconfig B\n\tbool \"b\"\nendchoice\n"
       "choice D\n\tprompt \"d\"\n\toptional\nconfig E\n\tbool \"e\"\nconfig F\n\tbool \"f\"\nendchoice\n",
       "CONFIG_B=y\n# CONFIG_C is not set\nCONFIG_F=y\n# CONFIG_D is not set\n",
       {"A unset", "B=y"}},
      {"a member that is shown outside of its choice too gets its line from a file that is complete",
       "config A\n\tbool \"a\"\nchoice\n\tprompt \"c\"\n\toptional\nconfig A\n\tprompt \"b\"\nendchoice\n",
       "",
       {"A unset"}},
      {"a member that depends on another member is no member",
       "choice\n\tprompt \"c\"\nconfig A\n\tbool \"a\"\nconfig B\n\tbool \"b\"\n\tdepends on A\nendchoice\n",
       "CONFIG_B=y\n",
       {"A=y", "B=y"}},
      {"members without a type have that of their choice",
       "choice\n\tbool \"c\"\nconfig A\n\tprompt \"a\"\nconfig B\n\tprompt \"b\"\nendchoice\n",
       "CONFIG_B=y\n",
       {"A unset", "B=y"}},
      {"strings are written with their escapes and read back",
       "config A\n\tstring \"a\"\n\tdefault \"q\\\"b\\\\s\"\nconfig B\n\tstring \"b\"\nconfig C\n\tstring \"c\"\n",
       "CONFIG_B=\"u\\\"\\\\v\"tail\nCONFIG_C=bare\n",
       {"A=\"q\\\"b\\\\s\"", "B=\"u\\\"\\\\v\"", "C=\"\""}},
      {"values of the wrong form do not count",
       "config A\n\tint \"a\"\n\tdefault 1\nconfig B\n\thex \"b\"\n\tdefault 0x1\nconfig C\n\tbool \"c\"\n",
       "CONFIG_A=07\nCONFIG_B=0xg\nCONFIG_C=m\nnonsense\n",
       {"A=1", "B=0x1", "C unset"}},
      {"a carriage return belongs to the end of a line, and only there",
       "config A\n\tint \"a\"\n\tdefault 1\nconfig B\n\tint \"b\"\n\tdefault 2\n",
       "CONFIG_A=3\r\nCONFIG_B=4\r",
       {"A=3", "B=2"}},
      {"numbers compare as numbers, other texts as texts",
       "config A\n\tint\n\tdefault 9\nconfig B\n\thex\n\tdefault 0xa\nconfig C\n\tbool\n\tdefault y if A < 10\n"
       "config D\n\tbool\n\tdefault y if A < B\nconfig E\n\tstring\n\tdefault \"9\"\nconfig F\n\tbool\n"
       "\tdefault y if E < \"10\"\nconfig G\n\tbool\n\tdefault y if UNKNOWN = \"UNKNOWN\"\n",
       "",
       {"A=9", "B=0xa", "C=y", "D=y", "E=\"9\"", "F=y", "G=y"}},
      {"a text that defaults to a bool symbol is n",
       "config A\n\tbool\n\tdefault y\nconfig S\n\tstring\n\tdefault A\nconfig T\n\tstring\n\tdefault y\n",
       "",
       {"A=y", "S=\"n\"", "T=\"y\""}},
      {"a symbol declared in several places has all of their properties",
       "config X\n\tbool \"x\"\nif X\nconfig A\n\tbool \"a\"\nendif\nif !X\nconfig A\n\tdefault y\nendif\n",
       "",
       {"X unset", "A=y"}}};
  return all;
}

// The same with a third value.
std::vector<Case> const& tristateCases() {
  static std::vector<Case> const all = {
      {"a tristate symbol is limited by what it depends on",
       "config A\n\ttristate \"a\"\nconfig B\n\ttristate \"b\"\n\tdepends on A\n\tdefault y\n"
       "config C\n\tbool \"c\"\n\tdepends on A\n\tdefault y\n",
       "CONFIG_A=m\nCONFIG_B=y\n",
       {"MODULES=y", "A=m", "B=m", "C=y"}},
      {"without modules m is y",
       "config A\n\ttristate \"a\"\nconfig B\n\ttristate\n\tdefault m\nconfig C\n\ttristate \"c\"\n\tdepends on m\n",
       "# CONFIG_MODULES is not set\nCONFIG_A=m\nCONFIG_C=y\n",
       {"MODULES unset", "A=y", "B=y"}},
      {"select hands on the value of its symbol",
       "config A\n\ttristate \"a\"\n\tselect B\n\tselect C if A != n\nconfig B\n\ttristate\nconfig C\n\ttristate\n"
       "config D\n\tbool \"d\"\n\tselect E if A != n\nconfig E\n\ttristate\n",
       "CONFIG_A=m\nCONFIG_D=y\n",
       {"MODULES=y", "A=m", "B=m", "C=m", "D=y", "E=m"}},
      {"members of a tristate choice may all be m",
       "choice\n\ttristate \"c\"\nconfig A\n\ttristate \"a\"\nconfig B\n\ttristate \"b\"\nconfig C\n\tbool \"c\"\n"
       "endchoice\n",
       "CONFIG_A=m\nCONFIG_B=m\nCONFIG_C=y\n",
       {"MODULES=y", "A unset", "B unset", "C=y"}},
      {"and are as long as none is y",
       "choice\n\ttristate \"c\"\nconfig A\n\ttristate \"a\"\nconfig B\n\ttristate \"b\"\nconfig C\n\tbool \"c\"\n"
       "endchoice\n",
       "CONFIG_A=m\nCONFIG_B=m\n",
       {"MODULES=y", "A=m", "B=m"}}};
  return all;
}

Case withModules(Case const& original, std::string& storage) {
  storage = std::string(modulesEntry) + original.tree;
  Case copy = original;
  copy.tree = storage.c_str();
  return copy;
}

// The reference tool's answer, in a folder of its own.
std::string askReference(Case const& wanted) {
  namespace fs = std::filesystem;
  fs::path const folder = fs::temp_directory_path() / ("kconfig-reference-" + std::to_string(::getpid()));
  fs::create_directories(folder);
  std::ofstream(folder / "Kconfig") << wanted.tree;
  std::ofstream(folder / ".config") << wanted.profile;
  std::string const command = "cd '" + folder.string() + "' && kconfig-conf --olddefconfig Kconfig >log 2>&1";
  int const code = std::system(command.c_str());
  std::ifstream file(folder / ".config");
  std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  fs::remove_all(folder);
  return code == 0 ? text : "the reference tool ends with " + std::to_string(code);
}

class CompletionTest : public testing::Test {
 protected:
  static void check(Case const& row) {
    SCOPED_TRACE(row.behaviour);
    Completed const completed = complete({{{"Kconfig", row.tree}}, {}, row.profile});
    EXPECT_EQ(settingsOf(completed.configuration), row.settings);
    if (s_hasReference) {
      EXPECT_EQ(completed.configuration, askReference(row));
    }
  }

  static inline bool const s_hasReference = std::system("command -v kconfig-conf >/dev/null 2>&1") == 0;
};

TEST_F(CompletionTest, GivesEachSymbolTheValueThatTheLanguageSays) {
  for (Case const& row : cases()) {
    check(row);
  }
}

TEST_F(CompletionTest, KnowsTheThirdValueWhereModulesAreOn) {
  for (Case const& row : tristateCases()) {
    std::string storage;
    check(withModules(row, storage));
  }
}

TEST_F(CompletionTest, WritesHeadingsOnlyOfWhatIsShown) {
  Completed const completed = complete({{{"Kconfig",
                                          "mainmenu \"Title\"\nconfig A\n\tbool \"a\"\nmenu \"seen\"\nconfig B\n\tint\n"
                                          "\tdefault 1\nendmenu\nmenu \"hidden\"\n\tdepends on A\ncomment \"inside\"\n"
                                          "endmenu\ncomment \"said\"\n"}}});
  EXPECT_EQ(completed.configuration,
            "#\n# Automatically generated file; DO NOT EDIT.\n# Title\n#\n# CONFIG_A is not set\n"
            "\n#\n# seen\n#\nCONFIG_B=1\n\n#\n# said\n#\n");
}

TEST_F(CompletionTest, WritesTheTitleWithoutBlanksAroundIt) {
  std::pair<char const*, char const*> const titles[] = {
      {"  Title", "# Title\n#\n"}, {"", "#\n#\n"}, {"$NONE", "#\n#\n"}};
  for (auto const& [title, lines] : titles) {
    Completed const completed = complete({{{"Kconfig", "mainmenu \"" + std::string(title) + "\"\n"}}});
    EXPECT_EQ(completed.configuration, "#\n# Automatically generated file; DO NOT EDIT.\n" + std::string(lines))
        << title;
  }
}

TEST_F(CompletionTest, WritesAHeaderOfWhatIsSet) {
  std::string const tree = std::string(modulesEntry) +
                           "config A\n\ttristate \"a\"\nconfig B\n\tbool \"b\"\nconfig H\n\thex\n\tdefault ff\n"
                           "config I\n\tint\n\tdefault -3\nconfig S\n\tstring\n\tdefault \"a\\\"b\"\n";
  Completed const completed = complete({{{"Kconfig", tree}}, {}, "CONFIG_A=m\n"});
  std::string const macros = completed.header.substr(completed.header.find("#define"));
  EXPECT_EQ(macros,
            "#define CONFIG_MODULES 1\n#define CONFIG_A_MODULE 1\n#define CONFIG_H 0xff\n#define CONFIG_I -3\n"
            "#define CONFIG_S \"a\\\"b\"\n");
}

TEST_F(CompletionTest, WarnsOfTheProfileWithItsLines) {
  Completed const completed = complete({{{"Kconfig",
                                          "config A\n\tint \"a\"\n\trange 1 5\nconfig B\n\tbool \"b\"\nconfig S\n"
                                          "\tstring \"s\"\nchoice\n\tprompt \"c\"\nconfig C\n\tbool \"c\"\nconfig D\n"
                                          "\tbool \"d\"\nendchoice\n"}},
                                        {},
                                        "# a comment\nCONFIG_A=9\nCONFIG_NONE=y\nCONFIG_B=x\nCONFIG_S=open\nwhat\n"
                                        "CONFIG_C=y\nCONFIG_D=y\nCONFIG_C=n\n"});
  EXPECT_THAT(completed.messages,
              ElementsAre("profile:6: warning: the line is neither a value nor a comment and is ignored",
                          "profile:3: warning: there is no symbol 'NONE'",
                          "profile:4: warning: 'x' is no value for 'B', which is bool",
                          "profile:5: warning: the string for 'S' does not stand in quotes",
                          "profile:8: warning: 'D' contradicts what another member of its choice is given",
                          "profile:9: warning: 'C' has a value from an earlier line already, this one replaces it",
                          "profile:2: warning: the value 9 of 'A' is out of its range and does not count"));
}

TEST_F(CompletionTest, ReportsLoopsAndGoesOn) {
  Completed const completed = complete({{{"Kconfig",
                                          "config A\n\tbool \"a\" if B\nconfig B\n\tbool\n\tdefault y if A\n"
                                          "config Z\n\tbool \"z\"\n\tdefault y\n"}}});
  EXPECT_THAT(completed.messages, ElementsAre(testing::MatchesRegex(
                                      "Kconfig:[13]: error: dependency loop: '[AB]' depends on '[AB]' depends "
                                      "on '[AB]'")));
  EXPECT_THAT(settingsOf(completed.configuration), ElementsAre("Z=y"));
}

TEST_F(CompletionTest, WarnsOfWhatATreeCanHardlyMean) {
  std::pair<char const*, char const*> const trees[] = {
      {"config A\n\tprompt \"a\"\n", "Kconfig:1: warning: 'A' has no type"},
      {"config A\n\tint \"a\"\n\tselect B\nconfig B\n\tbool\n",
       "Kconfig:3: warning: 'A' is neither bool nor tristate and can't select another symbol"},
      {"config A\n\tbool \"a\"\n\timply B\nconfig B\n\tint\n",
       "Kconfig:3: warning: 'B' is int, imply has no effect on it"},
      {"config A\n\tbool \"a\"\n\trange 1 2\n", "Kconfig:3: warning: a range is for int and hex, and 'A' is bool"},
      {"config A\n\tint\n\trange 1 x\n", "Kconfig:3: warning: the range of 'A' is not one of int values"},
      {"config A\n\tint\n\tdefault x\n", "Kconfig:3: warning: the default of 'A' is no int value"},
      {"config A\n\tstring\n\tdefault B && C\n",
       "Kconfig:3: warning: the default of 'A' has to be a single symbol or constant"},
      {"choice\n\tprompt \"c\"\nconfig A\n\tbool \"a\"\n\tdefault y\nendchoice\n",
       "Kconfig:5: warning: 'A' is a member of a choice, its default does not count"},
      {"choice\n\tprompt \"c\"\nconfig A\n\tbool\nendchoice\n",
       "Kconfig:3: warning: 'A' is a member of a choice and has no prompt"},
      {"choice\n\tbool\nconfig A\n\tbool \"a\"\nendchoice\n", "Kconfig:1: warning: the choice has no prompt"},
      {"config A\n\tbool\n\tdefault y\n\tselect B\nconfig B\n\tbool\n\tdepends on C\n",
       "Kconfig:4: warning: 'A' selects 'B', whose dependencies are not met"}};
  for (auto const& [tree, message] : trees) {
    EXPECT_THAT(complete({{{"Kconfig", tree}}}).messages, ElementsAre(message)) << tree;
  }
}

}  // namespace
}  // namespace kconfig::test
