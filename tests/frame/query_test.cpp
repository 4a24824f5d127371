// Queries find the elements of a class that meet their constraints.
#include <gmock/gmock.h>

#include <tessel_config_datamodel/data/Queries.hpp>
#include <tessel_config_datamodel/data/UserVisibleData.hpp>
#include <tessel_config_datamodel/expr/Operation.hpp>
#include <tessel_config_datamodel/expr/Queries.hpp>
#include <tessel_config_datamodel/expr/StringOperation.hpp>

#include "plinth/ProxyId.hpp"
#include "plinth/sample_model.hpp"
#include "support/checks.hpp"

using plinth::query::Query;
using plinth::query::SearchClassMatchMode;
using sample::SampleModel;
using testing::ElementsAre;
using testing::UnorderedElementsAre;
using namespace sample;  // NOLINT: the packages of the sample

namespace {

template <class X>
std::vector<X> find(plinth::Model const& model, plinth::query::Constraint constraint) {
  return Query<X>(model).where(std::move(constraint)).find();
}

TEST(Query, ComparesAttributes) {
  SampleModel s;
  auto const& model = s.model;
  s.second->setDirty(true);
  EXPECT_THAT(find<runtime::ParamState>(model, runtime::ParamState::key() == u"first"), ElementsAre(s.first));
  EXPECT_THAT(find<runtime::ParamState>(model, runtime::ParamState::dirty() == true), ElementsAre(s.second));
  EXPECT_THAT(find<runtime::ParamState>(model, runtime::ParamState::dirty() != true), ElementsAre(s.first));
  EXPECT_EQ(find<data::DoubleParamData>(model, data::DoubleParamData::value() > 0.0).size(), 1U);
  EXPECT_EQ(find<data::DoubleParamData>(model, data::DoubleParamData::value() <= 3.5).size(), 2U);
  EXPECT_EQ(find<data::DoubleParamData>(model, data::DoubleParamData::value() < -0.5).size(), 0U);
  EXPECT_EQ(find<data::DoubleParamData>(model, data::DoubleParamData::value() >= -0.5).size(), 2U);
  EXPECT_THAT(find<expr::NumericOperation>(model, expr::NumericOperation::staticType() == expr::ValueType::NUMBER),
              ElementsAre(s.sum));
  EXPECT_THAT(find<expr::NumericOperation>(model, expr::NumericOperation::operator_() == expr::Operator::AND),
              ElementsAre());
}

TEST(Query, MatchesTextByCodeUnits) {
  SampleModel s;
  auto const& key = ext::ConfigEntry::key();
  EXPECT_THAT(find<ext::ConfigEntry>(s.model, key.startsWith(u"vol")), ElementsAre(s.volume));
  EXPECT_THAT(find<ext::ConfigEntry>(s.model, key.endsWith(u"ance")), ElementsAre(s.balance));
  EXPECT_THAT(find<ext::ConfigEntry>(s.model, key.contains(u"l")), UnorderedElementsAre(s.volume, s.balance));
  EXPECT_THAT(find<ext::ConfigEntry>(s.model, key.contains(u"L") || key.startsWith(u"volumes")), ElementsAre());
  EXPECT_EQ(find<ext::ConfigEntry>(s.model, key.startsWith(u"")).size(), 2U);
}

TEST(Query, RelatesElements) {
  SampleModel s;
  EXPECT_THAT(find<runtime::ParamState>(s.model, runtime::ParamState::category().relatesTo(s.category)),
              UnorderedElementsAre(s.first, s.second));
  EXPECT_THAT(find<runtime::ParamState>(s.model, runtime::ParamState::tags().relatesTo(s.tag)), ElementsAre(s.first));
  EXPECT_THAT(find<runtime::ParamState>(s.model, !runtime::ParamState::tags().isSet()), ElementsAre(s.second));
  EXPECT_THAT(find<ext::ConfigProfile>(s.model, ext::ConfigProfile::values().relatesTo(s.volume)), ElementsAre(s.day));
  EXPECT_THAT(find<ext::ConfigStore>(s.model, ext::ConfigStore::activeProfile().relatesTo(s.night)), ElementsAre());
  auto const& data = ext::ConfigEntry::data();
  EXPECT_EQ(find<ext::ConfigEntry>(s.model, data.anyIsA(data::UserVisibleData::metaClass())).size(), 2U);
  EXPECT_TRUE(find<ext::ConfigEntry>(s.model,
                                     data.anyIsA(data::UserVisibleData::metaClass(), SearchClassMatchMode::EXACT_CLASS))
                  .empty());
  auto const constraint = ext::ConfigEntry::key() == u"volume" && data.isSet();
  EXPECT_THAT(find<ext::ConfigEntry>(s.model, constraint), ElementsAre(s.volume));
}

TEST(Query, CountsProxiesAsWhatTheyStandForAndTheDeadAsNothing) {
  SampleModel s;
  auto const proxyOf = [&](auto const& element) {
    using T = std::decay_t<decltype(element)>;
    return plinth::element_cast<T>(s.model->createProxy(T::metaClass(), element->getPersistentProxyId(true)));
  };
  auto const& active = ext::ConfigStore::activeProfile();
  auto const& members = runtime::PerspectiveState::members();
  auto const stores = [&](plinth::query::Constraint const& constraint) {
    return find<ext::ConfigStore>(s.model, constraint).size();
  };
  auto const perspectives = [&](plinth::query::Constraint const& constraint) {
    return find<runtime::PerspectiveState>(s.model, constraint).size();
  };
  support::basicSet(s.store, u"ActiveProfile", proxyOf(s.night));
  auto const other = runtime::PerspectiveState::create(s.model);
  other->getMembers()->addProxy(proxyOf(s.first));
  support::Snapshot const before(s.model);
  EXPECT_EQ(stores(active.relatesTo(s.night)), 1U);
  EXPECT_EQ(stores(active.relatesTo(proxyOf(s.night))), 1U);
  EXPECT_EQ(stores(active.relatesTo(s.day) || active.relatesTo({})), 0U);
  EXPECT_EQ(perspectives(members.relatesTo(s.first)), 2U);
  EXPECT_EQ(perspectives(members.relatesTo(s.second)), 1U);
  EXPECT_EQ(perspectives(members.anyIsA(runtime::ParamState::metaClass())), 2U);
  EXPECT_EQ(perspectives(members.isSet()), 2U);
  EXPECT_TRUE(before.isBack()) << "nothing was resolved in place";
  EXPECT_EQ(s.store->getActiveProfile(), s.night);
  EXPECT_EQ(stores(active.relatesTo(s.night)), 1U);

  s.night->destroy();
  s.first->destroy();
  s.second->destroy();
  EXPECT_EQ(stores(active.relatesTo(s.night) || active.isSet()), 0U);
  EXPECT_EQ(perspectives(members.relatesTo(s.second) || members.anyIsA(runtime::ParamState::metaClass())), 1U)
      << "the proxy's";
  other->getMembers()->clear();
  EXPECT_EQ(perspectives(members.relatesTo(s.second) || members.isSet()), 0U);
  EXPECT_EQ(stores(active.relatesTo({})), 1U);
  EXPECT_EQ(perspectives(members.relatesTo({})), 2U);
}

TEST(Query, SearchesItsClassWithOrWithoutSubclasses) {
  SampleModel s;
  EXPECT_EQ(Query<expr::ExprValue>(s.model).count(), 3U);
  EXPECT_EQ(Query<expr::ExprValue>(s.model, SearchClassMatchMode::EXACT_CLASS).count(), 0U);
  EXPECT_EQ(Query<expr::NumericOperation>(s.model, SearchClassMatchMode::EXACT_CLASS).count(), 1U);
  EXPECT_EQ(Query<expr::StringOperation>(s.model).count(), 0U);
  EXPECT_THAT(Query<expr::Operation>(s.model)
                  .where(expr::Operation::arity() == 0.0)
                  .where(expr::Operation::active() == false)
                  .find(),
              ElementsAre(s.sum));
  s.sum->destroy();
  EXPECT_EQ(Query<expr::ExprValue>(s.model).count(), 0U);
  EXPECT_EQ(support::raised([&] { find<ext::ConfigEntry>(s.model, ext::ConfigStore::version() == 0UL); }),
            "NoSuchProperty");
}

TEST(Query, IsSpelledOnAnInstanceToo) {
  SampleModel s;
  Query<runtime::ParamState> query(s.model);
  runtime::ParamState::Constrainables const param({query, query.matchMode()});
  query.where(param.key == u"second").where(param.category.isSet());
  EXPECT_THAT(query.find(), ElementsAre(s.second));
  EXPECT_EQ(&param.key.attachment().instance(), &param);
  EXPECT_EQ(param.queriedClass(), runtime::ParamState::metaClass());
}

}  // namespace
