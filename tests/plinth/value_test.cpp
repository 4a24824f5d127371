// Values are made of the type and shape that they say they are.
#include "plinth/Value.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <tessel_config_datamodel/data/DoubleArrayParamData.hpp>
#include <tessel_config_datamodel/data/StringParamData.hpp>

#include "sample_model.hpp"
#include "support/checks.hpp"

using plinth::Value;
using plinth::ValueMeta;
using sample::SampleModel;
using support::raised;
using Text = std::u16string;

namespace {

template <class X>
plinth::meta::Property property(char16_t const* name) {
  return plinth::meta::Property(X::metaClass()->findProperty(name));
}

TEST(ValueFactory, MakesWhatThePropertyTakes) {
  using sample::data::DoubleArrayParamData;
  SampleModel s;
  auto const array = DoubleArrayParamData::create(s.model);
  auto const length = property<DoubleArrayParamData>(u"MaxLength");
  for (unsigned const number : {7U, 256U, 65536U}) {
    array->setPropertyValue(length, Value::createPrimitiveValue(length, number));
    EXPECT_TRUE(array->getMaxLength() == number);
    EXPECT_EQ(array->getPropertyValue(length), Value::createPrimitiveValue(length, number));
  }
  array->setPropertyValue(length, Value::createPrimitiveValue(length, boost::optional<unsigned>()));
  EXPECT_FALSE(array->getMaxLength());
  auto const values = property<DoubleArrayParamData>(u"Value");
  array->getPropertyValue(values).primitiveCollection().genericAdd(Value::createPrimitiveValue(values, 1.5));
  EXPECT_EQ(array->getValue()->values(), std::vector<double>{1.5}) << "one of many values";
  auto const many = Value::createPrimitiveValue(values, std::vector<double>{1, 2});
  EXPECT_EQ(many.getValue<std::vector<double>>().size(), 2U);

  auto const active = property<sample::ext::ConfigStore>(u"ActiveProfile");
  EXPECT_EQ(Value::createElementValue(active, s.night).getValue<plinth::ModelElement>(), s.night);
  auto const data = property<sample::ext::ConfigEntry>(u"Data");
  for (Value const& none : {Value::createElementValue(data, sample::data::DoubleParamData()),
                            Value::createElementValue(data, plinth::ModelElement())}) {
    EXPECT_EQ(none.meta().type(), data->type());
    s.volume->setPropertyValue(data, Value::createElementValue(data, DoubleArrayParamData::create(s.model)));
    s.volume->setPropertyValue(data, none);
    EXPECT_FALSE(s.volume->hasData()) << "as empty as a handle of the property's own class";
  }
}

TEST(Value, ThatWasMovedFromReleasedOrMadeOfAShapeHoldsNoCollection) {
  SampleModel s;
  auto const entries = property<sample::ext::ConfigProfile>(u"Values");
  Value live = s.night->getPropertyValue(entries);
  Value const moved = std::move(live);
  EXPECT_EQ(moved, s.night->getPropertyValue(entries));
  Value released = moved;
  released.release();
  Value const shape(moved.meta());
  for (Value const* const none : std::initializer_list<Value const*>{
           &live, &released, &shape}) {  // NOLINT: what is left of a moved value is told
    EXPECT_TRUE(none->isEmpty() && none->meta().isManaged() && !none->meta().isCollection());
    EXPECT_EQ(none->hash(), 0U);
    EXPECT_EQ(*none, Value(none->meta()));
    EXPECT_NE(*none, moved);
    EXPECT_EQ(raised([&] { none->referenceCollection(); }), "CannotCastIncompatibleTypes");
  }
  EXPECT_EQ(live, Value());
}

TEST(ManyValues, AreReachedAsACollectionAndReadAsAVector) {
  using sample::data::DoubleArrayParamData;
  SampleModel s;
  auto const array = DoubleArrayParamData::create(s.model);
  auto const twin = DoubleArrayParamData::create(s.model);
  auto const values = property<DoubleArrayParamData>(u"Value");
  Value const live = array->getPropertyValue(values);
  EXPECT_EQ(live.hash(), 0U);
  live.primitiveCollection().genericAdd(Value::createPrimitiveValue(values, 1.5));
  EXPECT_EQ(live.getValue<std::vector<double>>(), std::vector<double>{1.5});
  EXPECT_EQ(live.hash(), Value::createPrimitiveValue(values, std::vector<double>{1.5}).hash());
  EXPECT_NE(live, twin->getPropertyValue(values));
  twin->getValue()->assign({1.5});
  EXPECT_EQ(live, twin->getPropertyValue(values)) << "collections compare by what they hold";
  EXPECT_NE(live, Value::createPrimitiveValue(values, std::vector<double>{1.5}));
  EXPECT_EQ(raised([&] { live.referenceCollection(); }), "CannotCastIncompatibleTypes");
  EXPECT_EQ(raised([&] { live.getValue<std::vector<long>>(); }), "CannotCastIncompatibleTypes");

  Value const entries = s.night->getPropertyValue(property<sample::ext::ConfigProfile>(u"Values"));
  EXPECT_EQ(entries.referenceCollection().getAllValues().size(), s.night->getValues()->size());
  EXPECT_EQ(entries, s.night->getPropertyValue(property<sample::ext::ConfigProfile>(u"Values")));
  EXPECT_EQ(raised([&] { entries.primitiveCollection(); }), "CannotCastIncompatibleTypes");
  EXPECT_EQ(raised([&] { Value().primitiveCollection(); }), "CannotCastIncompatibleTypes");
}

TEST(OptionalValue, HasOneFormWhenItIsEmpty) {
  SampleModel s;
  auto const length = property<sample::data::DoubleArrayParamData>(u"MaxLength");
  auto const array = sample::data::DoubleArrayParamData::create(s.model);
  Value const read = array->getPropertyValue(length);
  Value const made = Value::createPrimitiveValue(length, boost::optional<unsigned>());
  EXPECT_EQ(read, made);
  EXPECT_EQ(read.hash(), made.hash());
  EXPECT_TRUE(read.meta().isOptionalEmpty() && made.meta().isOptionalEmpty() && made.isEmpty());
  EXPECT_FALSE(made.getValue<boost::optional<unsigned>>());
  Value const present = Value::make<boost::optional<unsigned>>(ValueMeta(length).setOptionalEmpty(), 7U);
  EXPECT_FALSE(present.meta().isOptionalEmpty());
  EXPECT_TRUE(present.getValue<boost::optional<unsigned>>() == 7U);
}

TEST(UnmanagedValue, ComparesAndHashesAsAManagedOneAndIsReleasedByHand) {
  auto const values = property<sample::data::DoubleArrayParamData>(u"Value");
  using Row = std::vector<double>;
  Value unmanaged = Value::makeUnmanaged(ValueMeta(values), std::make_unique<Row>(Row{1, 2}));
  Value const managed = Value::createPrimitiveValue(values, Row{1, 2});
  EXPECT_FALSE(unmanaged.meta().isManaged());
  EXPECT_EQ(unmanaged, managed);
  EXPECT_EQ(unmanaged.hash(), managed.hash());
  unmanaged.release();
  EXPECT_TRUE(unmanaged.isEmpty());
  unmanaged.release();
  EXPECT_EQ(raised([&] {
              auto const dropped = Value::makeUnmanaged(ValueMeta(values), std::make_unique<std::vector<long>>());
            }),
            "CannotCastIncompatibleTypes");
}

TEST(Value, TellsWhatWasGivenAndWhatIsNeeded) {
  auto const length = property<sample::data::DoubleArrayParamData>(u"MaxLength");
  auto const real = property<sample::data::DoubleParamData>(u"Value");
  auto const active = property<sample::ext::ConfigStore>(u"ActiveProfile");
  Value const optional = Value::createPrimitiveValue(length, 7U);
  struct Row {
    std::function<void()> action;
    char const* given;
    char const* needed;
  };
  for (Row const& row : std::vector<Row>{
           {[&] { optional.getValue<unsigned>(); }, "UnlimitedNatural\" (optional)", "UnlimitedNatural\" (single)"},
           {[&] { optional.getValue<boost::optional<double>>(); }, "UnlimitedNatural\" (opt", "Real\" (optional)"},
           {[&] { Value::createPrimitiveValue(real, 7); }, "Integer\" (single)", "Real\" (single)"},
           {[&] { Value::make<Text>(ValueMeta(real), u""); }, "String\" (single)", "Real\" (single)"},
           {[&] { Value::makeUnmanaged(ValueMeta(real), std::make_unique<bool>()); }, "Boolean\" (", "Real\" ("},
           {[&] { Value::createElementValue(active, sample::ext::ConfigEntry()); }, ".ConfigEntry\"",
            ".ConfigProfile\""},
       }) {
    std::string told;
    try {
      row.action();
    } catch (std::exception const& refusal) {
      told = refusal.what();
    }
    std::size_t const middle = told.find(" was given where one of type ");
    ASSERT_NE(middle, std::string::npos) << told;
    EXPECT_LT(told.find(row.given), middle) << told;
    EXPECT_NE(told.find(row.needed, middle), std::string::npos) << told;
  }
  EXPECT_EQ(ValueMeta(plinth::meta::Property()).type(), nullptr);
}

TEST(ValueFactory, RefusesAContentOfAnotherTypeOrShape) {
  SampleModel s;
  std::string const refusal = "CannotCastIncompatibleTypes";
  auto const text = property<sample::data::StringParamData>(u"Value");
  auto const length = property<sample::data::DoubleArrayParamData>(u"MaxLength");
  auto const values = property<sample::data::DoubleArrayParamData>(u"Value");
  auto const active = property<sample::ext::ConfigStore>(u"ActiveProfile");
  EXPECT_EQ(raised([&] { Value::createPrimitiveValue(text, 1.5); }), refusal);
  EXPECT_EQ(raised([&] { Value::createPrimitiveValue(text, boost::optional<Text>()); }), refusal);
  EXPECT_EQ(raised([&] { Value::createPrimitiveValue(text, std::vector<Text>()); }), refusal);
  EXPECT_EQ(raised([&] { Value::createPrimitiveValue(length, 7L); }), refusal);
  EXPECT_EQ(raised([&] { Value::createPrimitiveValue(values, std::vector<long>()); }), refusal);
  EXPECT_EQ(raised([&] { Value::createPrimitiveValue(active, Text()); }), refusal);
  EXPECT_EQ(raised([&] { Value::createElementValue(text, s.night); }), "") << "the element tells its own type";
  EXPECT_EQ(raised([&] { Value::createElementValue(text, plinth::ModelElement()); }), refusal);
  EXPECT_EQ(raised([&] { Value::createElementValue(active, sample::ext::ConfigEntry()); }), refusal);
  EXPECT_EQ(raised([&] { Value::make<double>(ValueMeta(text), 1.5); }), refusal);
  EXPECT_EQ(raised([&] { Value::make<double>(ValueMeta(), 1.5); }), refusal);
  EXPECT_EQ(raised([&] { Value::createPrimitiveValue({}, 1.5); }), "NoSuchProperty");
  EXPECT_EQ(raised([&] { Value::createElementValue({}, s.night); }), "NoSuchProperty");
}

}  // namespace
