// Values are made of the type and shape that they say they are.
#include "plinth/Value.hpp"

#include <gtest/gtest.h>

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
  return tessel::frame::propertyOf(X::metaClass(), name);
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
  auto* const collection = static_cast<plinth::AbstractPrimitiveCollection*>(
      static_cast<plinth::AbstractOwnedCollection*>(array->getPropertyValue(values).content()));
  collection->genericAdd(Value::createPrimitiveValue(values, 1.5));
  EXPECT_EQ(array->getValue()->values(), std::vector<double>{1.5}) << "one of many values";
  auto const many = Value::createPrimitiveValue(values, std::vector<double>{1, 2});
  EXPECT_EQ(many.getValue<std::vector<double>>().size(), 2U);

  auto const active = property<sample::ext::ConfigStore>(u"ActiveProfile");
  EXPECT_EQ(Value::createElementValue(active, s.night).getValue<plinth::ModelElement>(), s.night);
  EXPECT_EQ(Value::createElementValue(active, plinth::ModelElement()).meta().type(), active->type());
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
