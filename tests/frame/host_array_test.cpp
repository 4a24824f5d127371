// The text of host arrays, which fingerprints compare.
#include <gtest/gtest.h>

#include <limits>
#include <tessel_config_datamodel/frame/HostArrayText.hpp>
#include <tessel_config_datamodel/runtime/ProductionState.hpp>

#include "plinth/diagnostics/Fingerprint.hpp"
#include "plinth/sample_model.hpp"

using tessel::frame::hostArrayText;

namespace {

std::string textOf(kestrel::OwnedArray const& array) { return hostArrayText(array.get()); }

TEST(HostArrayText, TellsClassDimensionsAndContents) {
  double const nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(hostArrayText(nullptr), "none");
  EXPECT_EQ(textOf(kestrel::createScalar(0.1)), "double{0.1}");
  EXPECT_EQ(textOf(kestrel::createScalar(0.1F)), "single{0.1}");
  EXPECT_EQ(textOf(kestrel::createScalar(true)), "logical{true}");
  EXPECT_EQ(textOf(kestrel::createScalar<std::int8_t>(-128)), "int8{-128}");
  EXPECT_EQ(textOf(kestrel::createScalar(std::numeric_limits<std::uint64_t>::max())), "uint64{18446744073709551615}");
  EXPECT_EQ(textOf(kestrel::createRow<double>({1, nan})), "double[1,2]{1, nan}");
  EXPECT_EQ(textOf(kestrel::createEmpty(kestrel::ClassId::Int32)), "int32[0,0]{}");
  EXPECT_EQ(textOf(kestrel::createChar(u"a\"b")), "char[1,3]{\"a\\\"b\"}");
  auto strings = kestrel::createStrings(kestrel::row(2));
  kestrel::setStringElement(*strings, 0, u"missing");
  EXPECT_EQ(textOf(strings), "string[1,2]{\"missing\", missing}");
  EXPECT_EQ(textOf(kestrel::createBuiltInBased(kestrel::intern("a.Mode"), kestrel::createScalar<std::int32_t>(2))),
            "a.Mode:int32{2}");
}

TEST(HostArrayText, TellsWhatLiesInside) {
  auto structure = kestrel::createStruct({"A", "B"});
  kestrel::setField(*structure, 0, "A", kestrel::createScalar(1.0));
  EXPECT_EQ(textOf(structure), "struct{A: double{1}, B: none}");
  auto cells = kestrel::createCell({2, 1});
  kestrel::setCell(*cells, 1, std::move(structure));
  EXPECT_EQ(textOf(cells), "cell[2,1]{none, struct{A: double{1}, B: none}}");
  EXPECT_EQ(textOf(kestrel::createStruct({"A"}, kestrel::row(2))), "struct[1,2]{{A: none}, {A: none}}");
  kestrel::OwnedArray nest = kestrel::createScalar(true);
  for (int depth = 0; depth < 100000; ++depth) {
    kestrel::OwnedArray outer = depth % 2 == 0 ? kestrel::createCell(kestrel::SCALAR) : kestrel::createStruct({"a"});
    depth % 2 == 0 ? kestrel::setCell(*outer, 0, std::move(nest)) : kestrel::setField(*outer, 0, "a", std::move(nest));
    nest = std::move(outer);
  }
  EXPECT_EQ(textOf(nest).substr(0, 27), "struct{a: cell{struct{a: ce");
}

TEST(HostArrayText, LetsAFingerprintTellArraysOfOneSizeApart) {
  auto const model = plinth::Model::create();
  auto const production = sample::runtime::ProductionState::create(model);
  production->setProduction(kestrel::createScalar(1.0).get());
  auto const before = plinth::Fingerprint::of(model);
  production->setProduction(kestrel::createScalar(2.0).get());
  auto const difference = diff(before, plinth::Fingerprint::of(model));
  ASSERT_TRUE(difference);
  EXPECT_NE(difference->text().find("double{2}"), std::string::npos) << difference->text();
}

}  // namespace
