// What the reader makes of text, right and wrong.
#include <gmock/gmock.h>

#include "TreeFixture.hpp"
#include "language/ExpressionText.hpp"
#include "loading/ModelText.hpp"

namespace kconfig::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// What the definitions give back of a text.
struct Read {
  MenuTree tree;
  HelpTexts helps;
  std::vector<std::string> messages;
};

Read read(Input const& input) {
  Diagnostics diagnostics;
  Read result;
  plinth::Model const model = plinth::Model::create();
  ReadTree read = readTree("Kconfig", surroundingsOf(input), diagnostics, model);
  result.tree = readDefinitions(read.schema).tree;
  result.helps = std::move(read.helps);
  result.messages = textsOf(diagnostics);
  return result;
}

Read read(std::string const& text) { return read(Input{{{"Kconfig", text}}}); }

TEST(Reader, KeepsEntriesInOrderWithParentsAndPositions) {
  Read const result = read(
      "menu \"m\"\n"
      "config A\n\tbool \"a\"\n"
      "if A\n"
      "choice\n\tprompt \"c\"\n"
      "config B\n\tbool \"b\"\n"
      "endchoice\n"
      "endif\n"
      "endmenu\n"
      "comment \"end\"\n");
  ASSERT_THAT(result.messages, IsEmpty());
  struct Row {
    EntryKind kind;
    unsigned line;
    EntryId parent;
    EntryId end;
    bool operator==(Row const& o) const {
      return kind == o.kind && line == o.line && parent == o.parent && end == o.end;
    }
  };
  std::vector<Row> rows;
  for (Entry const& entry : result.tree.entries) {
    rows.push_back({entry.kind, entry.position.line, entry.parent, entry.end});
  }
  EXPECT_TRUE((rows == std::vector<Row>{{EntryKind::Root, 0, noEntry, 7},
                                        {EntryKind::Menu, 1, 0, 6},
                                        {EntryKind::Config, 2, 1, 3},
                                        {EntryKind::If, 4, 1, 6},
                                        {EntryKind::Choice, 5, 3, 6},
                                        {EntryKind::Config, 7, 4, 6},
                                        {EntryKind::Comment, 12, 0, 7}}));
}

TEST(Reader, BindsAndTighterThanOrAndNotTightest) {
  std::pair<char const*, char const*> const cases[] = {{"A||B&&C", "A || (B && C)"},
                                                       {"(A || B) && !C", "(A || B) && !C"},
                                                       {"!A=y && B!='x y'", "!(A = y) && B != \"x y\""},
                                                       {"A<3||A<=3||A>3||A>=3", "A < 3 || A <= 3 || A > 3 || A >= 3"},
                                                       {"A \\\n && B # and so on", "A && B"},
                                                       {"((A))", "A"},
                                                       {"\"y\" && 'n'", "y && n"}};
  for (auto const& [text, expected] : cases) {
    Read const result = read(std::string("config X\n\tbool\n\tdepends on ") + text + "\n");
    ASSERT_THAT(result.messages, IsEmpty()) << text;
    Property const& property = result.tree.properties.back();
    EXPECT_EQ(textOf(result.tree.expressions, result.tree.symbols, property.condition), expected) << text;
  }
}

TEST(Reader, EndsHelpByItsIndentation) {
  std::pair<char const*, char const*> const cases[] = {
      {"\thelp\n\t  one\n\t    two\n\n\t  three\n\tdefault y\n", "one\n  two\n\nthree"},
      {"\t---help---\n        eight\n\ttab\nconfig Z\n", "eight\ntab"},
      {"\thelp\n\nconfig Z\n", ""},
      {"\thelp\nat the margin\n", "at the margin"},
      {"\thelp\n\t  # no comment  \t\n", "# no comment"},
      {"\thelp\n\t  last line without an end", "last line without an end"}};
  for (auto const& [text, expected] : cases) {
    HelpTexts const helps = read(std::string("config X\n\tbool\n") + text).helps;
    EXPECT_EQ(fromModel(helps.at(1)), expected) << text;
  }
}

TEST(Reader, SourcesFilesNamedByVariables) {
  Input const input{{{"Kconfig",
                      "config PLACE\n\tstring\n\toption env=\"DIR\"\n"
                      "config SUB\n\tstring\n\tdefault \"deep\"\n"
                      "source \"$PLACE/$SUB/Kconfig\"\nsource \"tree$NOTHING\"\n"},
                     {"there/deep/Kconfig", "config A\n\tbool\n"},
                     {"/base/tree", "config B\n\tbool\n"}},
                    {{"DIR", "there"}, {"srctree", "/base"}}};
  Read const result = read(input);
  EXPECT_THAT(result.messages, IsEmpty());
  EXPECT_TRUE(result.tree.symbols[result.tree.symbols.find("A")].defined);
  EXPECT_TRUE(result.tree.symbols[result.tree.symbols.find("B")].defined);
  ASSERT_EQ(result.tree.files.size(), 3U);
  EXPECT_EQ(result.tree.files[1].name, "there/deep/Kconfig");
  EXPECT_EQ(result.tree.files[1].sourcedFrom.line, 7U);
}

TEST(Reader, TakesVariablesAsTheyAreDeclaredSoFar) {
  std::pair<char const*, char const*> const cases[] = {
      {"config F\n\tbool\n\tdefault y\nconfig V\n\tstring\n\tdefault \"first\" if !F\n\tdefault \"second\"\n",
       "second"},
      {"config W\n\tstring\n\tdefault \"other\"\nconfig V\n\tstring\n\tdefault W\n", "other"},
      {"config W\n\tstring\n\tdefault V\nconfig V\n\tstring\n\tdefault W\n", ""},
      {"config N\n\tbool\nconfig V\n\tstring\n\tdefault \"asked\"\n\tdepends on N\n", "asked"},
      {"config V\n\tint\n\tdefault 9\n\trange 1 5\n", "5"},
      {"config V\n\ttristate\n\tdefault y\n", "y"},
      {"config V\n\tbool\n", "n"},
      {"config V\n\tdefault \"text\"\n", "V"},
      {"config X\n\tbool\n\tdepends on V\n", "V"},
      {"config X\n\tbool\n", ""}};
  for (auto const& [text, value] : cases) {
    Read const result = read(std::string(text) + "source \"<$V>\"\nconfig V\n\tstring\n\tdefault \"late\"\n");
    ASSERT_FALSE(result.messages.empty()) << text;
    EXPECT_THAT(result.messages.front(), testing::HasSubstr("the file '<" + std::string(value) + ">'")) << text;
  }
}

TEST(Reader, ExpandsTheTitleOnceAllIsRead) {
  Input const input{{{"Kconfig",
                      "mainmenu \"$V of $ARCH $NONE.\"\nconfig V\n\tstring\n\toption env=\"V\"\n"
                      "config ARCH\n\tstring\n\tdefault \"arm\" if V\n"}},
                    {{"V", "7"}}};
  EXPECT_EQ(read(input).tree.title, "7 of  .");
}

TEST(Reader, TellsWhereTextIsWrongAndReadsOn) {
  struct Case {
    char const* text;
    std::vector<std::string> messages;
  };
  Case const cases[] = {
      {"foo bar\n", {"Kconfig:1: error: unknown statement 'foo'"}},
      {"= 5\n",
       {"Kconfig:1: warning: the character '=' has no meaning here and is ignored",
        "Kconfig:1: error: unknown statement '5'"}},
      {"$\n", {"Kconfig:1: warning: the character '$' has no meaning here and is ignored"}},
      {"config A\n\tstring \"\n", {"Kconfig:2: warning: the string does not end on its line"}},
      {"config\n\tbool \"x\"\n\thelp\n\t  text\n", {"Kconfig:1: error: expected the name of a symbol"}},
      {"config y\n\tbool\n", {"Kconfig:1: error: 'y' is a constant and can't be configured"}},
      {"config A B\n", {"Kconfig:1: error: unexpected 'B'"}},
      {"config A\n\tbool\n\tdepends B\n", {"Kconfig:3: error: expected 'on' behind 'depends'"}},
      {"config A\n\tbool\n\tdepends on (B\n\tdefault y\n", {"Kconfig:3: error: expected ')'"}},
      {"config A\n\tbool\n\tdepends on B &&\n", {"Kconfig:3: error: expected a symbol or a constant"}},
      {"config A\n\tbool \"open\n\tdefault y\n", {"Kconfig:2: warning: the string does not end on its line"}},
      {"config A\n\tbool\n\toptional\n", {"Kconfig:3: error: 'optional' has no place here"}},
      {"config A\n\tbool\n\tint\n", {"Kconfig:3: warning: 'A' is bool already, the type int is ignored"}},
      {"config A\n\tbool\n\toption sour env\n",
       {"Kconfig:3: warning: the option 'sour' is not known and ignored",
        "Kconfig:3: error: the option 'env' needs the name of a variable"}},
      {"config A\n\tbool\n\toption env=\"NONE\"\n", {"Kconfig:3: warning: the environment has no variable NONE"}},
      {"menuconfig A\n\tbool\n", {"Kconfig:1: warning: 'menuconfig' without a prompt"}},
      {"comment \"c\"\n\thelp\n\t  text\n", {"Kconfig:2: error: 'help' has no place here"}},
      {"menu \"m\"\n\tdepends on A\n\tvisible if B\nendmenu\n", {"Kconfig:3: error: 'visible' has no place here"}},
      {"menu \"m\"\nif A\nendmenu\n", {"Kconfig:2: error: 'if' without 'endif' in this file"}},
      {"endif\n", {"Kconfig:1: error: 'endif' without 'if' in this file"}},
      {"choice\n\tprompt \"c\"\n", {"Kconfig:1: error: 'choice' without 'endchoice' in this file"}},
      {"config A\n\tbool\nmainmenu \"late\"\n", {"Kconfig:3: error: 'mainmenu' has to be the first statement"}},
      {"mainmenu \"one\"\nmainmenu \"two\"\n", {"Kconfig:2: error: 'mainmenu' has to be the first statement"}},
      {"config A\n\tstring\n\toption defconfig_list\nconfig B\n\tstring\n\toption defconfig_list\n",
       {"Kconfig:6: error: 'A' is the defconfig_list symbol already"}},
      {"choice\n\tprompt \"c\"\nmenu \"m\"\nendmenu\nendchoice\n",
       {"Kconfig:3: error: a choice can't have a menu or another choice directly inside"}},
      {"osource \"x\"\n", {"Kconfig:1: error: unknown statement 'osource'"}},
      {"source \"gone\"\n", {"Kconfig:1: error: the file 'gone' can't be read: no such file"}},
      {"source \"a$B\"\n", {"Kconfig:1: error: the file 'a' ('a$B') can't be read: no such file"}},
      {"source \"Kconfig\"\n", {"Kconfig:1: error: the file 'Kconfig' sources itself, directly or through others"}}};
  for (Case const& wrong : cases) {
    Read result = read(std::string(wrong.text) + "config BEHIND\n\tbool\n");
    EXPECT_EQ(result.messages, wrong.messages) << wrong.text;
    EXPECT_TRUE(result.tree.symbols[result.tree.symbols.plain("BEHIND")].defined) << wrong.text;
  }
}

TEST(Reader, FindsASourceThatComesBackThroughOthers) {
  Input const input{{{"Kconfig", "source \"a\"\n"}, {"a", "\nsource \"b\"\n"}, {"b", "source \"a\"\nconfig X\n"}}};
  EXPECT_THAT(read(input).messages, ElementsAre("b:1: error: the file 'a' sources itself, directly or through others"));
}

TEST(Reader, NamesTheFirstFileThatIsMissing) {
  EXPECT_THAT(read(Input{}).messages, ElementsAre("Kconfig: error: the file can't be read: no such file"));
}

}  // namespace
}  // namespace kconfig::test
