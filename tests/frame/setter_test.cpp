// Setters of each kind: what they refuse and in which order, what they take for no change, and what they leave.
#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <tessel_config_datamodel/data/StringArrayParamData.hpp>
#include <tessel_config_datamodel/runtime/Metadata.hpp>
#include <tessel_config_datamodel/runtime/ProductionState.hpp>

#include "kestrel/Array.hpp"
#include "plinth/ProxyId.hpp"
#include "plinth/sample_model.hpp"
#include "support/checks.hpp"
#include "tessel_config_datamodel/frame/Attribute.hpp"

using sample::SampleModel;
using support::basicSet;
using support::CommitCount;
using support::isSound;
using support::raised;
using support::Snapshot;

namespace {

/// What one call did, told by the outermost commits and, inside a transaction, by the undo that was written.
template <class Call>
bool changesNothing(plinth::Model const& model, Call const& call) {
  CommitCount commits(model);
  call();
  if (commits.take() != 0) return false;
  auto const transaction = model.beginTransaction();
  std::size_t const before = model->undoSize();
  call();
  return model->undoSize() == before;
}

TEST(Setter, OfTheValueThatIsThereOpensNothingAndTellsNobody) {
  SampleModel s;
  auto const array = kestrel::createScalar(1.5);
  auto const production = sample::runtime::ProductionState::create(s.model);
  production->setProduction(array.get());
  auto const text = sample::data::StringArrayParamData::create(s.model);
  text->setMaxLength(3U);
  s.first->setCategory(s.category);
  std::vector<std::function<void()>> const calls{
      [&] { s.store->setVersion(s.store->getVersion()); },
      [&] { s.day->setName(u""); },
      [&] { s.sum->setValue(-0.0); },
      [&] { s.sum->setOperator(sample::expr::Operator::EQ); },
      [&] { text->setMaxLength(3U); },
      [&] { text->setMinLength(boost::none); },
      [&] { text->setName(boost::none); },
      [&] { production->setProduction(production->getProduction()); },
      [&] { s.store->setActiveProfile(s.day); },
      [&] { s.first->setCategory(s.category); },
      [&] { s.volume->setData(s.volume->getData()); },
      [&] { s.volume->setKey(u"volume"); },
      [&] { s.first->setKey(u"first"); },
      [&] { s.day->getValues()->insert(s.volume); },
      [&] { s.category->getContents()->add(s.first); },
      [&] { s.perspective->getMembers()->add(s.first); },
      [&] { s.perspective->getMembers()->remove(s.first), s.perspective->getMembers()->add({}); },
  };
  for (std::size_t i = 0; i + 1 < calls.size(); ++i) EXPECT_TRUE(changesNothing(s.model, calls[i])) << "call " << i;
  EXPECT_FALSE(changesNothing(s.model, calls.back()));
}

/// A value of two parts whose copies fail after the first part, once it is armed.
struct TwoParts {
  struct Second {
    Second() = default;
    Second(Second const& other) : number(other.number) { fail(); }
    Second(Second&&) noexcept = default;
    Second& operator=(Second const& other) {
      fail();
      number = other.number;
      return *this;
    }
    Second& operator=(Second&&) noexcept = default;
    static void fail() {
      if (isArmed) throw std::bad_alloc();
    }
    int number = 0;
    static inline bool isArmed = false;
  };
  int first = 0;
  Second second;
  friend bool operator==(TwoParts const& left, TwoParts const& right) {
    return left.first == right.first && left.second.number == right.second.number;
  }
};

TEST(Setter, StoresAValueOfSeveralPartsAsAWholeOrNotAtAll) {
  SampleModel s;
  tessel::frame::Element& store = *s.store.impl();
  auto const& version = *sample::ext::ConfigStore::metaClass()->findProperty(u"Version");
  auto const& row = *tessel::frame::findDescriptor(store.classTable(), version);
  TwoParts field;
  TwoParts value;
  value.first = value.second.number = 1;
  auto const set = [&] { tessel::frame::setAttribute(store, field, value, row); };
  TwoParts::Second::isArmed = true;
  EXPECT_THROW(set(), std::bad_alloc);
  {
    auto outer = s.model.beginTransaction();
    EXPECT_THROW(set(), std::bad_alloc);
    outer.commit();
  }
  TwoParts::Second::isArmed = false;
  EXPECT_TRUE(field == TwoParts());
  set();
  EXPECT_TRUE(field == value);
}

TEST(Setter, TakesForAChangeWhatMayBeOne) {
  SampleModel s;
  CommitCount commits(s.model);
  double const nan = std::numeric_limits<double>::quiet_NaN();
  s.sum->setValue(nan);
  s.sum->setValue(nan);
  EXPECT_EQ(commits.take(), 2) << "a NaN is never the same";
  auto const text = sample::data::StringArrayParamData::create(s.model);
  text->setName(std::u16string());
  EXPECT_TRUE(text->getName().has_value());
  EXPECT_EQ(commits.take(), 2) << "an empty text is not an absent one";

  auto const production = sample::runtime::ProductionState::create(s.model);
  auto const array = kestrel::createScalar(1.5);
  production->setProduction(array.get());
  EXPECT_NE(production->getProduction(), array.get()) << "the element holds a copy";
  EXPECT_TRUE(kestrel::equalContents(production->getProduction(), array.get()));
  commits.take();
  production->setProduction(array.get());
  EXPECT_EQ(commits.take(), 1) << "arrays are compared by pointer";
  production->setProduction(nullptr);
  EXPECT_EQ(production->getProduction(), nullptr);
  EXPECT_EQ(commits.take(), 1);
  production->setProduction(nullptr);
  EXPECT_EQ(commits.take(), 0);
}

TEST(Setter, RefusesWithNothingChangedAndNoTransactionBegun) {
  SampleModel s;
  auto const other = plinth::Model::create();
  auto const foreignProfile = sample::ext::ConfigProfile::create(other);
  auto const foreignCategory = sample::runtime::CategoryState::create(other);
  auto const foreignData = sample::data::DoubleParamData::create(other);
  auto const dead = sample::ext::ConfigProfile::create(s.model);
  dead->destroy();
  s.sum->getOperands()->add(sample::expr::NumericOperation::create(s.model, sample::nameUuid("inner")));
  auto const inner = plinth::element_cast<sample::expr::NumericOperation>(s.sum->getOperands()->at(2));
  Snapshot const before(s.model);
  CommitCount commits(s.model);
  struct Refusal {
    std::function<void()> call;
    char const* key;
  };
  std::vector<Refusal> const refusals{
      {[&] { s.store->setActiveProfile(foreignProfile); }, "CannotCreateCrossModelAssociation"},
      {[&] { s.first->setCategory(foreignCategory); }, "CannotCreateCrossModelAssociation"},
      {[&] { s.volume->setData(foreignData); }, "CannotCreateCrossModelAssociation"},
      {[&] { s.store->getProfiles()->insert(foreignProfile); }, "CannotCreateCrossModelAssociation"},
      {[&] { s.store->setActiveProfile(dead); }, "CannotAddNonExistentObject"},
      {[&] { s.store->getProfiles()->insert(dead); }, "CannotAddNonExistentObject"},
      {[&] { inner->getOperands()->add(s.sum); }, "CannotContainAncestor"},
      {[&] { s.sum->getOperands()->add(s.sum); }, "CannotContainAncestor"},
      {[&] { s.volume->setKey(u"balance"); }, "UniquenessConstraint"},
      {[&] { s.second->setKey(u"first"); }, "UniquenessConstraint"},
      {[&] { s.night->setId(u"day"); }, "UniquenessConstraint"},
      {[&] { dead->setId(u"x"); }, "CannotModifyDestroyedElement"},
      {[&] { core(*s.sum).basicSetContainer(s.store.impl(), nullptr, 0); }, "CannotModifyOutsideTransaction"},
  };
  for (auto const& refusal : refusals) {
    EXPECT_EQ(raised(refusal.call), refusal.key);
    EXPECT_EQ(s.model->level(), 0U);
  }
  EXPECT_EQ(commits.take(), 0);
  EXPECT_TRUE(before.isBack());
}

TEST(Setter, ChecksForAProxyFirstAndForASubclassQualifierLast) {
  SampleModel s;
  auto const id = s.first->getPersistentProxyId(true);
  auto const proxy = plinth::element_cast<sample::runtime::ParamState>(
      s.model->createProxy(sample::runtime::ParamState::metaClass(), id));
  auto const entry = plinth::element_cast<sample::ext::ConfigEntry>(
      s.model->createProxy(sample::ext::ConfigEntry::metaClass(), s.volume->getPersistentProxyId(true)));
  EXPECT_TRUE(proxy && proxy->isProxy());
  EXPECT_EQ(raised([&] { proxy->setDirty(false); }), "CannotModifyProxy") << "even a value that is there";
  EXPECT_EQ(raised([&] { proxy->setCategory({}); }), "CannotModifyProxy");
  EXPECT_EQ(raised([&] { proxy->setData({}); }), "CannotModifyProxy");
  EXPECT_EQ(raised([&] { return proxy->getMetadata(); }), "CannotModifyProxy");
  EXPECT_EQ(raised([&] { entry->setKey(u""); }), "CannotModifyProxy");
  EXPECT_EQ(raised([&] { proxy->setKey(u"x"); }), "CannotModifyProxy") << "the base's check decides";
  EXPECT_EQ(raised([&] { proxy->setKey(u""); }), "") << "the no-change test comes first";
  EXPECT_EQ(raised([&] { proxy->destroy(); }), "CannotModifyProxy");
  EXPECT_EQ(raised([&] { entry->createIntoData(std::make_unique<sample::data::DoubleParamData::Builder>()); }),
            "CannotModifyProxy");
  EXPECT_EQ(entry->getKey(), u"") << "attributes of a proxy stand at their defaults";
  EXPECT_TRUE(proxy->getInPerspective());
  EXPECT_TRUE(proxy->getProxyId() == id);
  EXPECT_FALSE(s.first->getProxyId());
  EXPECT_EQ(s.model->level(), 0U);
}

TEST(ContainmentSetter, MovesTheChildAndLetsTheFormerOneGo) {
  SampleModel s;
  auto const data = s.volume->getData();
  auto const former = s.balance->getData();
  s.balance->setData(data);
  EXPECT_EQ(data->container(), s.balance);
  EXPECT_FALSE(s.volume->hasData()) << "a child has one container";
  EXPECT_TRUE(former) << "not destroyed, only let go";
  EXPECT_FALSE(former->container());
  s.first->setData(data);
  s.first->setDefault(data);
  EXPECT_FALSE(s.first->hasData()) << "nor stands it in two properties";
  EXPECT_EQ(data->containmentFeature()->getName(), u"Default");
  s.first->setDefault({});
  EXPECT_TRUE(data);
  EXPECT_FALSE(data->container());
  EXPECT_TRUE(isSound(s.model));
}

TEST(QualifierSetter, KeepsTheMapsOfTheContainerSound) {
  SampleModel s;
  s.volume->setKey(u"zzz");
  EXPECT_FALSE(s.day->getValues()->find(u"volume"));
  EXPECT_EQ(s.day->getValues()->find(u"zzz"), s.volume);
  EXPECT_EQ(std::vector<std::u16string>(s.day->getValues()->keys()), (std::vector<std::u16string>{u"balance", u"zzz"}));
  auto const free = sample::ext::ConfigEntry::create(s.model);
  free->setKey(u"zzz");  // in no map: any key is good
  s.night->getValues()->insert(free);
  EXPECT_EQ(s.volume->container(), s.day);

  auto const metadata = sample::runtime::Metadata::create(s.model);
  auto const sibling = sample::runtime::Metadata::create(s.model);
  auto const elsewhere = sample::runtime::Metadata::create(s.model);
  metadata->setProperty(u"a");
  sibling->setProperty(u"b");
  elsewhere->setProperty(u"a");
  s.first->getMetadata()->insert(metadata);
  s.first->getMetadata()->insert(sibling);
  s.tag->getMetadata()->insert(elsewhere);
  EXPECT_EQ(raised([&] { sibling->setProperty(u"a"); }), "UniquenessConstraint");
  elsewhere->setProperty(u"b");  // the same name in another map is no conflict
  metadata->setProperty(u"c");
  EXPECT_EQ(s.first->getMetadata()->keys(), (std::vector<std::u16string>{u"b", u"c"}));
  EXPECT_TRUE(isSound(s.model));
}

TEST(QualifierSetter, IsNotBlockedByADeadEntry) {
  SampleModel s;
  auto const stray = sample::ext::ConfigEntry::create(s.model);
  stray->setKey(u"stray");
  core(*s.night)._basicAdd(s.night->getValues(), stray);  // held, but not contained: it dies without leaving the map
  stray->destroy();
  auto const entry = sample::ext::ConfigEntry::create(s.model);
  entry->setKey(u"entry");
  s.night->getValues()->insert(entry);
  EXPECT_EQ(raised([&] { entry->setKey(u"stray"); }), "") << "the check lets it pass";
}

TEST(OppositeSetter, KeepsBothEndsAndTheOrderOfTheOthers) {
  SampleModel s;
  auto const other = sample::runtime::CategoryState::create(s.model);
  auto const third = sample::runtime::ParamState::create(s.model);
  s.category->getContents()->add(third);
  EXPECT_EQ(third->getCategory(), s.category);
  s.second->setCategory(other);
  EXPECT_THAT(s.category->getContents()->getAllValues(), testing::ElementsAre(s.first, third));
  EXPECT_THAT(other->getContents()->getAllValues(), testing::ElementsAre(s.second));
  other->getContents()->add(s.first);
  EXPECT_EQ(s.first->getCategory(), other);
  EXPECT_THAT(s.category->getContents()->getAllValues(), testing::ElementsAre(third));
  third->setCategory({});
  EXPECT_TRUE(s.category->getContents()->empty());
  s.tag->getTagged()->add(s.second);
  EXPECT_TRUE(s.second->getTags()->contains(s.tag));
  s.tag->getTagged()->clear();
  EXPECT_FALSE(s.first->hasTags() || s.second->hasTags());
  EXPECT_TRUE(isSound(s.model));
}

TEST(Getter, KeepsADeadTargetOfItsModelAndDropsOneOfAnother) {
  SampleModel s;
  s.store->setActiveProfile(s.night);
  s.night->destroy();
  EXPECT_EQ(s.store->getActiveProfile(), s.night);
  EXPECT_FALSE(s.store->getActiveProfile());
  EXPECT_FALSE(s.store->hasActiveProfile());
  auto const other = plinth::Model::create();
  auto const foreign = sample::ext::ConfigProfile::create(other);
  basicSet(s.store, u"ActiveProfile", foreign);
  EXPECT_EQ(s.store->getActiveProfile(), foreign);
  foreign->destroy();
  EXPECT_TRUE(s.store->getActiveProfile().isEmpty());
}

}  // namespace
