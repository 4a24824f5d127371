// Where long lines of generated code break.
#include <gtest/gtest.h>

#include "modelgen/LineFolding.hpp"

namespace modelgen {
namespace {

TEST(LongLines, GoOnBelowTheFirstThingInTheBracketOrBehindIt) {
  EXPECT_EQ(foldLongLines("  call(first, second(third, fourth));\n", 30),
            "  call(first,\n       second(third, fourth));\n");
  EXPECT_EQ(foldLongLines("  {first, second, third, fourth},\n", 30), "  {first, second, third,\n   fourth},\n");
  EXPECT_EQ(foldLongLines("  aLongCall(first, secondOf(third, fourth));\n", 31),
            "  aLongCall(\n      first,\n      secondOf(third, fourth));\n");
  EXPECT_EQ(foldLongLines("  Type<X> name = call<Y>(*this, 8);\n", 30), "  Type<X> name =\n      call<Y>(*this, 8);\n");
  EXPECT_EQ(foldLongLines("bool operator<(A const& a, B const& b);\n", 30),
            "bool operator<(A const& a,\n               B const& b);\n");
}

TEST(LongLines, PutTheNameBelowALongTypeAndWhatFollowsBelowAShorterOne) {
  EXPECT_EQ(foldLongLines("a::Map<Key, Value> const& A::f() {\n", 30), "a::Map<Key, Value> const&\nA::f() {\n");
  EXPECT_EQ(foldLongLines("  a::Map<LongKey, LongValue> const& f();\n", 26),
            "  a::Map<LongKey,\n         LongValue> const&\n  f();\n");
  EXPECT_EQ(foldLongLines("Map<Key, Value>* A::valuesOf() const {\n", 30),
            "Map<Key, Value>* A::valuesOf()\n    const {\n");
}

TEST(LongLines, BreakBeforeBasesAndInitializers) {
  EXPECT_EQ(foldLongLines("class Long final : public Base<Long> {\n", 30),
            "class Long final\n    : public Base<Long> {\n");
  EXPECT_EQ(foldLongLines("class Long : public BaseOf<First> {\n", 20),
            "class Long\n    : public BaseOf<\n          First> {\n");
  EXPECT_EQ(foldLongLines("class Long : public Base<First, Second<Third>> {\n", 34),
            "class Long\n    : public Base<First,\n                  Second<Third>> {\n");
  EXPECT_EQ(foldLongLines("class Long : public Base<First, Second<Third>> {\n", 33),
            "class Long\n    : public Base<\n          First, Second<Third>> {\n");
  EXPECT_EQ(foldLongLines("Long(int a, int b) : m_a(a), m_b(b) {}\n", 30),
            "Long(int a, int b)\n    : m_a(a), m_b(b) {}\n");
  EXPECT_EQ(foldLongLines("Long(int a, int b) : m_first(a), m_second(b) {}\n", 30),
            "Long(int a, int b)\n    : m_first(a),\n      m_second(b) {}\n");
}

TEST(LongLines, BodyOfAFunctionMovesBelowItsHead) {
  EXPECT_EQ(foldLongLines("  int f(int a) const { return a; }\n", 30), "  int f(int a) const {\n    return a;\n  }\n");
  EXPECT_EQ(foldLongLines("  void f(int a) override { g(a); }\n", 30), "  void f(int a) override {\n    g(a);\n  }\n");
}

TEST(LongLines, CommentsBreakAtSpacesAndGoOnAsComments) {
  EXPECT_EQ(foldLongLines("  /// one two three four five six\n", 20), "  /// one two three\n  /// four five six\n");
}

TEST(LongLines, WhatHasNoPlaceToBreakStaysAndShortLinesAreLeftAlone) {
  for (char const* const line :
       {"#include <a/very/long/path/of/a/header.hpp>\n", "x = u\"a, \\\", b(c, d), e, f, g\";\n",
        "}  // one, two, three, four\n", "anIdentifierThatIsLongerThanAllLinesMayBe;\n", "f(a, b);\n", "\n"}) {
    EXPECT_EQ(foldLongLines(line, 20), line);
  }
}

}  // namespace
}  // namespace modelgen
