// What listeners are told: what an outermost commit created, changed and destroyed, with the old values, and no more.
#include <gmock/gmock.h>

#include <boost/dynamic_bitset.hpp>
#include <functional>
#include <tessel_config_datamodel/data/DoubleArrayParamData.hpp>
#include <tessel_config_datamodel/runtime/ProductionState.hpp>

#include "kestrel/Array.hpp"
#include "plinth/ChangeSet.hpp"
#include "plinth/ProxyId.hpp"
#include "plinth/ReferenceCollection.hpp"
#include "plinth/diagnostics/Census.hpp"
#include "plinth/sample_model.hpp"
#include "support/checks.hpp"
#include "tessel_config_datamodel/frame/GeneratedClass.hpp"

using plinth::ChangeSet;
using sample::SampleModel;
using support::isSound;
using support::raised;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

plinth::meta::Property propertyOf(plinth::ModelElement const& element, char16_t const* name) {
  return plinth::meta::Property(element->getMetaClass()->findProperty(name));
}

plinth::Value oldValue(plinth::Storage const& record, char16_t const* name) {
  return record.getOldValue(propertyOf(record.element(), name), plinth::ReflectionPrivateTag::PUBLIC_ACCESS);
}

std::vector<plinth::ModelElement> oldMembers(plinth::Storage const& record, char16_t const* name) {
  plinth::Value value = oldValue(record, name);
  return value.referenceCollection().getAllValuesAndProxies();
}

/// The record of `element`, or null.
plinth::Storage const* recordOf(ChangeSet const& changes, plinth::ModelElement const& element) {
  for (auto const* record : changes.changed()) {
    if (record->element() == element) return record;
  }
  return nullptr;
}

/// The names of the properties that `changes` tells of `element`; "container" for the container link.
std::vector<std::string> changedOf(ChangeSet const& changes, plinth::ModelElement const& element) {
  std::vector<std::string> names;
  auto const* const record = recordOf(changes, element);
  if (record == nullptr) return names;
  for (unsigned long index = 0; index < record->changeBits().size(); ++index) {
    if (!record->isChanged(index)) continue;
    auto const name = index == 0 ? u"container" : element->getPropertyByIndex(index)->getName();
    names.emplace_back(name.begin(), name.end());
  }
  return names;
}

/// Runs `change` in one transaction and hands what was told of it to `check`, exactly once.
template <class Change, class Check>
void tell(plinth::Model const& model, Change const& change, Check const& check) {
  int told = 0;
  auto const listening = model.addListener([&](ChangeSet const& changes) {
    ++told;
    check(changes);
  });
  auto transaction = model.beginTransaction();
  change();
  transaction.commit();
  EXPECT_EQ(told, 1);
  for (auto const& error : model->takeListenerErrors()) {
    EXPECT_EQ(raised([&] { std::rethrow_exception(error); }), "");
  }
  EXPECT_TRUE(isSound(model));
}

TEST(Listener, IsToldWhatWasCreatedChangedAndDestroyed) {
  SampleModel s;
  sample::ext::ConfigProfile created;
  tell(
      s.model,
      [&] {
        created = sample::ext::ConfigProfile::create(s.model);
        created->setId(u"new");
        s.store->getProfiles()->insert(created);
        s.night->destroy();
        sample::ext::ConfigProfile::create(s.model)->destroy();
        s.first->setDirty(true);
        s.volume->destroy();
      },
      [&](ChangeSet const& changes) {
        EXPECT_THAT(changes.created(), ElementsAre(created));
        EXPECT_EQ(changes.destroyed().size(), 3U) << "the profile, and the entry with its data";
        EXPECT_THAT(changes.destroyed(),
                    testing::IsSupersetOf({plinth::ModelElement(s.night), plinth::ModelElement(s.volume)}));
        EXPECT_THAT(changedOf(changes, s.store), ElementsAre("Profiles"));
        EXPECT_THAT(changedOf(changes, s.first), ElementsAre("Dirty"));
        EXPECT_THAT(changedOf(changes, s.day), ElementsAre("Values"));
        EXPECT_EQ(changes.changed().size(), 3U);
        EXPECT_THAT(oldMembers(*recordOf(changes, s.store), u"Profiles"), ElementsAre(s.day, s.night));
      });
}

TEST(Listener, ReadsOldValuesOfEveryKindWhileTheModelHoldsTheNew) {
  SampleModel s;
  auto const real = plinth::element_cast<sample::data::DoubleParamData>(s.volume->getData());
  auto const array = sample::data::DoubleArrayParamData::create(s.model);
  array->getValue()->assign({1, 2, 3});
  auto const production = sample::runtime::ProductionState::create(s.model);
  production->setProduction(kestrel::createScalar(7.0).get());
  auto const spare = sample::data::DoubleParamData::create(s.model);
  tell(
      s.model,
      [&] {
        {
          auto inner = s.model.beginTransaction();
          real->setValue(1);
          array->getValue()->push_back(4);
          inner.commit();
        }
        real->setValue(2);
        real->setName(std::u16string(u"loud"));
        array->getValue()->erase(array->getValue()->begin());
        production->setProduction(nullptr);
        s.store->setActiveProfile(s.night);
        s.balance->setData(spare);
        s.sum->getOperands()->remove(s.left);
        s.sum->getOperands()->add(s.left);
        s.second->setCategory({});
        s.day->getValues()->remove(s.volume);
        s.tag->getTagged()->add(s.second);
      },
      [&](ChangeSet const& changes) {
        EXPECT_EQ(oldValue(*recordOf(changes, real), u"Value").getValue<double>(), 3.5);
        EXPECT_FALSE(oldValue(*recordOf(changes, real), u"Name").getValue<boost::optional<std::u16string>>());
        plinth::Value values = oldValue(*recordOf(changes, array), u"Value");
        EXPECT_THAT(values.getValue<std::vector<double>>(), ElementsAre(1, 2, 3));
        auto const old = oldValue(*recordOf(changes, production), u"Production").getValue<tessel::frame::HostArray>();
        EXPECT_EQ(kestrel::elementAsDouble(*old.get()), 7.0);
        EXPECT_EQ(oldValue(*recordOf(changes, s.store), u"ActiveProfile").getValue<plinth::ModelElement>(), s.day);
        EXPECT_NE(oldValue(*recordOf(changes, s.balance), u"Data").getValue<plinth::ModelElement>(), spare);
        EXPECT_THAT(oldMembers(*recordOf(changes, s.sum), u"Operands"), ElementsAre(s.left, s.right));
        EXPECT_THAT(oldMembers(*recordOf(changes, s.category), u"Contents"), ElementsAre(s.first, s.second));
        EXPECT_THAT(oldMembers(*recordOf(changes, s.day), u"Values"), ElementsAre(s.balance, s.volume));
        EXPECT_THAT(oldMembers(*recordOf(changes, s.tag), u"Tagged"), UnorderedElementsAre(s.first));
        EXPECT_EQ(recordOf(changes, s.volume)->oldContainer(), s.day);
        EXPECT_EQ(raised([&] { oldValue(*recordOf(changes, s.store), u"Version"); }), "NoSuchProperty")
            << "it did not change";
        EXPECT_EQ(real->getValue(), 2);
        EXPECT_FALSE(s.day->getValues()->contains(s.volume));
      });
}

TEST(Listener, IsNotToldOfWhatCameBackToItsOldValue) {
  SampleModel s;
  int told = 0;
  auto const listening = s.model.addListener([&](ChangeSet const&) { ++told; });
  auto const array = kestrel::createScalar(1.0);
  {
    auto transaction = s.model.beginTransaction();
    s.store->setVersion(5);
    s.store->setVersion(0);
    s.sum->setValue(2);
    s.sum->setValue(-0.0);
    s.day->setName(u"x");
    s.day->setName(u"");
    s.store->setActiveProfile(s.night);
    s.store->setActiveProfile(s.day);
    auto const entry = s.night->createIntoValues(std::make_unique<sample::ext::ConfigEntry::Builder>());
    entry->destroy();
    s.tag->getTagged()->remove(s.first);  // one member at both ends
    s.tag->getTagged()->add(s.first);
    sample::ext::ConfigProfile::create(s.model)->destroy();
    transaction.commit();
  }
  EXPECT_EQ(told, 0);
}

TEST(Listener, IsToldOfCollectionsOfTwoAndOfArraysAndNaNsEvenIfEqual) {
  SampleModel s;
  auto const production = sample::runtime::ProductionState::create(s.model);
  auto const array = kestrel::createScalar(1.0);
  production->setProduction(array.get());
  auto const data = sample::data::DoubleArrayParamData::create(s.model);
  data->getValue()->push_back(1);
  double const nan = std::numeric_limits<double>::quiet_NaN();
  s.sum->setValue(nan);
  tell(
      s.model,
      [&] {
        s.day->getValues()->remove(s.volume);
        s.day->getValues()->insert(s.volume);
        production->setProduction(nullptr);
        production->setProduction(array.get());
        s.sum->setValue(nan);
        data->getValue()->clear();
        data->getValue()->push_back(1);
      },
      [&](ChangeSet const& changes) {
        EXPECT_THAT(changedOf(changes, s.day), ElementsAre("Values"));
        EXPECT_THAT(changedOf(changes, s.volume), IsEmpty()) << "its container is what it was";
        EXPECT_THAT(changedOf(changes, production), ElementsAre("Production"));
        EXPECT_THAT(changedOf(changes, s.sum), ElementsAre("Value"));
        EXPECT_THAT(changedOf(changes, data), ElementsAre("Value")) << "values revert only when empty at both ends";
      });
  tell(
      s.model, [&] { s.night->getValues()->insert(s.volume); },
      [&](ChangeSet const& changes) {
        EXPECT_THAT(oldMembers(*recordOf(changes, s.night), u"Values"), IsEmpty());
        EXPECT_THAT(oldMembers(*recordOf(changes, s.night), u"Values"), IsEmpty()) << "the same answer again";
        EXPECT_THAT(changedOf(changes, s.volume), ElementsAre("container"));
      });
}

TEST(Listener, IsToldOfCollectionsThatWereChangedHoweverTheyCameBack) {
  SampleModel s;
  auto const data = sample::data::DoubleArrayParamData::create(s.model);
  auto& values = *data->getValue();
  auto& operands = *s.sum->getOperands();
  auto const extra = sample::expr::NumericConstant::create(s.model);
  values.push_back(1);
  auto const forth = [&] {
    values.push_back(2);
    operands.add(extra);
  };
  auto const forthAndBack = [&] {
    forth();
    values.erase(values.begin() + 1);
    operands.erase(2);
  };
  auto const within = [&](auto const& change, bool commits) {
    auto inner = s.model.beginTransaction();
    change();
    if (commits) inner.commit();
  };
  std::vector<std::function<void()>> const ways{
      forthAndBack,
      [&] { within(forthAndBack, true); },
      [&] {
        forthAndBack();
        within(forth, false);
      },
      [&] {
        within(forthAndBack, true);
        within(forthAndBack, false);
      },
  };
  for (auto const& way : ways) {
    tell(s.model, way, [&](ChangeSet const& changes) {
      EXPECT_THAT(changedOf(changes, data), ElementsAre("Value"));
      EXPECT_THAT(changedOf(changes, s.sum), ElementsAre("Operands"));
    });
  }
  support::CommitCount commits(s.model);
  {
    auto transaction = s.model.beginTransaction();
    within(forthAndBack, false);
    transaction.commit();
  }
  EXPECT_EQ(commits.take(), 0);
}

TEST(Listener, OldValuesOutlastChangesThatItMakesToTheSameCollections) {
  SampleModel s;
  bool told = false;
  auto const listening = s.model.addListener([&](ChangeSet const& changes) {
    if (std::exchange(told, true)) return;
    auto const* const second = recordOf(changes, s.second);
    s.day->getValues()->clear();
    s.second->getTags()->clear();
    s.sum->destroy();
    EXPECT_THAT(oldMembers(*recordOf(changes, s.day), u"Values"), ElementsAre(s.balance, s.volume));
    EXPECT_THAT(oldMembers(*second, u"Tags"), IsEmpty());
    EXPECT_THAT(oldMembers(*recordOf(changes, s.sum), u"Operands"), ElementsAre(s.left, s.right));
    EXPECT_THAT(oldMembers(*recordOf(changes, s.tag), u"Tagged"), UnorderedElementsAre(s.first));
  });
  auto transaction = s.model.beginTransaction();
  s.day->getValues()->remove(s.volume);
  s.sum->getOperands()->remove(s.left);
  s.tag->getTagged()->add(s.second);
  transaction.commit();
  EXPECT_TRUE(told);
  EXPECT_THAT(s.model->takeListenerErrors(), IsEmpty());
  EXPECT_TRUE(isSound(s.model));
}

TEST(Listener, MayThrowAndTheCommitStands) {
  SampleModel s;
  int told = 0;
  auto const before = s.model.addListener([&](ChangeSet const&) { ++told; });
  auto const throwing = s.model.addListener(
      [&](ChangeSet const&) { throw std::runtime_error("version " + std::to_string(s.store->getVersion())); });
  auto const after = s.model.addListener([&](ChangeSet const&) { ++told; });
  s.store->setVersion(1);
  EXPECT_EQ(told, 2);
  EXPECT_EQ(s.store->getVersion(), 1U);
  auto const errors = s.model->takeListenerErrors();
  ASSERT_EQ(errors.size(), 1U);
  EXPECT_EQ(raised([&] { std::rethrow_exception(errors.front()); }), "version 1");
  EXPECT_THAT(s.model->takeListenerErrors(), IsEmpty());
  EXPECT_EQ(s.model->listenerErrorCount(), 0U);
  for (unsigned version = 2; version < 50; ++version) s.store->setVersion(version);
  EXPECT_EQ(s.model->listenerErrorCount(), 48U);
  auto const last = s.model->takeListenerErrors();
  ASSERT_EQ(last.size(), plinth::ModelImpl::KEPT_LISTENER_ERRORS);
  EXPECT_EQ(raised([&] { std::rethrow_exception(last.front()); }), "version 34");
  EXPECT_EQ(raised([&] { std::rethrow_exception(last.back()); }), "version 49");
}

TEST(Listener, MayOpenTransactionsThatAreToldAfterwardsInOrder) {
  SampleModel s;
  std::vector<std::string> order;
  auto const first = s.model.addListener([&](ChangeSet const&) {
    auto const version = s.store->getVersion();
    order.push_back("first at " + std::to_string(version));
    if (version < 3) s.store->setVersion(version + 1);
    auto const transaction = s.model.beginTransaction();
    s.store->setVersion(99);  // taken back, and told to nobody
  });
  auto const second = s.model.addListener([&](ChangeSet const& changes) {
    auto const old = oldValue(*recordOf(changes, s.store), u"Version").getValue<unsigned long>();
    order.push_back("second, was " + std::to_string(old));
  });
  s.store->setVersion(1);
  EXPECT_THAT(order,
              ElementsAre("first at 1", "second, was 0", "first at 2", "second, was 1", "first at 3", "second, was 2"));
  EXPECT_TRUE(isSound(s.model));
}

TEST(Listener, MayUnregisterItselfAndOthersAndRegisterNewOnes) {
  SampleModel s;
  std::vector<int> told;
  plinth::ListenerRegistration own;
  plinth::ListenerRegistration other;
  plinth::ListenerRegistration fresh;
  own = s.model.addListener([&, kept = std::make_shared<int>(1)](ChangeSet const&) {
    told.push_back(*kept);
    own.reset();
    other.reset();
    fresh = s.model.addListener([&](ChangeSet const&) { told.push_back(3); });
    told.push_back(*kept);  // what it captured is still there
  });
  other = s.model.addListener([&](ChangeSet const&) { told.push_back(2); });
  s.store->setVersion(1);
  EXPECT_THAT(told, ElementsAre(1, 1));
  s.store->setVersion(2);
  EXPECT_THAT(told, ElementsAre(1, 1, 3));
}

TEST(Listener, ReadsRecordsOfElementsThatItDestroysWhenNobodyListensAnyMore) {
  auto const model = plinth::Model::create();
  auto const census = plinth::census();
  auto store = sample::ext::ConfigStore::create(model);
  auto const profile = store->createIntoProfiles(std::make_unique<sample::ext::ConfigProfile::Builder>());
  auto const uuid = store->getUuid();
  plinth::ListenerRegistration own;
  own = model.addListener([&](ChangeSet const& changes) {
    own.reset();
    model->findElement(uuid, plinth::FindElementBehavior::IN_MEMORY)->destroy();
    for (auto const* record : changes.changed()) EXPECT_FALSE(record->element());
    auto const* const record = changes.changed().front();
    EXPECT_EQ(record->element()->getUuid(), uuid);
    EXPECT_EQ(oldMembers(*record, u"Profiles").size(), 1U);
  });
  auto transaction = model.beginTransaction();
  auto const added = sample::ext::ConfigProfile::create(model);
  added->setId(u"added");
  std::exchange(store, {})->getProfiles()->insert(added);
  transaction.commit();
  EXPECT_EQ(own, nullptr);
  EXPECT_THAT(model->takeListenerErrors(), IsEmpty());
  EXPECT_EQ(model->elementCount(), 0U);
  EXPECT_EQ(plinth::surplus(census, plinth::census()).others, 2U) << "the profiles that this test holds";
}

TEST(Listener, IsFreedWithItsRegistration) {
  auto const census = plinth::census();
  {
    auto const model = plinth::Model::create();
    auto const store = sample::ext::ConfigStore::create(model);
    auto captured = std::make_shared<int>(0);
    auto idle = model.addListener([captured, model](ChangeSet const&) {});
    std::weak_ptr<void> const watched = idle;  // holds no listener
    idle.reset();
    EXPECT_EQ(captured.use_count(), 1);
    // Removed while they are told: gone when the telling is over, what only they held included.
    plinth::ListenerRegistration own;
    plinth::ListenerRegistration next;
    plinth::ListenerRegistration nested = model.addListener([captured](ChangeSet const&) {});
    own = model.addListener([&, captured, model](ChangeSet const&) {
      own.reset();
      next.reset();
      EXPECT_EQ(captured.use_count(), 4) << "the function is running";
    });
    next = model.addListener([captured, nested = std::move(nested)](ChangeSet const&) { ++*captured; });
    store->setVersion(1);
    EXPECT_EQ(captured.use_count(), 1);
    EXPECT_EQ(*captured, 0) << "one that was removed is not told";
    EXPECT_TRUE(model->isUnobserved());
  }
  {
    // The function holds the only handles, its own registration's among them.
    auto model = plinth::Model::create();
    auto own = std::make_shared<plinth::ListenerRegistration>();
    *own = model.addListener([own, model](ChangeSet const&) { own->reset(); });
    static_cast<void>(sample::ext::ConfigStore::create(std::exchange(model, {})));
  }
  EXPECT_EQ(plinth::surplus(census, plinth::census()).text(), "");
}

TEST(Listener, IsNotToldOfCommitsThatCameBeforeIt) {
  SampleModel s;
  std::vector<unsigned long> versions;
  plinth::ListenerRegistration late;
  auto const early = s.model.addListener([&](ChangeSet const&) {
    if (late != nullptr) return;
    s.store->setVersion(2);  // waits to be told
    late = s.model.addListener([&](ChangeSet const&) { versions.push_back(s.store->getVersion()); });
    s.store->setVersion(3);
  });
  s.store->setVersion(1);
  EXPECT_THAT(versions, ElementsAre(3));
  s.store->setVersion(4);
  EXPECT_THAT(versions, ElementsAre(3, 4));
}

TEST(Listener, IsToldOfProxiesWhateverTheSetOrMapHolds) {
  SampleModel s;
  auto const proxy = [&](plinth::meta::Class const& metaClass, char16_t const* name) {
    return s.model->createProxy(metaClass, plinth::ProxyId{metaClass->getQualifiedName(), name, boost::none});
  };
  auto const entry = [&](char16_t const* name) { return proxy(sample::ext::ConfigEntry::metaClass(), name); };
  auto const param = proxy(sample::runtime::ParamState::metaClass(), u"p");
  auto const empty = sample::runtime::PerspectiveState::create(s.model);
  tell(
      s.model,
      [&] {
        s.night->getValues()->addProxy(entry(u"one"));
        s.day->getValues()->addProxy(entry(u"one"));
        empty->getMembers()->addProxy(param);
        s.tag->getTagged()->addProxy(param);
      },
      [&](ChangeSet const& changes) {
        EXPECT_THAT(changedOf(changes, s.night), ElementsAre("Values"));
        EXPECT_THAT(oldMembers(*recordOf(changes, s.night), u"Values"), IsEmpty());
        EXPECT_THAT(changedOf(changes, s.day), ElementsAre("Values"));
        EXPECT_THAT(changedOf(changes, empty), ElementsAre("Members"));
        EXPECT_THAT(changedOf(changes, s.tag), ElementsAre("Tagged"));
      });
  int told = 0;
  auto const listening = s.model.addListener([&](ChangeSet const&) { ++told; });
  auto transaction = s.model.beginTransaction();
  auto const another = entry(u"two");
  s.night->getValues()->addProxy(another);
  s.night->getValues()->removeProxy(another);
  empty->getMembers()->removeProxy(param);
  empty->getMembers()->addProxy(param);
  transaction.commit();
  EXPECT_EQ(told, 0) << "the same proxies as before";
}

TEST(Listener, MayDropTheLastHandleOfTheModel) {
  for (bool const destroys : {false, true}) {
    auto model = plinth::Model::create();
    auto const store = sample::ext::ConfigStore::create(model);
    auto const other = sample::ext::ConfigStore::create(model);
    std::size_t changed = 0;
    auto const listening = model.addListener([&](ChangeSet const& changes) {
      model = plinth::Model();
      EXPECT_TRUE(store) << "it lives until all have been told";
      changed = changes.changed().size() + changes.destroyed().size();
    });
    destroys ? other->destroy() : store->setVersion(1);
    EXPECT_EQ(changed, 1U);
    EXPECT_FALSE(store);
  }
}

}  // namespace
