// Numeric host arrays: blocks of elements of every C++ type, and conversion between the numeric classes.
#include <gtest/gtest.h>

#include <limits>

#include "kestrel/Array.hpp"
#include "kestrel/NumericArray.hpp"

namespace kestrel {
namespace {

template <class T>
class NumericArray : public ::testing::Test {};

using ElementTypes = ::testing::Types<bool, double, float, std::int8_t, std::uint8_t, std::int16_t, std::uint16_t,
                                      std::int32_t, std::uint32_t, std::int64_t, std::uint64_t>;
TYPED_TEST_SUITE(NumericArray, ElementTypes, );

TYPED_TEST(NumericArray, keepsTheLimitsOfItsTypeInScalarsAndInLongRows) {
  using Limits = std::numeric_limits<TypeParam>;
  EXPECT_EQ(element<TypeParam>(*createScalar<TypeParam>(Limits::max())), Limits::max());

  OwnedArray const array = createNumeric<TypeParam>({2, 50});
  EXPECT_TRUE(isNumeric(*array));
  EXPECT_EQ(element<TypeParam>(*array, 99), TypeParam(0));
  mutableData<TypeParam>(*array)[99] = Limits::lowest();
  EXPECT_EQ(element<TypeParam>(*deepCopy(array.get()), 99), Limits::lowest());

  OwnedArray const copied = createRow<TypeParam>(data<TypeParam>(*array), 100);
  EXPECT_EQ(dimensions(*copied), row(100));
  EXPECT_EQ(element<TypeParam>(*copied, 99), Limits::lowest());
  EXPECT_EQ(dimensions(*createRow<TypeParam>(nullptr, 0)), EMPTY);
}

TYPED_TEST(NumericArray, smallNumbersSurviveConversionToEveryOtherClass) {
  OwnedArray const one = createScalar<TypeParam>(1);
  for (auto id = std::uint32_t(ClassId::Double); id <= std::uint32_t(ClassId::UInt64); ++id)
    EXPECT_EQ(elementAsDouble(*convertNumeric(*one, ClassId(id))), 1.0) << nameOf(ClassId(id));
  EXPECT_TRUE(element<bool>(*convertNumeric(*one, ClassId::Logical)));
}

TEST(NumericConversion, roundsAndClampsWhereTheTargetCannotHoldTheNumber) {
  double const infinity = std::numeric_limits<double>::infinity();
  double const none = std::numeric_limits<double>::quiet_NaN();
  OwnedArray const doubles = createRow<double>({2.5, -2.5, -1, 1e300, -infinity, none, 300});
  OwnedArray const bytes = convertNumeric(*doubles, ClassId::UInt8);
  std::uint8_t const* const byte = data<std::uint8_t>(*bytes);
  EXPECT_EQ(std::vector<int>(byte, byte + 7), (std::vector<int>{3, 0, 0, 255, 0, 0, 255}));
  OwnedArray const longs = convertNumeric(*doubles, ClassId::Int64);
  using Long = std::numeric_limits<std::int64_t>;
  EXPECT_EQ(std::vector<std::int64_t>(data<std::int64_t>(*longs), data<std::int64_t>(*longs) + 7),
            (std::vector<std::int64_t>{3, -3, -1, Long::max(), Long::min(), 0, 300}));

  auto const huge = createScalar(std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(element<std::int64_t>(*convertNumeric(*huge, ClassId::Int64)), Long::max());
  EXPECT_EQ(element<std::int8_t>(*convertNumeric(*createScalar<std::int32_t>(-1000), ClassId::Int8)), -128);
  EXPECT_EQ(element<std::uint64_t>(*convertNumeric(*createScalar<std::int8_t>(-1), ClassId::UInt64)), 0u);
}

TEST(NumericConversion, refusesWhatHasNoNumber) {
  EXPECT_THROW(convertNumeric(*createChar(u"1"), ClassId::Double), ArrayError);
  EXPECT_THROW(convertNumeric(*createScalar(1.0), ClassId::Char), ArrayError);
  EXPECT_THROW(convertNumeric(*createScalar(std::numeric_limits<double>::quiet_NaN()), ClassId::Logical), ArrayError);
  EXPECT_THROW(elementAsDouble(*createString(u"1")), ArrayError);
  EXPECT_THROW(elementAsDouble(*createNumeric<double>(EMPTY)), ArrayError);
}

}  // namespace
}  // namespace kestrel
