// Proxies: names of elements that are not in memory, resolved on demand, within a model and across models.
#include <gmock/gmock.h>

#include <boost/uuid/uuid_io.hpp>
#include <functional>

#include "plinth/Freezer.hpp"
#include "plinth/ModelDirectory.hpp"
#include "plinth/ProxyId.hpp"
#include "plinth/sample_model.hpp"
#include "support/checks.hpp"

using plinth::Model;
using plinth::ModelDirectory;
using plinth::ProxyId;
using plinth::ReflectionPrivateTag;
using sample::SampleModel;
using support::basicSet;
using support::isSound;
using support::raised;
using support::Snapshot;
using testing::ElementsAre;

namespace {

template <class T>
T proxyOf(Model const& model, T const& target, bool local = false) {
  return plinth::element_cast<T>(model->createProxy(T::metaClass(), target->getPersistentProxyId(local)));
}

template <class T>
T proxyOf(Model const& model, char16_t const* modelName, char const* element) {
  std::string const uuid = boost::uuids::to_string(sample::nameUuid(element));
  return plinth::element_cast<T>(model->createProxy(
      T::metaClass(),
      ProxyId{T::metaClass()->getQualifiedName(), {uuid.begin(), uuid.end()}, std::u16string(modelName)}));
}

/// Gives the models that a loader has been told of, and counts how often it was asked.
class Library {
 public:
  Library() {
    ModelDirectory::getInstance().setLoader([this](std::u16string const& name) {
      ++m_asked;
      if (name != u"library") return Model();
      m_model = Model::create();
      m_model->setName(name);
      profile = sample::ext::ConfigProfile::create(m_model, sample::nameUuid("profile"));
      return m_model;
    });
  }
  Library(Library const&) = delete;
  Library& operator=(Library const&) = delete;
  ~Library() { ModelDirectory::getInstance().setLoader({}); }
  int asked() const { return m_asked; }

  sample::ext::ConfigProfile profile;

 private:
  Model m_model;
  int m_asked = 0;
};

TEST(ModelDirectory, FindsModelsByNameForAsLongAsTheyHaveIt) {
  auto const& directory = ModelDirectory::getInstance();
  auto model = Model::create();
  model->setName(u"one");
  auto const other = Model::create();
  EXPECT_EQ(directory.find(u"one", false), model);
  EXPECT_EQ(raised([&] { other->setName(u"one"); }), "ModelNameTaken");
  EXPECT_EQ(other->name(), u"");
  model->setName(u"two");
  other->setName(u"one");
  EXPECT_EQ(directory.find(u"one", false), other);
  EXPECT_EQ(directory.find(u"two", false), model);
  model = Model();
  EXPECT_TRUE(directory.find(u"two", true).isEmpty());
}

TEST(Proxy, LoadsItsModelWhenAGetterAsksAndNotWhenOnePeeks) {
  SampleModel s;
  Library library;
  auto const proxy = proxyOf<sample::ext::ConfigProfile>(s.model, u"library", "profile");
  s.store->setActiveProfile({});
  basicSet(s.store, u"ActiveProfile", proxy);
  EXPECT_EQ(s.model->peekResolveProxy(s.store.impl(), proxy), proxy);
  auto const property = plinth::meta::Property(sample::ext::ConfigStore::metaClass()->findProperty(u"ActiveProfile"));
  for (auto const* tag : {&ReflectionPrivateTag::IN_MEMORY_ONLY, &ReflectionPrivateTag::NO_PROXY_RESOLVE}) {
    EXPECT_EQ(s.store->getPropertyValue(property, *tag).getValue<plinth::ModelElement>(), proxy);
  }
  EXPECT_TRUE(s.store->hasActiveProfile());
  EXPECT_TRUE(isSound(s.model));
  EXPECT_EQ(library.asked(), 0);
  EXPECT_EQ(s.store->getActiveProfile(), library.profile);
  EXPECT_EQ(library.asked(), 1);
  static_cast<void>(s.store->getActiveProfile());
  EXPECT_EQ(library.asked(), 1) << "the element has taken the proxy's place";
  EXPECT_TRUE(proxy->isProxy()) << "the proxy itself never turns into it";
}

TEST(Proxy, StaysVisibleWhereItCannotBeResolved) {
  SampleModel s;
  Library library;
  for (auto const& [model, element] : {std::pair(u"nowhere", "profile"), std::pair(u"library", "no such profile")}) {
    auto const proxy = proxyOf<sample::ext::ConfigProfile>(s.model, model, element);
    basicSet(s.store, u"ActiveProfile", proxy);
    EXPECT_EQ(s.store->getActiveProfile(), proxy);
    EXPECT_TRUE(s.store->getActiveProfile()->isProxy());
  }
  EXPECT_EQ(raised([&] { s.model->createProxy(sample::data::ParamData::metaClass(), {}); }),
            "CannotCreateAbstractClass");
}

TEST(Proxy, IsResolvedByTheNoChangeTestAndNotByAReflectiveSetWithoutResolution) {
  SampleModel s;
  support::CommitCount commits(s.model);
  basicSet(s.store, u"ActiveProfile", proxyOf(s.model, s.night, true));
  s.store->setActiveProfile(s.night);
  EXPECT_EQ(commits.take(), 0);
  EXPECT_EQ(s.store->getActiveProfile(), s.night);

  Library library;
  basicSet(s.store, u"ActiveProfile", proxyOf<sample::ext::ConfigProfile>(s.model, u"library", "profile"));
  auto const property = plinth::meta::Property(sample::ext::ConfigStore::metaClass()->findProperty(u"ActiveProfile"));
  s.store->setPropertyValue(property, plinth::Value::createElementValue(property, plinth::ModelElement(s.day)),
                            ReflectionPrivateTag::NO_PROXY_RESOLVE);
  EXPECT_EQ(library.asked(), 0);
  EXPECT_EQ(s.store->getActiveProfile(), s.day);
}

TEST(Proxy, InAContainmentPropertyResolvesInPlace) {
  SampleModel s;
  auto const data = s.volume->getData();
  auto const proxy = s.model->createProxy(data->getMetaClass(), data->getPersistentProxyId(true));
  basicSet(s.volume, u"Data", static_cast<sample::data::ParamData const&>(proxy));
  s.volume->setData(data);
  EXPECT_EQ(s.volume->getData(), data);
  EXPECT_TRUE(isSound(s.model));
}

TEST(Proxy, InAContainmentMakesItsElementAChildAndOnlyOneThatLiesNowhere) {
  SampleModel s;
  auto const data = sample::data::DoubleParamData::create(s.model);
  auto const entry = sample::ext::ConfigEntry::create(s.model);
  entry->setData(proxyOf(s.model, data, true));
  Snapshot const before(s.model);
  {
    auto const transaction = s.model.beginTransaction();
    EXPECT_EQ(entry->getData(), data);
    EXPECT_EQ(data->container(), entry);
    EXPECT_TRUE(isSound(s.model));
  }
  EXPECT_TRUE(before.isBack()) << "with the proxy";
  EXPECT_EQ(entry->getData(), data);
  EXPECT_TRUE(isSound(s.model));

  auto const other = sample::ext::ConfigEntry::create(s.model);
  other->setData(proxyOf(s.model, data, true));
  EXPECT_TRUE(other->getData()->isProxy()) << "it is another entry's child";
  EXPECT_EQ(raised([&] { other->setData(proxyOf<sample::data::DoubleParamData>(s.model, u"far", "d")); }),
            "CannotCreateCrossModelAssociation");
  plinth::Model::Freezer const freezer(s.model);
  EXPECT_TRUE(other->getData()->isProxy());
}

TEST(Proxy, StaysWhereWhatItNamesDoesNotFit) {
  SampleModel s;
  auto const wrong =
      s.model->createProxy(sample::ext::ConfigProfile::metaClass(), s.volume->getPersistentProxyId(true));
  basicSet(s.store, u"ActiveProfile", static_cast<sample::ext::ConfigProfile const&>(wrong));
  EXPECT_EQ(s.store->getActiveProfile(), wrong) << "it names an entry";

  auto const far = Model::create();
  far->setName(u"far");
  auto const proxy = proxyOf<sample::ext::ConfigProfile>(s.model, u"far", "late");
  basicSet(s.store, u"ActiveProfile", proxy);
  {
    auto const transaction = far.beginTransaction();
    auto const late = sample::ext::ConfigProfile::create(far, sample::nameUuid("late"));
    EXPECT_EQ(s.store->getActiveProfile(), proxy) << "the far transaction may take it back";
  }
  auto const late = sample::ext::ConfigProfile::create(far, sample::nameUuid("late"));
  EXPECT_EQ(s.store->getActiveProfile(), late);
}

TEST(Proxy, MayBeReplacedByTheLoaderThatIsAskedForIt) {
  SampleModel s;
  Model loaded;
  sample::ext::ConfigProfile profile;
  ModelDirectory::getInstance().setLoader([&](std::u16string const& name) {
    loaded = Model::create();
    loaded->setName(name);
    profile = sample::ext::ConfigProfile::create(loaded, sample::nameUuid("profile"));
    basicSet(s.store, u"ActiveProfile", profile);
    return loaded;
  });
  basicSet(s.store, u"ActiveProfile", proxyOf<sample::ext::ConfigProfile>(s.model, u"library", "profile"));
  EXPECT_EQ(s.store->getActiveProfile(), profile);

  ModelDirectory::getInstance().setLoader([&](std::u16string const& name) {
    loaded = Model::create();
    loaded->setName(name);
    s.category->getContents()->clear();
    return loaded;
  });
  auto& contents = *s.category->getContents();
  core(*s.category)._basicAdd(&contents, proxyOf<sample::runtime::ParamState>(s.model, u"another", "param"));
  EXPECT_THAT(contents.getAllValues(), testing::IsEmpty()) << "the loader has cleared it";
  core(*s.category)._basicAdd(&contents, proxyOf<sample::runtime::ParamState>(s.model, u"a third", "param"));
  EXPECT_TRUE(contents.at(0).isEmpty());
  ModelDirectory::getInstance().setLoader({});
}

TEST(Proxy, IsPutBackWhenASetThatDoesNotResolveItIsRefusedOrTakenBack) {
  SampleModel s;
  auto const property = plinth::meta::Property(sample::ext::ConfigStore::metaClass()->findProperty(u"ActiveProfile"));
  auto const set = [&](plinth::ModelElement const& target) {
    s.store->setPropertyValue(property, plinth::Value::createElementValue(property, target),
                              ReflectionPrivateTag::NO_PROXY_RESOLVE);
  };
  basicSet(s.store, u"ActiveProfile", proxyOf<sample::ext::ConfigProfile>(s.model, u"nowhere", "profile"));
  Snapshot const before(s.model);
  auto const other = Model::create();
  EXPECT_EQ(raised([&] { set(sample::ext::ConfigProfile::create(other)); }), "CannotCreateCrossModelAssociation");
  EXPECT_TRUE(before.isBack());
  {
    auto const transaction = s.model.beginTransaction();
    set(s.night);
    EXPECT_EQ(s.store->getActiveProfile(), s.night);
  }
  EXPECT_TRUE(before.isBack());
}

/// Two models with a parameter in one and its category and tag in the other, linked at both ends.
class Across : public testing::Test {
 protected:
  Across() {
    near->setName(u"near");
    far->setName(u"far");
    basicSet(param, u"Category", proxyOf(near, category));
    category->getContents()->add(proxyOf(far, param));
    param->getTags()->add(proxyOf(near, tag));
    tag->getTagged()->add(proxyOf(far, param));
    EXPECT_EQ(param->getCategory(), category);
    EXPECT_THAT(category->getContents()->getAllValues(), ElementsAre(param));
    param->getTags()->resolveAll();
    tag->getTagged()->resolveAll();
    EXPECT_TRUE(isSound(near) && isSound(far));
  }

  Model const near = Model::create();
  Model const far = Model::create();
  sample::runtime::ParamState const param = sample::runtime::ParamState::create(near, sample::nameUuid("param"));
  sample::runtime::CategoryState const local = sample::runtime::CategoryState::create(near);
  sample::runtime::CategoryState const category = sample::runtime::CategoryState::create(far);
  sample::runtime::TagState const tag = sample::runtime::TagState::create(far);
};

TEST_F(Across, AnElementThatIsUnloadedLeavesProxiesAtItsFarEnds) {
  ProxyId const id = param->getPersistentProxyId(false);
  near->unload(param);
  EXPECT_FALSE(param);
  auto const left = category->getContents()->getAllValuesAndProxies();
  ASSERT_EQ(left.size(), 1U);
  EXPECT_TRUE(left[0]->isProxy());
  EXPECT_TRUE(left[0]->getProxyId() == id);
  EXPECT_THAT(category->getContents()->getAllValues(), ElementsAre());
  EXPECT_TRUE(tag->getTagged()->empty());
  EXPECT_EQ(tag->getTagged()->getAllValuesAndProxies().size(), 1U);
  EXPECT_TRUE(isSound(near) && isSound(far));

  // Back in memory under its old name, it takes the proxy's place once it lists the far end.
  auto const again = sample::runtime::ParamState::create(near, sample::nameUuid("param"));
  EXPECT_THAT(category->getContents()->getAllValues(), ElementsAre());
  basicSet(again, u"Category", category);
  EXPECT_THAT(category->getContents()->getAllValues(), ElementsAre(again));
}

/// A change of one end, made in the model of that end.
struct Reaching {
  char const* name;
  Model const& model;
  Model const& other;
  std::function<void()> change;
};

class AcrossAtBothEnds : public Across {
 protected:
  std::vector<Reaching> const changes{
      {"the reference is cleared", near, far, [this] { param->setCategory({}); }},
      {"it moves to another", near, far, [this] { param->setCategory(local); }},
      {"a sequence is cleared", near, far, [this] { param->getTags()->clear(); }},
      {"a slot is replaced", near, far, [this] { param->getTags()->replaceAt(0, localTag); }},
      {"the one end is destroyed", near, far, [this] { param->destroy(); }},
      {"it is unloaded", near, far, [this] { near->unload(param); }},
      {"a member is erased", far, near, [this] { category->getContents()->erase(0); }},
      {"a set is cleared", far, near, [this] { tag->getTagged()->clear(); }},
      {"the other end is destroyed", far, near, [this] { category->destroy(); }},
  };
  sample::runtime::TagState const localTag = sample::runtime::TagState::create(near);
};

TEST_F(AcrossAtBothEnds, AChangeIsTakenBackTogetherAndToldTogether) {
  for (Reaching const& each : changes) {
    SCOPED_TRACE(each.name);
    Snapshot const nearBefore(near), farBefore(far);
    for (bool const isNested : {false, true}) {
      auto const outer = each.model.beginTransaction();
      auto inner = each.model.beginTransaction();
      each.change();
      EXPECT_TRUE(isSound(near) && isSound(far));
      if (isNested) inner.commit();
      EXPECT_EQ(each.other->level(), 1U);
    }
    EXPECT_TRUE(nearBefore.isBack());
    EXPECT_TRUE(farBefore.isBack());
  }
  support::CommitCount nearCommits(near), farCommits(far);
  changes.front().change();
  EXPECT_EQ(std::pair(nearCommits.take(), farCommits.take()), std::pair(1, 1));
  EXPECT_TRUE(category->getContents()->empty());
}

TEST_F(AcrossAtBothEnds, AChangeIsRefusedWhereTheOtherModelMayEndOtherwise) {
  for (Reaching const& each : changes) {
    SCOPED_TRACE(each.name);
    Snapshot const nearBefore(near), farBefore(far);
    {
      auto const unrelated = each.other.beginTransaction();
      EXPECT_EQ(raised(each.change), "OtherModelInTransaction");
      auto const own = each.model.beginTransaction();
      EXPECT_EQ(raised(each.change), "OtherModelInTransaction");
    }
    {
      plinth::Model::Freezer const freezer(each.other);
      EXPECT_EQ(raised(each.change), "CannotModifyFrozenModel");
    }
    EXPECT_TRUE(nearBefore.isBack());
    EXPECT_TRUE(farBefore.isBack());
  }
  auto transaction = near.beginTransaction();
  param->setCategory({});
  auto const later = far.beginTransaction();  // inside what follows the near transaction
  EXPECT_EQ(raised([&] { transaction.commit(); }), "TransactionNotInnermost");
  EXPECT_EQ(raised([&] { far->unload(param); }), "CannotUnloadForeignElement");
}

TEST_F(Across, AProxyKnowsNothingOfItsLinksAndWaitsForWhatMayBeTakenBack) {
  auto const lost = proxyOf<sample::runtime::CategoryState>(near, u"nowhere", "lost");
  auto const fresh = sample::runtime::ParamState::create(near);
  for (bool const commits : {false, true}) {
    auto transaction = near.beginTransaction();
    fresh->setCategory(lost);
    EXPECT_TRUE(isSound(near));
    if (commits) transaction.commit();
  }
  {
    auto const transaction = near.beginTransaction();
    auto const late = sample::runtime::ParamState::create(near, sample::nameUuid("late"));
    category->getContents()->add(proxyOf(far, late));
    basicSet(late, u"Category", proxyOf(near, category));
    EXPECT_EQ(late->getCategory(), category);
    EXPECT_TRUE(category->getContents()->at(1)->isProxy()) << "the element may go again";
  }
  EXPECT_TRUE(isSound(near) && isSound(far));

  auto& tags = *param->getTags();
  tags.add(proxyOf(near, tag));
  EXPECT_EQ(tags.size(), 2U);
  tags.resolveAll();
  EXPECT_THAT(tags, ElementsAre(tag)) << "it is there already";
}

TEST_F(Across, AReferenceOutlastsADeathThatIsTakenBackAndAModelThatEnds) {
  auto other = Model::create();
  other->setName(u"other");
  auto const store = sample::ext::ConfigStore::create(near);
  auto const profile = sample::ext::ConfigProfile::create(other);
  store->setActiveProfile(proxyOf(near, profile));
  EXPECT_EQ(store->getActiveProfile(), profile);
  {
    auto const transaction = other.beginTransaction();
    profile->destroy();
    EXPECT_TRUE(store->getActiveProfile().isEmpty());
  }
  EXPECT_EQ(store->getActiveProfile(), profile);

  auto const member = sample::runtime::ParamState::create(other);
  local->getContents()->add(proxyOf(near, member));
  basicSet(member, u"Category", proxyOf(other, local));
  EXPECT_EQ(member->getCategory(), local);
  EXPECT_THAT(local->getContents()->getAllValues(), ElementsAre(member));
  other = Model();
  EXPECT_THAT(local->getContents()->getAllValues(), ElementsAre());
  EXPECT_TRUE(store->getActiveProfile().isEmpty());
  EXPECT_TRUE(isSound(near));
}

TEST_F(Across, ALoaderMayDestroyAndTakeBackWhileSomethingIsTornDown) {
  int asked = 0;
  ModelDirectory::getInstance().setLoader([&](std::u16string const&) {
    if (asked++ > 0) return Model();
    auto const transaction = near.beginTransaction();
    auto const passing = sample::runtime::CategoryState::create(near);
    sample::runtime::ParamState::create(near)->destroy();
    local->destroy();
    param->setCategory(passing);
    param->setCategory({});
    return Model();
  });
  param->setCategory(proxyOf<sample::runtime::CategoryState>(near, u"missing", "category"));
  param->destroy();
  ModelDirectory::getInstance().setLoader({});
  EXPECT_GT(asked, 0);
  EXPECT_TRUE(local);
  EXPECT_TRUE(isSound(near) && isSound(far));
}

TEST(Proxy, OfAnElementThatIsUnloadedIsNoneWithinItsModel) {
  SampleModel s;
  s.model->unload(s.first);
  EXPECT_THAT(*s.category->getContents(), ElementsAre(s.second));
  EXPECT_TRUE(s.tag->getTagged()->empty());
  s.model->unload(s.configuration);
  EXPECT_TRUE(isSound(s.model));
}

TEST_F(Across, ConvertReferencesToProxiesComputesOneIdAndOnlyForFarEndsInOtherModels) {
  auto const neighbour = sample::runtime::ParamState::create(near);
  neighbour->setCategory(local);
  auto transaction = near.beginTransaction();
  boost::optional<ProxyId> id;
  core(*neighbour).convertReferencesToProxies(true, id);
  EXPECT_FALSE(id);
  EXPECT_FALSE(neighbour->hasCategory());
  id = ProxyId{u"x", u"given", std::u16string(u"near")};
  core(*param).convertReferencesToProxies(true, id);
  auto const left = category->getContents()->getAllValuesAndProxies().front();
  EXPECT_TRUE(left->getProxyId() == id) << "the one that was handed in";
  EXPECT_FALSE(param->hasCategory() || param->hasTags());
}

TEST_F(Across, ConvertReferencesToProxiesWithoutConversionJustDropsThem) {
  auto transaction = near.beginTransaction();
  boost::optional<ProxyId> id;
  core(*param).convertReferencesToProxies(false, id);
  EXPECT_FALSE(id);
  EXPECT_FALSE(param->hasCategory() || param->hasTags());
  EXPECT_EQ(category->getContents()->getAllValuesAndProxies().front(), param);
}

TEST_F(Across, AProxyInASequenceStaysOneMemberThroughARollback) {
  auto const second = sample::runtime::ParamState::create(far);
  category->getContents()->add(second);
  near->unload(param);
  auto const again = sample::runtime::ParamState::create(near, sample::nameUuid("param"));
  basicSet(again, u"Category", category);
  {
    auto const transaction = far.beginTransaction();
    category->getContents()->remove(second);
    EXPECT_EQ(category->getContents()->at(0), again) << "resolved inside the transaction";
  }
  EXPECT_THAT(category->getContents()->getAllValuesAndProxies(), ElementsAre(again, second));
  EXPECT_TRUE(isSound(far));
}

TEST(Proxy, InAMapIsNoEntryUntilItResolvesAndStaysOutWhenItsKeyIsTaken) {
  SampleModel s;
  auto const entry = sample::ext::ConfigEntry::create(s.model);
  entry->setKey(u"k");
  auto* const values = s.night->getValues();
  values->addProxy(proxyOf(s.model, entry, true));
  {
    plinth::ModelImpl::ResolveSuppression const suppression(s.model.require());
    EXPECT_EQ(s.night->getValues()->size(), 0U);
    EXPECT_EQ(values->getAllValuesAndProxies().size(), 1U);
  }
  EXPECT_EQ(s.night->getValues()->find(u"k"), entry) << "the getter of a map resolves";
  EXPECT_EQ(entry->container(), s.night);
  EXPECT_TRUE(isSound(s.model));
  values->remove(entry);

  auto const usurper = sample::ext::ConfigEntry::create(s.model);
  values->addProxy(proxyOf(s.model, entry, true));
  usurper->setKey(u"k");
  values->insert(usurper);
  EXPECT_EQ(s.night->getValues()->find(u"k"), usurper);
  EXPECT_EQ(values->getAllValuesAndProxies().size(), 2U) << "the proxy stays in the table";
}

TEST(Proxy, TellsWhetherItStandsForAnElement) {
  SampleModel s;
  auto& active = *plinth::meta::Property(sample::ext::ConfigStore::metaClass()->findProperty(u"ActiveProfile")).impl();
  EXPECT_TRUE(core(*s.store).inverseContainsProxyTo(*s.day.impl(), active));
  EXPECT_FALSE(core(*s.store).inverseContainsProxyTo(*s.night.impl(), active));
  auto const proxy = proxyOf(s.model, s.night, true);
  basicSet(s.store, u"ActiveProfile", proxy);
  EXPECT_FALSE(core(*s.store).inverseContainsProxyTo(*s.day.impl(), active));
  EXPECT_TRUE(core(*s.store).inverseContainsProxyTo(*s.night.impl(), active));
  basicSet(s.store, u"ActiveProfile", {});
  EXPECT_FALSE(core(*s.store).inverseContainsProxyTo(*s.night.impl(), active));
}

TEST(Proxy, EndsWithItsModelAndLeavesNothing) {
  sample::ext::ConfigProfile proxy;
  {
    SampleModel s;
    proxy = proxyOf(s.model, s.day, true);
    EXPECT_TRUE(proxy);
  }
  EXPECT_FALSE(proxy);
  EXPECT_FALSE(proxy->getProxyId());
}

}  // namespace
