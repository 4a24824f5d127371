// The typed and the reflective view of an element check each other: written through one, read through the other.
#include <gmock/gmock.h>

#include <tessel_config_datamodel/data/CompositeParamData.hpp>
#include <tessel_config_datamodel/data/IntegerParamData.hpp>
#include <tessel_config_datamodel/data/StringArrayParamData.hpp>
#include <tessel_config_datamodel/runtime/ProductionState.hpp>
#include <tessel_config_datamodel/schema/ControllerDef.hpp>
#include <tessel_config_datamodel/schema/SchemaData.hpp>

#include "plinth/sample_model.hpp"
#include "support/checks.hpp"
#include "support/specimens.hpp"

using sample::SampleModel;
using support::raised;
using support::Specimens;
using support::Value;
using support::ValueMeta;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

namespace {

plinth::meta::Property property(plinth::ModelElement const& element, char16_t const* name) {
  return tessel::frame::propertyOf(element->getMetaClass(), name);
}

/// `write` and `read` are the typed view of a property that holds one plain value; T is its type as a value.
template <class T, class Write, class Read>
void checkPlain(plinth::ModelElement const& element, char16_t const* name, T first, T second, Write write, Read read) {
  auto const handle = property(element, name);
  write(first);
  EXPECT_TRUE(element->getPropertyValue(handle).getValue<T>() == first) << plinth::quoted(name);
  element->setPropertyValue(handle, Value::make<T>(ValueMeta(handle), second));
  EXPECT_TRUE(read() == second) << plinth::quoted(name);
}

TEST(Views, OfPlainValuesAgree) {
  SampleModel s;
  auto const text = sample::data::StringArrayParamData::create(s.model);
  auto const whole = sample::data::IntegerParamData::create(s.model);
  using Count = boost::optional<unsigned int>;
  checkPlain<unsigned long>(
      s.store, u"Version", 1, ~0UL, [&](auto v) { s.store->setVersion(v); }, [&] { return s.store->getVersion(); });
  checkPlain<long>(
      whole, u"Value", -1, std::numeric_limits<long>::min(), [&](auto v) { whole->setValue(v); },
      [&] { return whole->getValue(); });
  checkPlain<double>(
      s.sum, u"Arity", 1.5, -2, [&](auto v) { s.sum->setArity(v); }, [&] { return s.sum->getArity(); });
  checkPlain<bool>(
      s.first, u"Dirty", true, false, [&](auto v) { s.first->setDirty(v); }, [&] { return s.first->getDirty(); });
  checkPlain<std::u16string>(
      s.first, u"Key", u"k", u"l", [&](auto v) { s.first->setKey(v); }, [&] { return s.first->getKey(); });
  checkPlain<sample::expr::Operator>(
      s.sum, u"Operator", sample::expr::Operator::AND, sample::expr::Operator::OR,
      [&](auto v) { s.sum->setOperator(v); }, [&] { return s.sum->getOperator(); });
  checkPlain<Count>(
      text, u"MaxLength", 0U, boost::none, [&](auto v) { text->setMaxLength(v); },
      [&] { return text->getMaxLength(); });
  EXPECT_EQ(s.configuration->getParams()->find(u"l"), s.first) << "reflection goes through the qualifier's setter";
  EXPECT_EQ(raised([&] {
              auto const key = property(s.second, u"Key");
              s.second->setPropertyValue(key, Value::createPrimitiveValue<std::u16string>(key, u"l"));
            }),
            "UniquenessConstraint");

  auto const production = sample::runtime::ProductionState::create(s.model);
  auto const handle = property(production, u"Production");
  auto const array = kestrel::createScalar(4.0);
  production->setPropertyValue(
      handle, Value::make({handle->type(), plinth::meta::SINGLE}, tessel::frame::HostArray(array.get())));
  EXPECT_TRUE(kestrel::equalContents(production->getProduction(), array.get()));
  EXPECT_TRUE(kestrel::equalContents(production->getPropertyValue(handle).getValue<tessel::frame::HostArray>().get(),
                                     array.get()));
  production->setPropertyValue(handle, Value(ValueMeta(handle)));
  EXPECT_EQ(production->getProduction(), nullptr);
}

TEST(Views, OfSingleElementsAgree) {
  SampleModel s;
  auto const set = [](plinth::ModelElement const& element, char16_t const* name, plinth::ModelElement const& target) {
    auto const handle = property(element, name);
    element->setPropertyValue(handle, Value::createElementValue(handle, target));
    EXPECT_EQ(element->getPropertyValue(handle).getValue<plinth::ModelElement>(), target);
  };
  set(s.store, u"ActiveProfile", s.night);
  EXPECT_EQ(s.store->getActiveProfile(), s.night);
  set(s.store, u"ActiveProfile", {});
  EXPECT_FALSE(s.store->hasActiveProfile());
  set(s.first, u"Category", {});
  EXPECT_THAT(s.category->getContents()->getAllValues(), ElementsAre(s.second));
  set(s.first, u"Category", s.category);
  EXPECT_EQ(s.first->getCategory(), s.category);
  auto const data = s.volume->getData();
  set(s.balance, u"Data", data);
  EXPECT_EQ(data->container(), s.balance);
  EXPECT_EQ(s.balance->getPropertyValue(property(s.balance, u"Data")).meta().getType(), data->getMetaClass());
  s.balance->setData({});
  EXPECT_EQ(s.balance->getPropertyValue(property(s.balance, u"Data")).meta().getType(),
            sample::data::ParamData::metaClass());
}

TEST(Views, OfCollectionsAgree) {
  SampleModel s;
  auto const members = [](plinth::ModelElement const& element, char16_t const* name) -> plinth::ReferenceCollection& {
    return Specimens::membersOf(element, *property(element, name).impl());
  };
  auto const third = sample::runtime::ParamState::create(s.model);
  third->setKey(u"third");
  members(s.category, u"Contents").genericAdd(third);
  members(s.configuration, u"Params").genericAdd(third);
  members(s.tag, u"Tagged").genericAdd(third);
  EXPECT_EQ(third->getCategory(), s.category);
  EXPECT_EQ(s.configuration->getParams()->find(u"third"), third);
  EXPECT_TRUE(third->getTags()->contains(s.tag));
  EXPECT_THAT(members(s.tag, u"TaggedParams").getAllValues(), UnorderedElementsAre(s.first, third));
  EXPECT_EQ(raised([&] { members(s.configuration, u"Params").genericAdd(s.tag); }), "CannotAddIncompatibleTypes");

  auto const inner = sample::runtime::CategoryState::create(s.model);
  members(s.category, u"Contents").genericAdd(inner);
  EXPECT_EQ(s.category->getParams()->size(), 3U);
  EXPECT_THAT(s.category->getSubCategories()->getAllValues(), ElementsAre(inner));
  s.category->getParams()->add(sample::runtime::ParamState::create(s.model));
  EXPECT_EQ(s.category->getContents()->size(), 5U);
  s.category->getParams()->remove(third);
  EXPECT_FALSE(third->hasCategory());
  s.category->getParams()->clear();
  EXPECT_THAT(s.category->getContents()->getAllValues(), ElementsAre(inner));
  s.perspective->getMembers()->add(inner);
  EXPECT_EQ(raised([&] { members(s.perspective, u"MemberParams").genericAdd(inner); }), "CannotAddIncompatibleTypes");
  EXPECT_EQ(s.perspective->getMemberParams()->size(), 2U);
  EXPECT_TRUE(support::isSound(s.model));

  auto const composite = sample::data::CompositeParamData::create(s.model);
  auto& required = Specimens::valuesOf(composite, *property(composite, u"RequiredFields").impl());
  required.genericAdd(Value::make<std::u16string>({plinth::StandardTypes::stringMeta(), plinth::meta::SINGLE}, u"f"));
  EXPECT_THAT(composite->getRequiredFields()->values(), ElementsAre(u"f"));
  EXPECT_EQ(raised([&] { required.genericAdd(Value()); }), "CannotCastIncompatibleTypes");
  auto const schema = tessel::internal::config::schema::SchemaData::create(s.model);
  tessel::internal::config::schema::ControllerDef controller;
  controller.setId(u"c");
  schema->getControllers()->insert(controller);
  EXPECT_EQ(Specimens::valuesOf(schema, *property(schema, u"Controllers").impl()).getAllValues().size(), 1U);
}

}  // namespace
