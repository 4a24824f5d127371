// The prompt: entries of several lines, values shown, errors that do not end it, and the completion of names.
#include "Completion.hpp"
#include "Prompt.hpp"
#include "script_fixture.hpp"

namespace luafront {
namespace {

class PromptTest : public ScriptTest {
 protected:
  /// What a person who enters these lines is shown.
  std::string enter(std::string const& text, bool complete = true) {
    std::istringstream input(text);
    StreamLines lines(input);
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(runPrompt(*m_interpreter, lines), complete);
    fflush(stdout);
    return ::testing::internal::GetCapturedStdout();
  }
};

TEST_F(PromptTest, showsValuesAndGoesOnAfterAnError) {
  EXPECT_EQ(enter("1 + 1\n\nx = 5\nx, 'y'\n"), "2\n5\ty\n");
  EXPECT_EQ(enter("Cat().Colour\n'still here'\n"), "still here\n");
  EXPECT_NE(takeErrors().find("NoSuchMember"), std::string::npos);
  EXPECT_EQ(enter("x ==\n"), "") << "the entry is not complete yet";
  EXPECT_EQ(enter(")\n7\n"), "7\n");
  EXPECT_NE(takeErrors().find("prompt:1:"), std::string::npos);
}

TEST_F(PromptTest, takesEntriesOfSeveralLines) {
  EXPECT_EQ(enter("for i = 1, 2 do\n  print(i)\nend\n"), "1\n2\n");
  EXPECT_EQ(enter("function f()\n", false), "");
  EXPECT_NE(takeErrors().find("in the middle of an entry"), std::string::npos);
}

TEST_F(PromptTest, showsValuesOnlyAsAScriptLetsIt) {
  EXPECT_EQ(enter("setmetatable(_G, {__index = function(_, name) error('undefined ' .. name) end}) print = nil\n"), "");
  takeErrors();
  EXPECT_EQ(enter("1\n"), "");
  EXPECT_NE(takeErrors().find("undefined print"), std::string::npos);
}

TEST_F(PromptTest, givesUpAnEntryAndRemembersEachBeforeItRuns) {
  class Typist final : public LineSource {
   public:
    Input readLine(char const*, std::string& line) override {
      if (m_next == lines.size()) return Input::End;
      line = lines[m_next++];
      return line == "^C" ? Input::Interrupted : Input::Line;
    }
    void remember(std::string const& entry) override { remembered.push_back(entry); }

    std::vector<std::string> lines;
    std::vector<std::string> remembered;

   private:
    std::size_t m_next = 0;
  } typist;
  typist.lines = {"for i = 1, 2 do", "^C", "^C", "x = 1", "function f()", "end", "x = = 2"};
  EXPECT_TRUE(runPrompt(*m_interpreter, typist));
  EXPECT_EQ(typist.remembered, (std::vector<std::string>{"x = 1", "function f()\nend", "x = = 2"}));
  run("assert(x == 1)");
}

TEST_F(PromptTest, completesPackagesClassesAndMembers) {
  run("cat = Cat() text = 'x'");
  lua_State* const state = m_interpreter->state();
  using Names = std::vector<std::string>;
  EXPECT_EQ(completions(state, "x = zo"), Names{"zoo"});
  EXPECT_EQ(completions(state, "zoo.residents."),
            (Names{"zoo.residents.Animal", "zoo.residents.Cat", "zoo.residents.Diet", "zoo.residents.Herd",
                   "zoo.residents.Place"}))
      << "the hidden class is left out";
  EXPECT_EQ(completions(state, "print(cat.We"), Names{"cat.Weight"});
  EXPECT_EQ(completions(state, "cat:f"), Names{"cat:feed"});
  EXPECT_EQ(completions(state, "cat:We"), Names{});
  EXPECT_EQ(completions(state, "zoo.residents.Diet.ME"), Names{"zoo.residents.Diet.MEAT"});
  EXPECT_EQ(completions(state, "cat.Diet:upp"), Names{"cat.Diet:upper"});
  EXPECT_EQ(completions(state, "string.for"), Names{"string.format"});
  EXPECT_EQ(completions(state, "whi"), Names{"while"});
  EXPECT_EQ(completions(state, "nothing.here.at.all"), Names{});
  EXPECT_EQ(lua_gettop(state), 0);
}

}  // namespace
}  // namespace luafront
