#include "modelgen/naming.hpp"

#include <gtest/gtest.h>

#include "modelgen/Text.hpp"

namespace modelgen::naming {
namespace {

TEST(Naming, PropertiesBecomeLowerCamelAndStepAsideForReservedWords) {
  EXPECT_EQ(lowerCamel("ExprType"), "exprType");
  for (char const* const word : {"Operator", "Import", "Export", "Static", "Default", "Class", "Xor", "Requires"}) {
    std::string const accessor = lowerCamel(word);
    EXPECT_EQ(accessor.back(), '_') << word;
    EXPECT_FALSE(isReservedWord(accessor)) << word;
  }
  // Only the bare name can clash.
  EXPECT_EQ(field("Operator"), "m_operator");
  EXPECT_EQ(getter("Operator"), "getOperator");
}

TEST(Naming, FormsOfNamesAreTold) {
  EXPECT_TRUE(isUpperCamel("A1b") && isUpperCamel("URL"));
  EXPECT_FALSE(isUpperCamel("") || isUpperCamel("a") || isUpperCamel("A_b") || isUpperCamel("1A") ||
               isUpperCamel("\xc3\x89tat"));
  EXPECT_TRUE(isUpperSnake("NOT_EQ") && isUpperSnake("A1_2"));
  EXPECT_FALSE(isUpperSnake("_A") || isUpperSnake("A_") || isUpperSnake("A__B") || isUpperSnake("Eq") ||
               isUpperSnake("1A") || isUpperSnake(""));
  EXPECT_TRUE(isPackageName("tessel.internal.ext") && isPackageName("a1"));
  EXPECT_FALSE(isPackageName("") || isPackageName("a..b") || isPackageName(".a") || isPackageName("a.") ||
               isPackageName("a_b") || isPackageName("a.new") || isPackageName("A"));
  EXPECT_TRUE(isRelease("Ed0417c") && isRelease(".001") && isRelease("R1-rc_2"));
  EXPECT_FALSE(isRelease("R1\"") || isRelease("R1\n") || isRelease("R 1") || isRelease("R/1"));
}

TEST(Naming, PackagesKeepClearOfTheNamespacesThatGeneratedCodeMeans) {
  for (char const* const package : {"plinth", "tessel.std", "a.boost.b", "tessel.inner.tessel", "tessel.frame"}) {
    EXPECT_NE(hidingComponent(package), "") << package;
  }
  for (char const* const package : {"tessel.internal.ext", "vellum.internal.form.model", "a.stdlib"}) {
    EXPECT_EQ(hidingComponent(package), "") << package;
  }
}

TEST(Naming, NamespacesFilesAndFunctionsFollowThePackage) {
  EXPECT_EQ(cppNamespace("tessel.internal.ext"), "tessel::internal::ext");
  EXPECT_EQ(instantiateFunction("tessel.internal.ext"), "instantiate_tessel_internal_ext");
  EXPECT_EQ(weaveFunction("tessel"), "weave_tessel");
  EXPECT_EQ(metaPackageClass("tessel_config_datamodel"), "MetaPackageTessel_config_datamodel");
  EXPECT_EQ(initializeEntryPoint("m"), "MLInitialize_m");
}

TEST(Naming, SlotsOfDifferentThingsDiffer) {
  Package package;
  package.folder = "a";
  EXPECT_EQ(memberSlot(package, "Operator", "NOT_EQ"), "a_Operator_NOT_EQ");
  EXPECT_NE(typeSlot(package, "B"), packageSlot("a.b"));
  EXPECT_NE(packageSlot("root"), packageSlot(""));
}

TEST(Text, BecomesALiteralOfAnyEncodingAndLinesOfAnyWidth) {
  EXPECT_EQ(utf16Literal(""), "u\"\"");
  EXPECT_EQ(utf16Literal("a\"\\\n\x01"), "u\"a\\\"\\\\\\n\\001\"");
  EXPECT_EQ(utf16Literal("\xc3\xa9\xf0\x9f\x98\x80"), "u\"\\u00e9\\U0001f600\"");
  EXPECT_EQ(wrap("one two\nthree\n\nfour", 7), (std::vector<std::string>{"one two", "three", "", "four"}));
  EXPECT_EQ(wrap("unbreakable", 3), (std::vector<std::string>{"unbreakable"}));
}

TEST(Text, IsWellFormedUpToItsFirstBadByte) {
  auto const isGood = [](std::string const& text) { return firstBadCharacter(text) == text.size(); };
  EXPECT_TRUE(isGood("") && isGood("a\tb\r\n") && isGood("\xc3\xa9\xed\x9f\xbf\xf0\x9f\x98\x80\xf4\x8f\xbf\xbf"));
  EXPECT_EQ(firstBadCharacter("ab\xff"), 2U);
  EXPECT_EQ(firstBadCharacter("ab\x01"), 2U);
  EXPECT_EQ(firstBadCharacter(std::string("a\0b", 3)), 1U);
  for (char const* const text : {"\x80", "\xc3", "\xc0\x80", "\xe0\x80\x80", "\xed\xa0\x80", "\xf0\x80\x80\x80",
                                 "\xf4\x90\x80\x80", "\xe2\x82", "\xc3("}) {
    EXPECT_FALSE(isGood(text)) << text;
  }
}

TEST(Naming, ANamespacesOwnNamesAreShortInsideItOnly) {
  EXPECT_EQ(shortenOwnNames("a::b::X x;\n"
                            "namespace a::b {\n"
                            "class Y : public a::b::X<a::b::Z, a::c::W, ::a::b::V, aa::b::U> {};\n"
                            "namespace {\n}  // namespace\n"
                            "a::b::X f();\n"
                            "}  // namespace a::b\n"
                            "a::b::X y;\n"),
            "a::b::X x;\n"
            "namespace a::b {\n"
            "class Y : public X<Z, a::c::W, ::a::b::V, aa::b::U> {};\n"
            "namespace {\n}  // namespace\n"
            "X f();\n"
            "}  // namespace a::b\n"
            "a::b::X y;\n");
}

TEST(Naming, IncludesAreSortedInEachRunAndNamedOnce) {
  EXPECT_EQ(sortRuns("#include \"own.hpp\"\n\n#include <b>\n#include <a/z>\n#include <b>\n\n#include <a/c>\nint x;\n"),
            "#include \"own.hpp\"\n\n#include <a/z>\n#include <b>\n\n#include <a/c>\nint x;\n");
}

TEST(Naming, BlankLinesThatPartNothingGo) {
  EXPECT_EQ(dropNeedlessBlankLines("\na\n\n\nb {\n public:\n\n  c\n\n private:\n}\n"),
            "a\n\nb {\n public:\n  c\n\n private:\n}\n");
}

}  // namespace
}  // namespace modelgen::naming
