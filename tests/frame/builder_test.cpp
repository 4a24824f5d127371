// Builders: a tree in one step, or nothing at all.
#include <gmock/gmock.h>

#include <boost/dynamic_bitset.hpp>
#include <tessel_config_datamodel/expr/BooleanOperationBuilder.hpp>
#include <tessel_config_datamodel/expr/ConditionalOperation.hpp>
#include <tessel_config_datamodel/expr/RefBuilder.hpp>

#include "plinth/ChangeSet.hpp"
#include "plinth/diagnostics/Census.hpp"
#include "plinth/sample_model.hpp"
#include "support/checks.hpp"

using plinth::Value;
using sample::SampleModel;
using sample::data::DoubleParamData;
using sample::ext::ConfigEntry;
using sample::ext::ConfigProfile;
using sample::ext::ConfigStore;
using support::isSound;
using support::raised;
using support::Snapshot;

namespace {

template <class X>
plinth::meta::Property property(char16_t const* name) {
  return plinth::meta::Property(X::metaClass()->findProperty(name));
}

std::unique_ptr<ConfigEntry::Builder> entryBuilder(std::u16string const& key) {
  auto builder = std::make_unique<ConfigEntry::Builder>();
  builder->setKey(key);
  return builder;
}

TEST(Builder, MakesAWholeTreeWithoutANoticeOfModification) {
  auto const model = plinth::Model::create();
  ConfigStore store;
  int told = 0;
  auto const listening = model.addListener([&](plinth::ChangeSet const& changes) {
    ++told;
    EXPECT_EQ(changes.created().size(), 5U);
    EXPECT_TRUE(changes.changed().empty());
  });
  auto entry = entryBuilder(u"volume");
  entry->setData(std::make_unique<DoubleParamData::Builder>());
  EXPECT_TRUE(entry->getData().isEmpty()) << "it is made in the creation, not before";
  auto profile = std::make_unique<ConfigProfile::Builder>();
  profile->setId(u"day").addValues(std::move(entry)).addValues(entryBuilder(u"balance"));
  ConfigStore::Builder builder(model);
  builder.setVersion(7).addProfiles(std::move(profile));
  store = builder.create(sample::nameUuid("built"));
  EXPECT_EQ(told, 1);
  EXPECT_EQ(store->getUuid(), sample::nameUuid("built"));
  EXPECT_EQ(store->getVersion(), 7U);
  auto const made = store->getProfiles()->find(u"day")->getValues()->find(u"volume");
  EXPECT_EQ(plinth::element_cast<DoubleParamData>(made->getData())->getMax(), 2147483647.0);
  EXPECT_TRUE(isSound(model));
  // The builder is as good as new: with another UUID it makes another tree.
  EXPECT_NE(builder.create(), store);
}

TEST(Builder, FillsByReflectionAsByItsOwnSetters) {
  SampleModel s;
  ConfigStore::Builder builder(s.model);
  auto const active = property<ConfigStore>(u"ActiveProfile");
  builder.setOrAdd(property<ConfigStore>(u"Version"),
                   Value::createPrimitiveValue<unsigned long>(property<ConfigStore>(u"Version"), 3));
  builder.setOrAdd(active, Value::createElementValue(active, plinth::ModelElement(s.night)));
  builder.setOrAdd(property<ConfigStore>(u"Profiles"), std::make_unique<ConfigProfile::Builder>());
  EXPECT_EQ(builder.setMask().count(), 3U);
  EXPECT_EQ(builder.setMask().size(), 4U);
  auto const store = builder.create();
  EXPECT_EQ(store->getVersion(), 3U);
  EXPECT_EQ(store->getActiveProfile(), s.night);
  EXPECT_EQ(store->getProfiles()->size(), 1U);
}

TEST(Builder, RefusesWhatDoesNotFitAndSetsNoBit) {
  SampleModel s;
  Snapshot const before(s.model);
  ConfigEntry::Builder builder(s.model);
  auto const key = property<ConfigEntry>(u"Key");
  auto const data = property<ConfigEntry>(u"Data");
  auto const number = Value::createPrimitiveValue<double>(property<DoubleParamData>(u"Value"), 1.0);
  auto const element = Value::createElementValue(data, plinth::ModelElement(s.volume->getData()));
  EXPECT_EQ(raised([&] { builder.setOrAdd(key, number); }), "CannotCastIncompatibleTypes");
  EXPECT_EQ(raised([&] { builder.setOrAdd(property<ConfigStore>(u"Version"), number); }), "NoSuchProperty");
  EXPECT_EQ(raised([&] { builder.setOrAdd({}, number); }), "NoSuchProperty");
  EXPECT_EQ(raised([&] { builder.setOrAdd(data, element); }), "NoSuchProperty") << "a containment takes builders";
  EXPECT_EQ(raised([&] { builder.setOrAdd(data, std::make_unique<ConfigEntry::Builder>()); }),
            "CannotAddIncompatibleTypes");
  EXPECT_EQ(raised([&] { builder.setData(std::make_unique<ConfigEntry::Builder>()); }), "CannotAddIncompatibleTypes");
  EXPECT_EQ(raised([&] { builder.setOrAdd(key, std::make_unique<DoubleParamData::Builder>()); }), "NoSuchProperty");
  EXPECT_EQ(raised([&] { builder.setOrAdd(data, nullptr); }), "NoSuchProperty");
  EXPECT_EQ(raised([&] { s.volume->createIntoData(std::make_unique<ConfigEntry::Builder>()); }),
            "CannotAddIncompatibleTypes");
  EXPECT_EQ(raised([&] { s.volume->createIntoData(std::unique_ptr<DoubleParamData::Builder>()); }),
            "CannotAddNonExistentObject");
  EXPECT_TRUE(builder.setMask().none());
  ConfigStore::Builder store(s.model);
  auto const active = property<ConfigStore>(u"ActiveProfile");
  auto const wrongClass = Value::createElementValue(active, plinth::ModelElement(s.volume));
  EXPECT_EQ(raised([&] { store.setOrAdd(active, wrongClass); }), "CannotCastIncompatibleTypes");
  EXPECT_TRUE(store.setMask().none());
  EXPECT_TRUE(before.isBack());
}

TEST(Builder, ThatFailsWhileCreatingLeavesNothingBehind) {
  SampleModel s;
  auto const other = plinth::Model::create();
  auto const foreign = ConfigProfile::create(other);
  Snapshot const before(s.model);
  auto const census = plinth::census();

  ConfigProfile::Builder twice(s.model);
  twice.addValues(entryBuilder(u"k")).addValues(entryBuilder(u"k"));
  EXPECT_EQ(raised([&] { twice.create(); }), "UniquenessConstraint");
  ConfigStore::Builder crossing(s.model);
  crossing.setActiveProfile(foreign).addProfiles(std::make_unique<ConfigProfile::Builder>());
  EXPECT_EQ(raised([&] { crossing.create(); }), "CannotCreateCrossModelAssociation");
  sample::runtime::ParamState::Builder linked(s.model);
  linked.setCategory(s.category).setKey(u"x");
  EXPECT_EQ(raised([&] { linked.create(s.first->getUuid()); }), "UniquenessConstraint") << "its UUID is taken";
  EXPECT_EQ(raised([&] { s.day->createIntoValues(entryBuilder(u"volume")); }), "UniquenessConstraint");
  EXPECT_EQ(raised([] { ConfigEntry::Builder().create(); }), "CannotCreateWithoutModel");

  EXPECT_TRUE(before.isBack());
  EXPECT_EQ(plinth::surplus(census, plinth::census()).text(), "");
  // The same builder serves once the obstacle is gone.
  crossing.setActiveProfile(s.day);
  EXPECT_TRUE(crossing.create());
}

TEST(Orchestrator, MakesEachElementOnceWithAllItContainsWhicheverBuilderIsAskedFirst) {
  using sample::expr::NumericOperation;
  for (int way = 0; way < 6; ++way) {
    auto const model = plinth::Model::create();
    auto leaf = std::make_unique<NumericOperation::Builder>();
    auto middle = std::make_unique<NumericOperation::Builder>();
    NumericOperation::Builder root(model);
    plinth::ModelElementBuilder* const builders[] = {&root, middle.get(), leaf.get()};
    middle->addOperands(std::move(leaf));
    root.addOperands(std::move(middle));
    plinth::ModelElement made;
    bool const keep = way >= 3;
    {
      plinth::Orchestrator orchestrator(&root);
      orchestrator.addBuilder(builders[way % 3]);
      builders[way % 3]->create();
      made = root.create();
      auto const of = [&](int i) { return orchestrator.getCreatedElement(builders[i]); };
      EXPECT_TRUE(of(0) == made && of(1)->container() == made && of(2)->container() == of(1));
      EXPECT_EQ(plinth::element_cast<NumericOperation>(made)->getOperands()->size(), 1U);
      EXPECT_EQ(model->elementCount(), 3U);
      EXPECT_EQ(keep ? orchestrator.commit() : made, root.create());
    }
    EXPECT_EQ(static_cast<bool>(made), keep);
    EXPECT_EQ(model->elementCount(), keep ? 3U : 0U);
    EXPECT_TRUE(isSound(model));
    EXPECT_NE(root.create(), made) << "of the next run";
  }
}

TEST(Orchestrator, LeavesNothingOfWhatFailsAndLetsGoOfBuildersThatEnd) {
  ConfigEntry::Builder bare;
  EXPECT_EQ(raised([&] { plinth::Orchestrator const orchestrator(&bare); }), "CannotCreateWithoutModel");
  EXPECT_EQ(raised([&] { plinth::Orchestrator const orchestrator(nullptr); }), "CannotAddNonExistentObject");
  SampleModel s;
  Snapshot const before(s.model);
  ConfigProfile::Builder twice(s.model);
  twice.addValues(entryBuilder(u"k")).addValues(entryBuilder(u"k"));
  {
    plinth::Orchestrator orchestrator(&twice);
    EXPECT_EQ(raised([&] { twice.create(); }), "UniquenessConstraint");
    auto inner = s.model.beginTransaction();
    EXPECT_EQ(raised([&] { orchestrator.commit(); }), "TransactionNotInnermost");
    inner.commit();
    EXPECT_FALSE(orchestrator.commit()) << "what was caught has left nothing to keep";
  }
  EXPECT_TRUE(before.isBack());
  ConfigEntry::Builder entry(s.model);
  entry.setData(std::make_unique<DoubleParamData::Builder>());
  auto other = entryBuilder(u"other");
  {
    plinth::Orchestrator orchestrator(&entry);
    orchestrator.addBuilder(other.get());
    auto const made = entry.create();
    entry.setData(std::make_unique<DoubleParamData::Builder>());  // ends the first child's builder
    plinth::Orchestrator inner(&entry);
    EXPECT_TRUE(orchestrator.getCreatedElement(&entry).isEmpty());
    EXPECT_NE(entry.create(), made);
    other.reset();
  }
  EXPECT_TRUE(before.isBack());
}

TEST(Builder, ReplacesAndForgetsChildrenBeforeItIsRun) {
  auto const model = plinth::Model::create();
  ConfigEntry::Builder entry(model);
  entry.setData(std::make_unique<DoubleParamData::Builder>());
  auto second = std::make_unique<DoubleParamData::Builder>();
  second->setValue(2);
  entry.setData(std::move(second));
  auto const made = plinth::element_cast<ConfigEntry>(entry.create());
  EXPECT_EQ(plinth::element_cast<DoubleParamData>(made->getData())->getValue(), 2);
  EXPECT_EQ(model->elementCount(), 2U);
  ConfigProfile::Builder profile(model);
  profile.clearValues();
  profile.addValues(entryBuilder(u"a"));
  profile.clearValues();
  EXPECT_TRUE(plinth::element_cast<ConfigProfile>(profile.create())->getValues()->empty());
}

TEST(Builder, TakesItsModelFromWhoeverCreatesIntoHim) {
  SampleModel s;
  auto const made = s.night->createIntoValues(entryBuilder(u"made"), sample::nameUuid("made"));
  EXPECT_EQ(made->container(), s.night);
  EXPECT_EQ(made->getUuid(), sample::nameUuid("made"));
  EXPECT_EQ(made->getModel(), s.model);
}

TEST(TypeStamp, DependsOnTheWayOfMaking) {
  using namespace sample::expr;
  auto const model = plinth::Model::create();
  EXPECT_EQ(Ref::create(model)->getExprType(), ExprType::REFERENCE);
  EXPECT_EQ(plinth::element_cast<Ref>(Ref::Builder(model).create())->getExprType(), ExprType::REFERENCE);
  Ref::Builder bare;
  bare.setModel(model);
  EXPECT_EQ(plinth::element_cast<Ref>(bare.create())->getExprType(), ExprType::CONSTANT);
  auto const built = plinth::element_cast<BooleanOperation>(BooleanOperation::Builder(model).create());
  EXPECT_EQ(built->getExprType(), ExprType::CONSTANT);
  EXPECT_EQ(built->getStaticType(), ValueType::BOOLEAN);
  auto const created = BooleanOperation::create(model);
  EXPECT_EQ(created->getExprType(), ExprType::OPERATION);
  EXPECT_EQ(created->getStaticType(), ValueType::BOOLEAN);
  EXPECT_EQ(ConditionalOperation::create(model)->getExprType(), ExprType::CONDITIONAL);
  NumericOperation::Builder overruled(model);
  overruled.setStaticType(ValueType::ANY);
  EXPECT_EQ(plinth::element_cast<NumericOperation>(overruled.create())->getStaticType(), ValueType::ANY);
}

}  // namespace
