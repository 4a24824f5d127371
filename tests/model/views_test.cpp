// The typed and the reflective view of an element check each other, where that takes more than one property.
#include <gmock/gmock.h>

#include <tessel_config_datamodel/data/CompositeParamData.hpp>
#include <tessel_config_datamodel/data/Queries.hpp>
#include <tessel_config_datamodel/data/StringArrayParamData.hpp>
#include <tessel_config_datamodel/runtime/ProductionState.hpp>
#include <tessel_config_datamodel/runtime/Queries.hpp>
#include <tessel_config_datamodel/schema/ControllerDef.hpp>
#include <tessel_config_datamodel/schema/Queries.hpp>
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
  return plinth::meta::Property(element->getMetaClass()->findProperty(name));
}

TEST(Views, OfPlainValuesThatAreMoreThanAFieldAgree) {
  SampleModel s;
  auto const text = sample::data::StringArrayParamData::create(s.model);
  auto const length = property(text, u"MaxLength");
  text->setMaxLength(0U);
  EXPECT_EQ(text->getPropertyValue(length).getValue<boost::optional<unsigned int>>().value(), 0U);
  text->setPropertyValue(length, Value(ValueMeta(length).setOptionalEmpty()));
  EXPECT_FALSE(text->getMaxLength());
  auto const firstKey = property(s.first, u"Key");
  s.first->setPropertyValue(firstKey, Value::createPrimitiveValue<std::u16string>(firstKey, u"l"));
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

TEST(Views, OfAQueryStayWithIt) {
  using Profiles = plinth::query::Query<sample::ext::ConfigProfile>;
  using sample::ext::ConfigProfile;
  static_assert(!std::is_copy_constructible_v<ConfigProfile::Constrainables>, "its members point at it");
  static_assert(!std::is_copy_assignable_v<ConfigProfile::Constrainables>);
  SampleModel s;
  Profiles named(s.model);
  static_assert(std::is_same_v<decltype(named.where(ConfigProfile::id() == u"")), Profiles&>);
  auto const kept = Profiles(s.model).where(ConfigProfile::id() == s.day->getId()).where(ConfigProfile::name() != u"x");
  EXPECT_THAT(kept.find(), ElementsAre(s.day));
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
  schema->getControllers()->insert(tessel::internal::config::schema::ControllerDef(u"c"));
  EXPECT_EQ(Specimens::valuesOf(schema, *property(schema, u"Controllers").impl()).getAllValues().size(), 1U);
}

}  // namespace
