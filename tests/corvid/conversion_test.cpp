// Data types by name, what conforms to them, and what the host converts without losing anything.
#include <cmath>
#include <limits>

#include "corvid/CorvidTypeRepository.hpp"
#include "corvid/factory/StringDataTypes.hpp"
#include "host_fixture.hpp"

namespace corvid {
namespace {

using internal::makeInterned;

class Conversions : public HostTest {
 protected:
  // What a value becomes as a type; null with the error's identifier in m_error when it is refused.
  kestrel::OwnedArray coerce(char const* type, kestrel::OwnedArray const& value) {
    kestrel::OwnedArray result;
    m_error = errorOf([&] {
      kestrel::OwnedArray made;
      result = kestrel::deepCopy(&CorvidTypeRepository::coerce(makeInterned(type), *value, made));
    });
    return result;
  }
  bool becomes(char const* type, kestrel::OwnedArray const& value, kestrel::OwnedArray const& expected) {
    kestrel::OwnedArray const result = coerce(type, value);
    return result != nullptr && kestrel::equalContents(result.get(), expected.get());
  }

  std::string m_error;
};

TEST_F(Conversions, betweenNumbersKeepEveryNumberOrAreRefused) {
  EXPECT_TRUE(becomes("double scalar", kestrel::createScalar<std::int64_t>(3), kestrel::createScalar(3.0)));
  EXPECT_TRUE(becomes("uint8 scalar", kestrel::createScalar(255.0), kestrel::createScalar<std::uint8_t>(255)));
  EXPECT_TRUE(becomes("single scalar", kestrel::createScalar(0.1), kestrel::createScalar(0.1F)));
  EXPECT_TRUE(becomes("logical scalar", kestrel::createScalar<std::int8_t>(-2), kestrel::createScalar(true)));
  EXPECT_TRUE(becomes("int64 scalar", kestrel::createScalar(true), kestrel::createScalar<std::int64_t>(1)));
  EXPECT_TRUE(becomes("double vector", kestrel::createRow<std::uint8_t>({1, 2}), kestrel::createRow<double>({1, 2})));
  EXPECT_TRUE(becomes("double vector", kestrel::createEmpty(kestrel::ClassId::Cell),
                      kestrel::createEmpty(kestrel::ClassId::Double)));

  double const infinity = std::numeric_limits<double>::infinity();
  double const none = std::numeric_limits<double>::quiet_NaN();
  for (double const number : {256.0, -1.0, 0.5, infinity, -infinity, none}) {
    EXPECT_EQ(coerce("uint8 scalar", kestrel::createScalar(number)), nullptr) << number;
    EXPECT_EQ(m_error, "Kestrel:class:ValueOutOfRange") << number;
  }
  EXPECT_EQ(coerce("int64 scalar", kestrel::createScalar(9223372036854775808.0)), nullptr);
  EXPECT_EQ(coerce("int64 scalar", kestrel::createScalar(std::numeric_limits<std::uint64_t>::max())), nullptr);
  EXPECT_EQ(coerce("uint64 scalar", kestrel::createScalar<std::int32_t>(-1)), nullptr);
  EXPECT_EQ(coerce("uint8 vector", kestrel::createRow<double>({1, 256})), nullptr);
  EXPECT_EQ(coerce("logical scalar", kestrel::createScalar(none)), nullptr);
  EXPECT_EQ(m_error, "Kestrel:class:ValueOutOfRange");
}

TEST_F(Conversions, ofIntegersToFloatingNumbersKeepEveryDigitOrAreRefused) {
  constexpr auto least = std::numeric_limits<std::int64_t>::min();
  constexpr std::uint64_t half = std::uint64_t{1} << 63;
  EXPECT_TRUE(becomes("double scalar", kestrel::createScalar(least), kestrel::createScalar(-std::ldexp(1.0, 63))));
  EXPECT_TRUE(becomes("double scalar", kestrel::createScalar(half), kestrel::createScalar(std::ldexp(1.0, 63))));
  EXPECT_TRUE(
      becomes("single scalar", kestrel::createScalar<std::int32_t>(16777216), kestrel::createScalar(16777216.F)));
  for (std::int64_t const number : {std::int64_t{9007199254740993}, std::numeric_limits<std::int64_t>::max()})
    EXPECT_EQ(coerce("double scalar", kestrel::createScalar(number)), nullptr) << number;
  EXPECT_EQ(coerce("double scalar", kestrel::createScalar(std::numeric_limits<std::uint64_t>::max())), nullptr);
  EXPECT_EQ(coerce("single vector", kestrel::createRow<std::int32_t>({1, 16777217})), nullptr);
  EXPECT_EQ(coerce("single scalar", kestrel::createScalar(1e300)), nullptr) << "no number becomes infinite";
}

TEST_F(Conversions, thatFailNameTheValueAndItsPlace) {
  factory::detail::initStringDataTypes();
  auto const sentence = [](char const* type, kestrel::OwnedArray const& value) {
    try {
      kestrel::OwnedArray made;
      CorvidTypeRepository::coerce(makeInterned(type), *value, made);
    } catch (HostError const& error) {
      return std::string(error.what());
    }
    return std::string();
  };
  EXPECT_EQ(sentence("uint8 vector", kestrel::createRow<double>({1, 2, 256})),
            "ValueOutOfRange: Expected an integer from 0 to 255, not 256 (element 3).");
  // Whatever is wanted and whatever is given, the words are those of scripts.
  struct Given {
    kestrel::OwnedArray value;
    std::string words;
  };
  Given given[] = {{kestrel::createEmpty(kestrel::ClassId::Double), "nil"},
                   {kestrel::createScalar(2.5), "the number 2.5"},
                   {kestrel::createScalar(true), "true"},
                   {kestrel::createRow<std::int64_t>({1, 2}), "a list of 2 numbers"},
                   {kestrel::createNumeric<float>(kestrel::Dimensions{2, 3}), "an array of 2 by 3 numbers"},
                   {kestrel::createEmpty(kestrel::ClassId::String), "an empty list of strings"},
                   {kestrel::createEmpty(kestrel::ClassId::Cell), "an empty list"},
                   {kestrel::createCell(kestrel::row(1)), "a list of one value"},
                   {kestrel::createStruct({}), "an empty table"},
                   {kestrel::createStruct({"a"}), "a table with names"},
                   {kestrel::createObjects(makeInterned("zoo.residents.Cat"), kestrel::row(2)),
                    "a list of 2 objects of the class 'zoo.residents.Cat'"},
                   {kestrel::createChar(std::u16string(300, u'a')), "the string '" + std::string(60, 'a') + "...'"}};
  std::pair<char const*, char const*> const wanted[] = {
      {"function", "a function"},
      {"zoo.residents.Diet scalar", "one of 'PLANTS', 'MEAT', 'EVERYTHING'"},
      {"zoo.residents.Place scalar", "an object of the class 'zoo.residents.Place'"}};
  for (auto const& [type, words] : wanted)
    for (Given const& each : given)
      EXPECT_EQ(sentence(type, each.value), std::string("WrongType: Expected ") + words + ", not " + each.words + ".");
  EXPECT_EQ(sentence("double vector", kestrel::createChar(u"x")),
            "WrongType: Expected a list of numbers, not the string 'x'.");
}

TEST_F(Conversions, ofShapesAndClassesThatDoNotFitAreRefused) {
  factory::detail::initStringDataTypes();
  auto const member =
      kestrel::createBuiltInBased(makeInterned("zoo.residents.Diet"), kestrel::createScalar<std::int32_t>(1));
  struct Row {
    char const* type;
    kestrel::OwnedArray value;
  };
  Row const rows[] = {{"double scalar", kestrel::createRow<double>({1, 2})},
                      {"double vector", kestrel::createNumeric<double>({2, 2})},
                      {"double scalar", kestrel::createChar(u"1")},
                      {"double scalar", kestrel::deepCopy(member.get())},
                      {"zoo.residents.Diet scalar", kestrel::createScalar(1.0)},
                      {"zoo.residents.Diet scalar", kestrel::createEmpty(kestrel::ClassId::Int32)},
                      {"char", kestrel::createScalar(1.0)},
                      {"struct scalar", kestrel::createStruct({}, kestrel::row(2))},
                      {"CorvidFactoryString scalar", kestrel::createStringRow({u"a", u"b"})},
                      {"CorvidFactoryString vector", kestrel::createStrings(kestrel::SCALAR)},
                      {"CorvidFactoryString vector", kestrel::createCell(kestrel::SCALAR)},
                      {"function", kestrel::createScalar(1.0)}};
  for (Row const& row : rows) {
    EXPECT_EQ(coerce(row.type, row.value), nullptr) << row.type;
    EXPECT_EQ(m_error, "Kestrel:class:WrongType") << row.type;
  }
}

TEST_F(Conversions, ofTextAreMadeBetweenCharStringAndCells) {
  factory::detail::initStringDataTypes();
  kestrel::OwnedArray const text = kestrel::createChar(u"text");
  kestrel::OwnedArray const string = kestrel::createString(u"text");
  EXPECT_TRUE(becomes("char", string, text));
  EXPECT_TRUE(becomes("string scalar", text, string));
  EXPECT_TRUE(becomes("CorvidFactoryString scalar", text, text));
  EXPECT_TRUE(becomes("CorvidFactoryString scalar", string, string));
  EXPECT_TRUE(becomes("CorvidFactoryString vector", text, string));
  kestrel::OwnedArray cells = kestrel::createCell(kestrel::row(2));
  kestrel::setCell(*cells, 0, kestrel::createChar(u"a"));
  kestrel::setCell(*cells, 1, kestrel::createString(u"b"));
  EXPECT_TRUE(becomes("CorvidFactoryString vector", cells, kestrel::createStringRow({u"a", u"b"})));
  EXPECT_TRUE(becomes("CorvidFactoryString vector", kestrel::createEmpty(kestrel::ClassId::Double),
                      kestrel::createEmpty(kestrel::ClassId::String)));
}

TEST_F(Conversions, fromAnyAreRegisteredOnceAndGivenBack) {
  classNamed("zoo.residents.Diet");
  std::string const target = "zoo.residents.Diet scalar";
  CorvidTypeConverter* const known = CorvidTypeRepository::getConversion("any", target);
  ASSERT_NE(known, nullptr);
  EXPECT_EQ(errorOf([&] { CorvidTypeRepository::addConversion("any", target, nullptr); }),
            "Kestrel:class:DuplicateName");
  std::unique_ptr<CorvidTypeConverter> const removed = CorvidTypeRepository::removeConversion("any", target);
  EXPECT_EQ(removed.get(), known);
  EXPECT_EQ(CorvidTypeRepository::removeConversion("any", target), nullptr);
  EXPECT_EQ(coerce("zoo.residents.Diet scalar", kestrel::createChar(u"MEAT")), nullptr);
  EXPECT_NE(coerce("zoo.residents.Diet property", kestrel::createChar(u"MEAT")), nullptr);
}

TEST_F(Conversions, ofTheStringTypeNeedItToBeKnownFirst) {
  Identifier const type = makeInterned("CorvidFactoryString scalar");
  EXPECT_EQ(errorOf([&] { CorvidTypeRepository::requireType(type); }), "Kestrel:class:NoSuchType");
  factory::detail::initStringDataTypes();
  EXPECT_EQ(errorOf([&] { CorvidTypeRepository::requireType(type); }), "none");
  EXPECT_EQ(errorOf([&] { CorvidTypeRepository::requireType(makeInterned("double cube")); }),
            "Kestrel:class:NoSuchType");
}

}  // namespace
}  // namespace corvid
