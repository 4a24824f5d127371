// Transactions: nested at will, each taken back exactly, whatever it did.
#include <gmock/gmock.h>

#include <array>
#include <functional>
#include <random>

#include "plinth/ChangeSet.hpp"
#include "plinth/ElementDirectory.hpp"
#include "plinth/Freezer.hpp"
#include "plinth/Query.hpp"
#include "plinth/sample_model.hpp"
#include "support/checks.hpp"

using sample::SampleModel;
using support::isSound;
using support::raised;
using support::Snapshot;

namespace {

using Random = std::mt19937;

/// One step that a user could take; it may be refused.
using Move = std::function<void(SampleModel&, Random&)>;

template <class T, std::size_t N>
T const& pick(std::array<T, N> const& choices, Random& random) {
  return choices[random() % N];
}

std::u16string const& randomKey(Random& random) {
  static std::array<std::u16string, 5> const keys{u"volume", u"balance", u"a", u"b", u""};
  return pick(keys, random);
}

/// One of the elements of the class, a new one if there is none.
template <class T>
T anyOf(plinth::Model const& model, Random& random) {
  auto const& all = model->directory().elementsOf(*T::metaClass().impl());
  return all.empty() ? T::create(model) : T(static_cast<typename T::Impl*>(all[random() % all.size()]));
}

std::vector<Move> const& moves() {
  namespace runtime = sample::runtime;
  static std::vector<Move> const all{
      [](SampleModel& s, Random& r) { s.store->setVersion(r() % 4); },
      [](SampleModel& s, Random& r) { s.sum->setValue(static_cast<double>(r() % 3)); },
      [](SampleModel& s, Random& r) { s.volume->setKey(randomKey(r)); },
      [](SampleModel& s, Random& r) { (r() % 2 == 0 ? s.day : s.night)->getValues()->insert(s.volume); },
      [](SampleModel& s, Random& r) { anyOf<sample::ext::ConfigEntry>(s.model, r)->setData({}); },
      [](SampleModel& s, Random& r) {
        anyOf<sample::ext::ConfigEntry>(s.model, r)
            ->createIntoData(std::make_unique<sample::data::DoubleParamData::Builder>());
      },
      [](SampleModel& s, Random& r) {
        s.store->setActiveProfile(r() % 2 == 0 ? s.night : sample::ext::ConfigProfile());
      },
      [](SampleModel& s, Random& r) {
        auto const made = runtime::CategoryState::create(s.model);
        s.configuration->getCategories()->insert(r() % (s.configuration->getCategories()->size() + 1), made);
      },
      [](SampleModel& s, Random& r) { s.first->setCategory(anyOf<runtime::CategoryState>(s.model, r)); },
      [](SampleModel& s, Random& r) { anyOf<runtime::CategoryState>(s.model, r)->getContents()->add(s.second); },
      [](SampleModel& s, Random& r) { anyOf<runtime::CategoryState>(s.model, r)->getParams()->clear(); },
      [](SampleModel& s, Random& r) { anyOf<runtime::ParamState>(s.model, r)->getTags()->add(s.tag); },
      [](SampleModel& s, Random& r) { s.tag->getTagged()->remove(anyOf<runtime::ParamState>(s.model, r)); },
      [](SampleModel& s, Random&) { s.perspective->getMembers()->clear(); },
      [](SampleModel& s, Random& r) { s.perspective->getMembers()->add(anyOf<runtime::ParamState>(s.model, r)); },
      [](SampleModel& s, Random& r) {
        auto const made = runtime::ParamState::create(s.model);
        made->setKey(randomKey(r));
        s.configuration->getParams()->insert(made);
      },
      [](SampleModel& s, Random&) { s.sum->getOperands()->add(s.right); },
      [](SampleModel& s, Random&) { s.sum->getOperands()->clear(); },
      [](SampleModel& s, Random& r) {
        auto const elements = s.model->directory().all();
        if (!elements.empty()) elements[r() % elements.size()]->destroy();
      },
  };
  return all;
}

/// Transactions nested at random, with moves in between, each level ending one way or the other.
void wander(SampleModel& sample, Random& random, int depth) {
  Snapshot const before(sample.model);
  bool const commits = random() % 2 == 0;
  {
    auto transaction = sample.model.beginTransaction();
    for (int i = 0; i < 8; ++i) {
      if (depth > 0 && random() % 3 == 0) {
        wander(sample, random, depth - 1);
      } else {
        try {
          moves()[random() % moves().size()](sample, random);
        } catch (groundwork::except::IMsgIDException const&) {
          // Refused: the key is taken, or the element is no more.
        }
      }
    }
    ASSERT_TRUE(isSound(sample.model));
    if (commits) transaction.commit();
  }
  if (!commits) {
    ASSERT_TRUE(before.isBack());
  }
}

TEST(Transaction, TakesBackExactlyAtEveryLevel) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    SCOPED_TRACE(seed);
    SampleModel sample;
    Random random(seed);
    for (int round = 0; round < 6; ++round) {
      wander(sample, random, 3);
      ASSERT_TRUE(isSound(sample.model));
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

TEST(Transaction, KeepsTheUndoOfAnInnerCommitUntilTheOutermostEnds) {
  SampleModel sample;
  Snapshot const before(sample.model);
  {
    auto outer = sample.model.beginTransaction();
    sample.store->setVersion(1);
    Snapshot const between(sample.model);
    {
      auto middle = sample.model.beginTransaction();
      sample.store->setVersion(2);
      {
        auto inner = sample.model.beginTransaction();
        sample.store->setVersion(3);
        sample.day->getValues()->clear();
        inner.commit();
      }
      EXPECT_EQ(sample.store->getVersion(), 3U);
      sample.day->getValues()->insert(sample.volume);
    }
    EXPECT_TRUE(between.isBack());
  }
  EXPECT_TRUE(before.isBack());
}

TEST(Transaction, CreatedElementsAreGoneAndDestroyedOnesLiveAgainAsTheSame) {
  SampleModel sample;
  Snapshot const before(sample.model);
  auto* const store = sample.store.impl();
  sample::ext::ConfigProfile created;
  {
    auto const transaction = sample.model.beginTransaction();
    created = sample::ext::ConfigProfile::create(sample.model, sample::nameUuid("created"));
    created->setId(u"created");
    sample.store->getProfiles()->insert(created);
    sample.store->setActiveProfile(created);
    sample.store->destroy();
    EXPECT_FALSE(sample.store || sample.day || sample.volume || created);
    EXPECT_EQ(raised([&] { sample.day->setName(u"x"); }), "CannotModifyDestroyedElement");
    EXPECT_EQ(raised([&] { created->getValues()->insert(sample.volume); }), "CannotAddNonExistentObject");
    EXPECT_EQ(raised([&] { created->getValues()->insert(sample::ext::ConfigEntry::create(sample.model)); }),
              "CannotModifyDestroyedElement");
  }
  EXPECT_TRUE(before.isBack());
  EXPECT_FALSE(created);
  EXPECT_EQ(raised([&] { created->setName(u"x"); }), "CannotModifyDestroyedElement");
  EXPECT_FALSE(sample.model->findElement(sample::nameUuid("created"), plinth::FindElementBehavior::IN_MEMORY));
  EXPECT_EQ(sample.store.impl(), store);
  EXPECT_EQ(sample.day->getValues()->find(u"volume"), sample.volume);
  // The UUID is free again.
  EXPECT_TRUE(sample::ext::ConfigProfile::create(sample.model, sample::nameUuid("created")));
  EXPECT_EQ(raised([&] { return sample::ext::ConfigProfile::create(sample.model, sample::nameUuid("created")); }),
            "UniquenessConstraint");
}

TEST(Transaction, EndsItsInnerOnesWhenItEndsFirst) {
  SampleModel sample;
  Snapshot const before(sample.model);
  auto outer = std::make_unique<plinth::Transaction>(sample.model.beginTransaction());
  auto inner = std::make_unique<plinth::Transaction>(sample.model.beginTransaction());
  sample.store->setVersion(9);
  EXPECT_EQ(raised([&] { outer->commit(); }), "TransactionNotInnermost");
  EXPECT_EQ(sample.store->getVersion(), 9U);
  outer.reset();
  EXPECT_TRUE(before.isBack());
  EXPECT_EQ(raised([&] { inner->commit(); }), "TransactionEnded");
  auto next = sample.model.beginTransaction();
  sample.store->setVersion(4);
  inner.reset();  // ended long ago: the one that is open now is none of its business
  next.commit();
  EXPECT_EQ(sample.store->getVersion(), 4U);
  EXPECT_EQ(raised([&] { next.commit(); }), "TransactionEnded");
}

TEST(Transaction, MovesAndOutlivesTheLastHandleOfItsModel) {
  auto model = plinth::Model::create();
  auto const store = sample::ext::ConfigStore::create(model);
  auto first = model.beginTransaction();
  auto second = std::move(first);
  EXPECT_FALSE(first.isOpen());
  EXPECT_EQ(raised([&] { first.commit(); }),
            raised([] { plinth::reportException(plinth::messages::TransactionEnded()); }));
  model = plinth::Model();
  store->setVersion(3);
  EXPECT_TRUE(store);
  second.commit();
  EXPECT_EQ(store->getVersion(), 3U);
  { auto const last = std::move(second); }
  EXPECT_FALSE(store);
}

TEST(Model, EndsWithItsLastHandleWhateverItsElementsReferTo) {
  sample::ext::ConfigStore store;
  sample::data::DoubleParamData data;
  plinth::ListenerRegistration listening;
  {
    SampleModel sample;
    store = sample.store;
    data = plinth::element_cast<sample::data::DoubleParamData>(sample.volume->getData());
    data->getAllowedValues()->push_back(1);
    listening = sample.model.addListener([](plinth::ChangeSet const&) { ADD_FAILURE() << "told of the end"; });
    EXPECT_EQ(raised([] { return sample::ext::ConfigStore::create(plinth::Model()); }), "CannotCreateWithoutModel");
    EXPECT_EQ(raised([&] { (void)sample.model.addListener({}); }), "NoListener");
  }
  EXPECT_FALSE(store || data);
  EXPECT_TRUE(store->getModel().isEmpty());
  EXPECT_EQ(raised([&] { store->setVersion(1); }), "CannotModifyDestroyedElement");
  EXPECT_EQ(raised([&] { store->setActiveProfile({}); }), "CannotModifyDestroyedElement");
  EXPECT_EQ(raised([&] { data->getAllowedValues()->push_back(2); }), "CannotModifyDestroyedElement");
  store->destroy();
}

TEST(Model, IsAskedForWhereTheHandleIsEmpty) {
  plinth::Model const none;
  EXPECT_EQ(raised([&] { (void)none.beginTransaction(); }), "NoModel");
  EXPECT_EQ(raised([&] { (void)none.addListener([](plinth::ChangeSet const&) {}); }), "NoModel");
  EXPECT_EQ(raised([&] { plinth::Model::Freezer const freezer(none); }), "NoModel");
  EXPECT_EQ(raised([&] { return plinth::query::Query<sample::ext::ConfigEntry>(none).find(); }), "NoModel");
}

TEST(Freezer, IsRefusedWhileATransactionIsOpenAndThawsOnlyItsOwn) {
  SampleModel sample;
  {
    auto const open = sample.model.beginTransaction();
    EXPECT_EQ(raised([&] { plinth::Model::Freezer const freezer(sample.model); }), "CannotFreezeOpenModel");
  }
  {
    plinth::Model::Freezer first(sample.model);
    plinth::Model::Freezer const second(sample.model);
    auto const thawed = first.thaw();
    EXPECT_EQ(raised([&] { sample.store->setVersion(1); }), "CannotModifyFrozenModel");
  }
  sample.store->setVersion(1);
  EXPECT_EQ(sample.store->getVersion(), 1U) << "a Freezer that ends lets go";
}

TEST(Freezer, RefusesTransactionsExceptWhileThawed) {
  SampleModel sample;
  plinth::Model::Freezer freezer(sample.model);
  EXPECT_EQ(raised([&] { sample.store->setVersion(1); }), "CannotModifyFrozenModel");
  {
    auto outer = freezer.thaw();
    { auto const inner = freezer.thaw(); }
    sample.store->setVersion(2);
    auto const moved = std::move(outer);
    sample.store->setVersion(3);
  }
  EXPECT_EQ(raised([&] { (void)sample.model.beginTransaction(); }), "CannotModifyFrozenModel");
  EXPECT_EQ(sample.store->getVersion(), 3U);
  {
    auto transaction = sample.model->beginTransaction(true);  // for whoever holds the thaw
    sample.store->setVersion(4);
    transaction.commit();
  }
  EXPECT_EQ(sample.store->getVersion(), 4U);
  EXPECT_TRUE(isSound(sample.model));
}

}  // namespace
