// Conversion between UTF-8 and UTF-16: whole texts survive, what is malformed is left out and spoils nothing beside it.
#include "groundwork/Unicode.hpp"

#include <gtest/gtest.h>

namespace groundwork {
namespace {

using namespace std::string_literals;

TEST(TextConversion, keepsTextsOfEveryLengthOfSequence) {
  struct {
    std::u16string wide;
    std::string narrow;
  } const pairs[] = {{u"", ""},
                     {u"a\0b"s, "a\0b"s},
                     {u"\u007F\u0080\u07FF", "\x7F\xC2\x80\xDF\xBF"},
                     {u"\u0800\uFFFD\uFFFF", "\xE0\xA0\x80\xEF\xBF\xBD\xEF\xBF\xBF"},
                     {u"\U00010000\U0010FFFF", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"}};
  for (auto const& pair : pairs) {
    EXPECT_EQ(toUtf8(pair.wide), pair.narrow);
    EXPECT_EQ(toUtf16(pair.narrow), pair.wide);
  }
}

TEST(TextConversion, leavesMalformedUtf8Out) {
  for (std::string const& malformed : {"\x80"s, "\xBF\xBF"s,        // continuation without a beginning
                                       "\xFF"s, "\xFE"s,            // no beginning at all
                                       "\xC0\x80"s, "\xC1\xBF"s,    // longer than it has to be
                                       "\xE0\x80\x80"s,             // the same with three bytes
                                       "\xED\xA0\x80"s,             // a surrogate
                                       "\xF4\x90\x80\x80"s,         // beyond the last code point
                                       "\xF8\x88\x80\x80\x80"s}) {  // five bytes
    EXPECT_EQ(toUtf16("a" + malformed + "b"), u"ab") << malformed;
    EXPECT_EQ(toUtf16(malformed), u"") << malformed;
  }
  for (std::string const& cutOff : {"\xC3"s, "\xE2\x82"s, "\xF0\x9F\x98"s}) {
    EXPECT_EQ(toUtf16("a" + cutOff), u"a");
    EXPECT_EQ(toUtf16("a" + cutOff + "b"), u"ab");
    EXPECT_EQ(toUtf16(cutOff + "\xC3\xA9"), u"\u00E9");
  }
}

TEST(TextConversion, leavesLoneSurrogatesOut) {
  EXPECT_EQ(toUtf8(u"a\xD83D"s + u"b"), "ab");
  EXPECT_EQ(toUtf8(u"a\xDE00"s + u"b"), "ab");
  EXPECT_EQ(toUtf8(u"a\xD83D"s), "a");
  EXPECT_EQ(toUtf8(u"\xD83D\U0001F600"s), "\xF0\x9F\x98\x80");
  EXPECT_EQ(toUtf8(u"\xDE00\xD83D"s), "");
}

}  // namespace
}  // namespace groundwork
