// Host arrays of every class: what is stored is read back, copies share nothing changeable, and nothing leaks.
#include "kestrel/Array.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <thread>

#include "kestrel/ArrayMemory.hpp"

namespace kestrel {
namespace {

// A handle-like or value-like object that counts its references and its instances.
class CountedObject final : public Object {
 public:
  CountedObject(int content, bool value) : m_content(content), m_value(value) { ++instances; }
  ~CountedObject() { --instances; }

  void addRef() noexcept override { ++m_references; }
  void release() noexcept override {
    if (--m_references == 0) delete this;
  }
  Identifier className() const noexcept override { return intern("zoo.Counted"); }
  ObjectRef copyForContainment() override {
    return m_value ? ObjectRef(new CountedObject(m_content, true)) : Object::copyForContainment();
  }
  bool equals(Object const& other) const override {
    return m_value ? m_content == static_cast<CountedObject const&>(other).m_content : Object::equals(other);
  }

  static int instances;

 private:
  int m_references = 0;
  int m_content;
  bool m_value;
};
int CountedObject::instances = 0;

class HostArray : public ::testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(liveArrayCount(), m_arraysBefore);
    EXPECT_EQ(CountedObject::instances, 0);
  }

 private:
  std::ptrdiff_t m_arraysBefore = liveArrayCount();
};

template <class Function>
std::string errorOf(Function&& function) {
  try {
    function();
  } catch (ArrayError const& error) {
    EXPECT_STRNE(error.what(), "");
    return error.identifier();
  }
  return "none";
}

OwnedArray everyClassInOneStruct() {
  OwnedArray array = createStruct({"number", "text", "names", "handle", "value", "cells", "member", "nothing"});
  setField(*array, 0, "number", createRow<double>({1, std::numeric_limits<double>::quiet_NaN(), 3}));
  setField(*array, 0, "text", createChar(u"a text that is too long to lie in the array itself"));
  OwnedArray names = createStringRow({u"one", u"", u"three"});
  setStringElement(*names, 1, std::nullopt);
  setField(*array, 0, "names", std::move(names));
  setField(*array, 0, "handle", createObject(new CountedObject(1, false)));
  setField(*array, 0, "value", createObject(new CountedObject(2, true)));
  OwnedArray cells = createCell(row(2));
  setCell(*cells, 1, createScalar<std::uint8_t>(7));
  setField(*array, 0, "cells", std::move(cells));
  setField(*array, 0, "member", createBuiltInBased(intern("zoo.Kind"), createScalar<std::int32_t>(3)));
  return array;
}

TEST_F(HostArray, everyClassKnowsItsIdentifierItsNameAndItsEmptyArray) {
  for (ClassId id : {ClassId::Cell, ClassId::Struct, ClassId::Logical, ClassId::Char, ClassId::String, ClassId::Double,
                     ClassId::Single, ClassId::Int8, ClassId::UInt8, ClassId::Int16, ClassId::UInt16, ClassId::Int32,
                     ClassId::UInt32, ClassId::Int64, ClassId::UInt64, ClassId::Object}) {
    OwnedArray const array = createEmpty(id);
    EXPECT_EQ(baseClass(*array), id);
    EXPECT_EQ(classIdentifier(*array), std::uint32_t(id));
    EXPECT_EQ(className(*array), nameOf(id));
    EXPECT_TRUE(isEmpty(*array));
    EXPECT_EQ(dimensions(*array), EMPTY);
    EXPECT_TRUE(equalContents(array.get(), deepCopy(array.get()).get()));
  }
  EXPECT_EQ(std::uint32_t(ClassId::Struct), 2u);
  EXPECT_EQ(std::uint32_t(ClassId::Char), 4u);
  OwnedArray const member = createBuiltInBased(intern("zoo.Kind"), createScalar<std::int32_t>(3));
  EXPECT_EQ(classIdentifier(*member), std::uint32_t(ClassId::Int32) | BUILT_IN_BASED_FLAG);
  EXPECT_EQ(className(*member).text(), "zoo.Kind");
  EXPECT_EQ(element<std::int32_t>(*member), 3);
}

TEST_F(HostArray, aDeepCopyIsEqualAndSharesNothingButHandles) {
  OwnedArray const original = everyClassInOneStruct();
  PropertyArray copy = copyForPropertyContainment(original.get());
  ASSERT_NE(copy, nullptr);
  EXPECT_TRUE(equalContents(original.get(), copy.get()));
  EXPECT_EQ(object(*field(*original, 0, "handle")), object(*field(*copy, 0, "handle")));
  EXPECT_NE(object(*field(*original, 0, "value")), object(*field(*copy, 0, "value")));
  EXPECT_NE(field(*original, 0, "number"), field(*copy, 0, "number"));
  EXPECT_EQ(field(*copy, 0, "nothing"), nullptr);

  setField(*copy, 0, "number", nullptr);
  EXPECT_FALSE(equalContents(original.get(), copy.get()));
  EXPECT_EQ(numberOfElements(*field(*original, 0, "number")), 3u);
  EXPECT_EQ(copyForPropertyContainment(nullptr), nullptr);
}

TEST_F(HostArray, nestedAtWhateverDepthAreCopiedComparedMeasuredAndFreed) {
  for (std::size_t const depth : {1000, 200000}) {
    OwnedArray nest = createRow<double>({1, 2, 3});
    for (std::size_t i = 0; i < depth; ++i) {
      OwnedArray outer = i % 2 == 0 ? createCell(row(2)) : createStruct({"a", "b"});
      i % 2 == 0 ? setCell(*outer, 1, std::move(nest)) : setField(*outer, 0, "b", std::move(nest));
      nest = std::move(outer);
    }
    OwnedArray const copy = deepCopy(nest.get());
    EXPECT_TRUE(equalContents(nest.get(), copy.get()));
    EXPECT_EQ(heldBytes(*nest), heldBytes(*copy));
    EXPECT_GT(heldBytes(*nest), depth * 2 * sizeof(OwnedArray));
  }
}

TEST_F(HostArray, fieldsGoFromAllElementsAndCellsFromTheEnd) {
  OwnedArray const structs = createStruct({"a", "b", "c"}, row(2));
  for (std::size_t i = 0; i < 2; ++i)
    for (char const* name : {"a", "b", "c"}) setField(*structs, i, name, createScalar<double>(10.0 * i + name[0]));
  removeField(*structs, "b");
  removeField(*structs, "none");
  EXPECT_EQ(fieldNames(*structs), (std::vector<std::string>{"a", "c"}));
  EXPECT_EQ(element<double>(*field(*structs, 1, "c")), 10 + 'c');
  OwnedArray const cells = createCell(row(2));
  setCell(*cells, 0, createScalar(true));
  for (std::size_t const count : {3, 1, 0}) {
    resizeCells(*cells, count);
    EXPECT_EQ(dimensions(*cells), row(count));
    EXPECT_TRUE(count == 0 || cell(*cells, 0) != nullptr);
  }
}

TEST_F(HostArray, equalitySeesClassDimensionsFieldsAndEveryElement) {
  auto const equal = [](OwnedArray const& left, OwnedArray const& right) {
    return equalContents(left.get(), right.get());
  };
  EXPECT_FALSE(equal(createScalar<std::int32_t>(3), createScalar<std::uint32_t>(3)));
  EXPECT_FALSE(
      equal(createScalar<std::int32_t>(3), createBuiltInBased(intern("zoo.Kind"), createScalar<std::int32_t>(3))));
  EXPECT_FALSE(equal(createNumeric<double>({1, 2}), createNumeric<double>({2, 1})));
  EXPECT_TRUE(equal(createScalar(0.0), createScalar(-0.0)));
  EXPECT_FALSE(equal(createChar(u"ab"), createString(u"ab")));
  EXPECT_FALSE(equal(createString(u""), createStrings(SCALAR)));
  EXPECT_TRUE(equal(createStrings(SCALAR), createStrings(SCALAR)));
  EXPECT_FALSE(equal(createStruct({"a", "b"}), createStruct({"b", "a"})));
  EXPECT_FALSE(equal(createScalar(1.0), nullptr));
  EXPECT_TRUE(equal(createObject(new CountedObject(5, true)), createObject(new CountedObject(5, true))));
  EXPECT_FALSE(equal(createObject(new CountedObject(5, false)), createObject(new CountedObject(5, false))));
}

TEST_F(HostArray, aFieldThatIsNewIsGivenToEveryElementAndKeepsTheOthers) {
  OwnedArray const array = createStruct({"first"}, row(2));
  setField(*array, 0, "first", createScalar(1.0));
  setField(*array, 1, "first", createScalar(2.0));
  setField(*array, 1, "second", createScalar(3.0));
  EXPECT_EQ(fieldNames(*array), (std::vector<std::string>{"first", "second"}));
  EXPECT_EQ(element<double>(*field(*array, 0, "first")), 1.0);
  EXPECT_EQ(element<double>(*field(*array, 1, "first")), 2.0);
  EXPECT_EQ(field(*array, 0, "second"), nullptr);
  EXPECT_EQ(element<double>(*field(*array, 1, "second")), 3.0);
  EXPECT_TRUE(hasField(*array, "second"));
  EXPECT_FALSE(hasField(*array, "third"));
}

TEST_F(HostArray, textIsReadFromAScalarOfEitherTextClass) {
  EXPECT_EQ(scalarText(*createChar(u"plain")), u"plain");
  EXPECT_EQ(scalarText(*createString(u"plain")), u"plain");
  EXPECT_EQ(scalarText(*createChar(u"")), u"");
  EXPECT_EQ(dimensions(*createChar(u"")), EMPTY);
  EXPECT_EQ(dimensions(*createChar(u"four")), row(4));
  EXPECT_EQ(errorOf([] { scalarText(*createStrings(SCALAR)); }), "Kestrel:array:NotOneText");
  EXPECT_EQ(errorOf([] { scalarText(*createStringRow({u"a", u"b"})); }), "Kestrel:array:NotOneText");
  EXPECT_EQ(errorOf([] { scalarText(*createScalar(1.0)); }), "Kestrel:array:NotOneText");
}

TEST_F(HostArray, whatAnArrayDoesNotHaveIsANamedErrorAndChangesNothing) {
  OwnedArray const number = createScalar(1.0);
  EXPECT_EQ(errorOf([&] { data<float>(*number); }), "Kestrel:array:WrongClass");
  EXPECT_EQ(errorOf([&] { element<double>(*number, 1); }), "Kestrel:array:OutOfRange");
  EXPECT_EQ(errorOf([&] { object(*number); }), "Kestrel:array:WrongClass");
  EXPECT_EQ(errorOf([&] { setObjectClass(*number, intern("zoo.Kind")); }), "Kestrel:array:WrongClass");
  EXPECT_EQ(errorOf([&] { stringElement(*number); }), "Kestrel:array:WrongClass");
  EXPECT_EQ(errorOf([&] { setCell(*number, 0, nullptr); }), "Kestrel:array:WrongClass");
  EXPECT_EQ(errorOf([] { return createObject(nullptr); }), "Kestrel:array:NoObject");
  EXPECT_EQ(errorOf([] { return createStruct({"a", "b", "a"}); }), "Kestrel:array:DuplicateField");
  EXPECT_EQ(errorOf([] { field(*createStruct({"a"}), 0, "b"); }), "Kestrel:array:NoSuchField");
  EXPECT_EQ(errorOf([] { setField(*createStruct({"a"}), 1, "b", nullptr); }), "Kestrel:array:OutOfRange");
  EXPECT_EQ(errorOf([] { return createBuiltInBased(intern(""), createScalar(1)); }), "Kestrel:array:NotBuiltIn");
  EXPECT_EQ(element<double>(*number), 1.0);
}

TEST_F(HostArray, dimensionsThatNoMemoryHoldsAreRefusedHoweverTheirProductWrapsAround) {
  constexpr std::size_t MANY = std::size_t{1} << 61;
  for (Dimensions const& size :
       {Dimensions{MANY + 1, 1}, Dimensions{1, MANY + 1}, Dimensions{MANY, 8},
        Dimensions{std::size_t{1} << 32, std::size_t{1} << 32}, Dimensions{~std::size_t{0}, 1}}) {
    EXPECT_EQ(errorOf([&] { return createNumeric<double>(size); }), "Kestrel:array:TooLarge");
    EXPECT_EQ(errorOf([&] { return createStrings(size); }), "Kestrel:array:TooLarge");
    EXPECT_EQ(errorOf([&] { return createObjects(intern("zoo.Kind"), size); }), "Kestrel:array:TooLarge");
    EXPECT_EQ(errorOf([&] { return createCell(size); }), "Kestrel:array:TooLarge");
    EXPECT_EQ(errorOf([&] { return createStruct({"a"}, size); }), "Kestrel:array:TooLarge");
  }
  EXPECT_EQ(errorOf([] { return createNumeric<std::uint8_t>({MANY, 8}); }), "Kestrel:array:TooLarge");
  OwnedArray const fieldless = createStruct({}, {MANY, 1});
  EXPECT_EQ(errorOf([&] { setField(*fieldless, 0, "a", nullptr); }), "Kestrel:array:TooLarge");
  EXPECT_TRUE(fieldNames(*fieldless).empty());
  EXPECT_TRUE(isEmpty(*createNumeric<double>({~std::size_t{0}, 0})));
}

TEST_F(HostArray, madeInOneThreadMayBeFreedInAnotherAndAllAreCounted) {
  constexpr std::size_t COUNT = 200;
  std::vector<OwnedArray> arrays(COUNT);
  std::ptrdiff_t const before = liveArrayCount();
  std::thread([&] {
    for (OwnedArray& array : arrays) array = createScalar(1.0);
  }).join();
  EXPECT_EQ(liveArrayCount() - before, static_cast<std::ptrdiff_t>(COUNT));
  std::thread([&] { arrays.resize(COUNT / 2); }).join();
  EXPECT_EQ(element<double>(*arrays.back()), 1.0);
  arrays.clear();
  EXPECT_EQ(liveArrayCount(), before);
}

TEST(HostIdentifier, sameTextIsTheSameIdentifier) {
  EXPECT_EQ(intern("zoo.Kind"), intern(std::string("zoo.") + "Kind"));
  EXPECT_NE(intern("zoo.Kind"), intern("zoo.kind"));
  EXPECT_EQ(Identifier(), intern(""));
  EXPECT_EQ(intern("zoo.Kind").text(), "zoo.Kind");
}

}  // namespace
}  // namespace kestrel
