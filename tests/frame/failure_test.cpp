// Out of memory anywhere inside an operation: the exception passes, and the model is what it was.
#include <gmock/gmock.h>

#include "plinth/FailurePoint.hpp"

#ifdef TESSEL_FAILURE_POINTS

#include <tessel_config_datamodel/data/DoubleArrayParamDataBuilder.hpp>
#include <tessel_config_datamodel/expr/ConditionalOperation.hpp>
#include <tessel_config_datamodel/runtime/ProductionState.hpp>
#include <tessel_config_datamodel/schema/SchemaData.hpp>

#include "kestrel/Array.hpp"
#include "plinth/ChangeSet.hpp"
#include "plinth/diagnostics/Census.hpp"
#include "plinth/sample_model.hpp"
#include "support/checks.hpp"

using sample::SampleModel;
using support::raised;
using support::Snapshot;

namespace {

/// Where nobody listens, a store outside a transaction has nothing that could fail.
auto listen(SampleModel const& sample) {
  return sample.model.addListener([](plinth::ChangeSet const&) {});
}

/// What the operations work on besides the sample.
struct Stage : SampleModel {
  sample::data::DoubleArrayParamData array = sample::data::DoubleArrayParamData::create(model);
  sample::runtime::ProductionState production = sample::runtime::ProductionState::create(model);
  tessel::internal::config::schema::SchemaData schema = tessel::internal::config::schema::SchemaData::create(model);
  sample::runtime::CategoryState otherCategory = sample::runtime::CategoryState::create(model);
  sample::ext::ConfigEntry free = sample::ext::ConfigEntry::create(model);
  kestrel::OwnedArray host = kestrel::createScalar(1.0);

  Stage() {
    array->getValue()->assign({1, 2});
    production->setProduction(kestrel::createScalar(2.0).get());
    free->setKey(u"free");
  }
};

struct Work {
  char const* name;
  std::function<void(Stage&)> run;
  std::vector<char const*> points;  ///< that it must pass
};

std::ostream& operator<<(std::ostream& stream, Work const& work) { return stream << work.name; }

class FailureIn : public testing::TestWithParam<Work> {
 protected:
  /// Runs the work, with the n-th passage of the point (empty: any) failing, for n = 1, 2, ... until it comes through.
  /// Gives the number of failures.
  template <class Wrap>
  static std::size_t failAtEachPassage(Stage& stage, std::string const& point, Wrap const& wrap) {
    Snapshot const before(stage.model);
    for (std::size_t passage = 1; passage < 1000; ++passage) {
      auto const census = plinth::census();
      auto const arrays = kestrel::liveArrayCount();
      plinth::armFailurePoint(point.c_str(), passage);
      std::string const key = raised([&] { wrap([&] { GetParam().run(stage); }); });
      if (!plinth::disarmFailurePoint()) {
        EXPECT_EQ(key, "");
        return passage - 1;
      }
      EXPECT_EQ(key, "std::bad_alloc");
      EXPECT_EQ(stage.model->level(), 0U);
      EXPECT_TRUE(before.isBack()) << "after the failure of passage " << passage << " of " << point;
      EXPECT_EQ(plinth::surplus(census, plinth::census()).text(), "");
      EXPECT_EQ(kestrel::liveArrayCount(), arrays);
      if (testing::Test::HasFailure()) break;
    }
    return 0;
  }
};

TEST_P(FailureIn, LeavesTheModelAsItWas) {
  for (char const* point : GetParam().points) {
    Stage stage;
    auto const listening = listen(stage);
    EXPECT_GT(failAtEachPassage(stage, point, [](auto const& run) { run(); }), 0U) << point << " was never passed";
  }
  Stage stage;
  auto const listening = listen(stage);
  EXPECT_GT(failAtEachPassage(stage, "", [](auto const& run) { run(); }), 0U);
}

TEST_P(FailureIn, LeavesTheEnclosingTransactionAsItWas) {
  Stage stage;
  auto outer = stage.model.beginTransaction();
  stage.store->setVersion(77);
  stage.category->getContents()->add(sample::runtime::ParamState::create(stage.model));
  {
    Snapshot const before(stage.model);
    for (std::size_t passage = 1;; ++passage) {
      auto inner = stage.model.beginTransaction();
      plinth::armFailurePoint("", passage);
      std::string const key = raised([&] { GetParam().run(stage); });
      if (!plinth::disarmFailurePoint()) break;
      EXPECT_EQ(key, "std::bad_alloc");
      { auto const ended = std::move(inner); }
      ASSERT_TRUE(before.isBack()) << "after the failure of passage " << passage;
    }
  }
  outer.commit();
  EXPECT_EQ(stage.store->getVersion(), 77U);
  EXPECT_TRUE(support::isSound(stage.model));
}

TEST_P(FailureIn, LeavesNothingForTheOpenTransactionToCommit) {
  Stage stage;
  Snapshot const before(stage.model);
  int told = 0;
  auto const listening = stage.model.addListener([&](plinth::ChangeSet const&) { ++told; });
  for (std::size_t passage = 1;; ++passage) {
    auto open = stage.model.beginTransaction();
    plinth::armFailurePoint("", passage);
    raised([&] { GetParam().run(stage); });
    if (!plinth::disarmFailurePoint()) break;
    ASSERT_TRUE(before.isBack()) << "after the failure of passage " << passage;
    open.commit();
    ASSERT_EQ(told, 0) << "of the failure of passage " << passage;
  }
}

TEST_P(FailureIn, TellingTheListenersTakesTheTransactionBack) {
  Stage stage;
  int told = 0;
  auto const listening = stage.model.addListener([&](plinth::ChangeSet const&) { ++told; });
  auto const passages = failAtEachPassage(stage, "collect-changes", [&](auto const& run) {
    auto transaction = stage.model.beginTransaction();
    run();
    transaction.commit();
  });
  EXPECT_EQ(passages, 1U);
  EXPECT_EQ(told, 1);
}

std::vector<Work> works() {
  namespace data = sample::data;
  namespace ext = sample::ext;
  namespace runtime = sample::runtime;
  return {
      {"AttributeSetter", [](Stage& s) { s.store->setVersion(5); }, {"record-old-value"}},
      {"HostArraySetter",
       [](Stage& s) { s.production->setProduction(s.host.get()); },
       {"host-array-copy", "record-old-value"}},
      {"ReferenceSetter", [](Stage& s) { s.store->setActiveProfile(s.night); }, {"record-old-value"}},
      {"OppositeSetter",
       [](Stage& s) { s.first->setCategory(s.otherCategory); },
       {"record-old-value", "collection-modifying", "sequence-insert"}},
      {"ContainmentSetter", [](Stage& s) { s.balance->setData(s.volume->getData()); }, {"record-old-value"}},
      {"QualifierSetter",
       [](Stage& s) { s.volume->setKey(u"other"); },
       {"record-old-value", "collection-modifying", "map-insert"}},
      {"OverriddenQualifierSetter", [](Stage& s) { s.first->setKey(u"other"); }, {"map-insert"}},
      {"SequenceInsert",
       [](Stage& s) { s.otherCategory->getContents()->insert(0, s.first); },
       {"sequence-insert", "collection-modifying"}},
      {"SequenceReplace", [](Stage& s) { s.sum->getOperands()->replaceAt(0, s.right); }, {"collection-modifying"}},
      {"SequenceClear", [](Stage& s) { s.category->getContents()->clear(); }, {"collection-modifying"}},
      {"SetInsert", [](Stage& s) { s.tag->getTagged()->add(s.second); }, {"set-insert", "sequence-insert"}},
      {"SetClear", [](Stage& s) { s.tag->getTagged()->clear(); }, {"collection-modifying"}},
      {"ViewClear", [](Stage& s) { s.category->getParams()->clear(); }, {"collection-modifying"}},
      {"MapInsert", [](Stage& s) { s.day->getValues()->insert(s.free); }, {"map-insert", "record-old-value"}},
      {"MapMove", [](Stage& s) { s.night->getValues()->insert(s.volume); }, {"map-insert", "record-old-value"}},
      {"MapReplace",
       [](Stage& s) {
         auto transaction = s.model.beginTransaction();
         s.free->setKey(u"volume");
         s.day->getValues()->insert(s.free, plinth::CollisionResolution::REPLACE);
         transaction.commit();
       },
       {"collection-modifying"}},
      {"MapClear", [](Stage& s) { s.day->getValues()->clear(); }, {"collection-modifying"}},
      {"ValueInsert",
       [](Stage& s) { s.array->getValue()->push_back(3); },
       {"primitive-insert", "collection-modifying"}},
      {"ValueAssign", [](Stage& s) { s.array->getValue()->assign({}); }, {"collection-modifying"}},
      {"ValueMapInsert",
       [](Stage& s) {
         tessel::internal::config::schema::ControllerDef controller;
         controller.setId(u"c");
         s.schema->getControllers()->insert(controller);
       },
       {"primitive-insert"}},
      {"ReflectiveSetter",
       [](Stage& s) {
         auto const name = plinth::meta::Property(ext::ConfigProfile::metaClass()->findProperty(u"Name"));
         s.day->setPropertyValue(name, plinth::Value::createPrimitiveValue<std::u16string>(name, u"reflected"));
       },
       {"record-old-value"}},
      {"Create", [](Stage& s) { static_cast<void>(ext::ConfigProfile::create(s.model)); }, {"announce"}},
      {"ManyInOneTransaction",
       [](Stage& s) {
         auto transaction = s.model.beginTransaction();
         for (int i = 0; i < 70; ++i) static_cast<void>(ext::ConfigProfile::create(s.model));
         transaction.commit();
       },
       {"undo-log-grow"}},
      {"CreateWithStamps",
       [](Stage& s) { static_cast<void>(sample::expr::ConditionalOperation::create(s.model)); },
       {"announce"}},
      {"CreateInto",
       [](Stage& s) { s.night->createIntoValues(std::make_unique<ext::ConfigEntry::Builder>()); },
       {"builder-make", "announce", "map-insert"}},
      {"BuilderTree",
       [](Stage& s) {
         auto entry = std::make_unique<ext::ConfigEntry::Builder>();
         entry->setData(std::make_unique<data::DoubleArrayParamData::Builder>());
         auto profile = std::make_unique<ext::ConfigProfile::Builder>();
         profile->addValues(std::move(entry)).addValues(std::make_unique<ext::ConfigEntry::Builder>()).clearValues();
         profile->addValues(std::make_unique<ext::ConfigEntry::Builder>());
         ext::ConfigStore::Builder(s.model).setActiveProfile(s.day).addProfiles(std::move(profile)).create();
       },
       {"builder-make", "announce", "map-insert"}},
      {"BuilderWithLinks",
       [](Stage& s) {
         runtime::ParamState::Builder builder(s.model);
         builder.setKey(u"built").setCategory(s.category).addTags(s.tag);
         builder.create();
       },
       {"sequence-insert", "set-insert", "record-old-value"}},
      {"Destroy", [](Stage& s) { s.store->destroy(); }, {"teardown", "collection-modifying", "record-old-value"}},
      {"DestroyLinked", [](Stage& s) { s.configuration->destroy(); }, {"teardown", "collection-modifying"}},
      {"Unload", [](Stage& s) { s.model->unload(s.configuration); }, {"teardown"}},
  };
}

INSTANTIATE_TEST_SUITE_P(Each, FailureIn, testing::ValuesIn(works()), [](auto const& work) { return work.param.name; });

}  // namespace

#endif
