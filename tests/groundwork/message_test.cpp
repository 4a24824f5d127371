// Message records and the exceptions that carry them.
#include "groundwork/Message.hpp"

#include <gtest/gtest.h>

#include "groundwork/Except.hpp"

namespace groundwork {
namespace {

std::vector<MessageArgument> elevenArguments() {
  std::vector<MessageArgument> arguments;
  for (std::int64_t i = 0; i < 11; ++i) arguments.emplace_back(i);
  return arguments;
}

TEST(MessageFormat, putsEveryKindOfArgumentForItsPlaceholderWhereverItStands) {
  std::vector<MessageArgument> const arguments = {std::int64_t{-7}, std::string("narrow \xC3\xA9"), u"wide \u00E9 {0}"};
  EXPECT_EQ(formatMessage("{2}, {1}, {0}, {0}", arguments), "wide \xC3\xA9 {0}, narrow \xC3\xA9, -7, -7");
  EXPECT_EQ(formatMessage("{0}", arguments), "-7");
  EXPECT_EQ(formatMessage("", arguments), "");
}

TEST(MessageFormat, leavesWhatIsNoPlaceholderOrHasNoArgumentAsItStands) {
  for (char const* pattern : {"{1}", "{9}", "{", "{0", "{}", "{a}", "}0{", "{-1}", "{0 }"})
    EXPECT_EQ(formatMessage(pattern, {std::string("x")}), pattern);
  EXPECT_EQ(formatMessage("{{0}}", {std::string("x")}), "{x}");
  EXPECT_EQ(formatMessage("{0}", {}), "{0}");
}

TEST(MessageFormat, reachesTenArgumentsAndNoMore) {
  EXPECT_EQ(formatMessage("{9}", elevenArguments()), "9");
  // The character behind '9' is no digit.
  EXPECT_EQ(formatMessage("{10} {:}", elevenArguments()), "{10} {:}");
}

struct Refusal : MessageRecord {};

TEST(MessageException, isTheSameAfterACloneIsThrownAgain) {
  except::Exception<Refusal, std::exception> original({{{std::int64_t{4}}, "catalogue", "Refusal"}}, "Refusal: 4");
  original.get_error_id() = {"catalogue", "Refusal"};
  std::unique_ptr<except::IMsgIDException> const clone = original.clone();
  try {
    clone->rethrow();
  } catch (except::Exception<Refusal, std::exception> const& error) {
    EXPECT_STREQ(error.what(), "Refusal: 4");
    EXPECT_EQ(error.GetID(), "catalogue:Refusal");
    EXPECT_EQ(std::get<std::int64_t>(error.GetBaseMsgIDObj().arguments.at(0)), 4);
  }
  EXPECT_THROW(clone->rethrow(), std::exception);
}

}  // namespace
}  // namespace groundwork
