// Proxies in collections: where they wait, when the real element takes their place, and what a rollback makes of it.
#include <gmock/gmock.h>

#include <boost/uuid/uuid_io.hpp>

#include "plinth/ChangeSet.hpp"
#include "plinth/Freezer.hpp"
#include "plinth/ProxyId.hpp"
#include "plinth/diagnostics/Verify.hpp"
#include "plinth/sample_model.hpp"
#include "refusal.hpp"

namespace collections_test {
namespace {

using namespace sample;
using ext::ConfigEntry;
using plinth::element_cast;
using plinth::ModelElement;
using plinth::ProxyId;
using runtime::ControllableState;
using runtime::ParamState;
using runtime::TagState;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class CollectionProxy : public testing::Test {
 protected:
  ~CollectionProxy() override { EXPECT_THAT(plinth::verify(s.model), IsEmpty()); }

  /// Of the element that `late` is going to be; in another model if that has a name.
  template <class T>
  T proxy(std::string const& name, char16_t const* model = nullptr) {
    std::string const uuid = to_string(nameUuid(name));
    ProxyId id{T::metaClass()->getQualifiedName(), {uuid.begin(), uuid.end()}, boost::none};
    if (model != nullptr) id.model = model;
    return element_cast<T>(s.model->createProxy(T::metaClass(), id));
  }
  ConfigEntry lateEntry(std::string const& name, std::u16string const& key) {
    auto const made = ConfigEntry::create(s.model, nameUuid(name));
    made->setKey(key);
    return made;
  }

  SampleModel s;
  plinth::ElementMap<std::u16string, ConfigEntry>& values = *s.day->getValues();
};

TEST_F(CollectionProxy, WaitsBesideTheMapUntilItsElementIsThere) {
  auto const waiting = proxy<ConfigEntry>("late");
  values.insert(waiting);
  values.insert(waiting);
  EXPECT_EQ(values.size(), 2U);
  EXPECT_FALSE(values.contains(waiting));
  EXPECT_THAT(values.getAllValues(), ElementsAre(s.balance, s.volume));
  EXPECT_THAT(values.getAllValuesAndProxies(), ElementsAre(s.balance, s.volume, waiting));
  EXPECT_FALSE(waiting->container());

  auto outer = s.model.beginTransaction();
  {
    auto inner = s.model.beginTransaction();
    auto const late = lateEntry("late", u"late");
    EXPECT_EQ(s.day->getValues()->find(u"late"), late);
    EXPECT_EQ(late->container(), s.day);
    EXPECT_THAT(values.getAllValuesAndProxies(), testing::SizeIs(3));
  }
  EXPECT_THAT(values.getAllValuesAndProxies(), ElementsAre(s.balance, s.volume, waiting)) << "after the rollback";
  values.remove(waiting);
  EXPECT_THAT(values.getAllValuesAndProxies(), ElementsAre(s.balance, s.volume));
}

TEST_F(CollectionProxy, StaysWhileAnotherElementBearsTheKeyAndGoesWhenItsElementIsIn) {
  values.insert(proxy<ConfigEntry>("late"));
  auto const late = lateEntry("late", u"volume");
  values.resolveAll();
  EXPECT_EQ(values.find(u"volume"), s.volume);
  EXPECT_THAT(values.getAllValuesAndProxies(), testing::SizeIs(3));
  late->setKey(u"late");
  values.insert(late);
  values.resolveAll();
  EXPECT_THAT(values.getAllValuesAndProxies(), ElementsAre(s.balance, late, s.volume));
}

TEST_F(CollectionProxy, InASequenceOfChildrenMakesItsElementAChildAndNeverAnAncestor) {
  auto& operands = *s.sum->getOperands();
  operands.add(proxy<expr::NumericConstant>("late"));
  auto const late = expr::NumericConstant::create(s.model, nameUuid("late"));
  {
    auto const transaction = s.model.beginTransaction();
    EXPECT_EQ(operands.at(2), late);
    EXPECT_EQ(late->container(), s.sum);
  }
  EXPECT_TRUE(operands.raw()[2]->isProxy());
  EXPECT_EQ(operands.getAllValues().size(), 3U);
  EXPECT_EQ(late->container(), s.sum);

  operands.add(proxy<expr::NumericOperation>("sum"));
  EXPECT_TRUE(operands.at(3)->isProxy()) << "a tree that contains itself";
  EXPECT_EQ(raised([&] { operands.add(proxy<expr::NumericConstant>("x", u"elsewhere")); }),
            "CannotCreateCrossModelAssociation");
  EXPECT_EQ(operands.size(), 4U);
}

TEST_F(CollectionProxy, ReplacedInASequenceComesBackWithBothEnds) {
  auto& contents = *s.category->getContents();
  core(*s.category)._basicAdd(&contents, proxy<ParamState>("late"));
  auto const before = contents.raw();
  {
    auto const transaction = s.model.beginTransaction();
    auto const late = ParamState::create(s.model, nameUuid("late"));
    contents.replaceProxy(late);
    EXPECT_EQ(late->getCategory(), s.category);
  }
  EXPECT_EQ(contents.raw(), before);
}

TEST_F(CollectionProxy, OfAFrozenModelStaysInItsMap) {
  values.insert(proxy<ConfigEntry>("late"));
  lateEntry("late", u"late");
  plinth::Model::Freezer freezer(s.model);
  EXPECT_EQ(s.day->getValues()->size(), 2U);
  auto const thawed = freezer.thaw();
  EXPECT_EQ(s.day->getValues()->size(), 3U);
}

TEST_F(CollectionProxy, OfAnotherModelIsRefusedByContainmentsAndLeftAloneByResolveLocal) {
  EXPECT_EQ(raised([&] { values.insert(proxy<ConfigEntry>("far", u"elsewhere")); }),
            "CannotCreateCrossModelAssociation");
  EXPECT_THAT(values.getAllValuesAndProxies(), testing::SizeIs(2));

  auto const elsewhere = plinth::Model::create();
  elsewhere->setName(u"elsewhere");
  auto const far = ParamState::create(elsewhere, nameUuid("far"));
  auto const near = ParamState::create(s.model, nameUuid("near"));
  auto& members = *s.perspective->getMembers();
  members.clear();
  members.add(proxy<ParamState>("far", u"elsewhere"));
  members.add(proxy<ParamState>("near"));
  EXPECT_TRUE(members.empty()) << "proxies are not counted";
  members.resolveLocal();
  EXPECT_THAT(members, ElementsAre(near));
  members.replaceProxy(far);
  EXPECT_THAT(members, UnorderedElementsAre(near, far));
  EXPECT_THAT(members.getAllValuesAndProxies(), testing::SizeIs(2));
}

TEST_F(CollectionProxy, ClearTakesProxiesTooAndARollbackBringsThemBack) {
  auto const waiting = proxy<ConfigEntry>("late");
  values.insert(waiting);
  for (bool const bare : {false, true}) {
    auto transaction = s.model.beginTransaction();
    if (bare) {
      s.day->destroy();
    } else {
      values.clear();
    }
    EXPECT_THAT(values.getAllValuesAndProxies(), IsEmpty());
  }
  EXPECT_THAT(values.getAllValuesAndProxies(), ElementsAre(s.balance, s.volume, waiting));
}

TEST_F(CollectionProxy, StandsInItsPlaceInASequence) {
  auto& operands = *s.sum->getOperands();
  auto const waiting = proxy<expr::NumericConstant>("late");
  operands.insert(1, waiting);
  EXPECT_EQ(operands.size(), 3U);
  EXPECT_FALSE(operands.contains(waiting));
  EXPECT_EQ(operands.at(1), waiting);
  EXPECT_THAT(operands.getAllValues(), ElementsAre(s.left, s.right));
  EXPECT_THAT(operands.getAllValuesAndProxies(), ElementsAre(s.left, waiting, s.right));
  operands.remove(waiting);
  EXPECT_THAT(operands, ElementsAre(s.left, s.right));
}

TEST_F(CollectionProxy, ComesBackWhenItsElementGoesWithTheTransactionThatMadeIt) {
  auto& operands = *s.sum->getOperands();
  auto const constant = proxy<expr::NumericConstant>("late constant");
  auto const profile = proxy<ext::ConfigProfile>("late profile");
  operands.insert(1, constant);
  s.store->setActiveProfile(profile);
  {
    auto transaction = s.model.beginTransaction();
    auto const made = expr::NumericConstant::create(s.model, nameUuid("late constant"));
    EXPECT_EQ(operands.at(1), made);
    auto const active = ext::ConfigProfile::create(s.model, nameUuid("late profile"));
    EXPECT_EQ(s.store->getActiveProfile(), active);
  }
  EXPECT_THAT(operands, ElementsAre(s.left, constant, s.right));
  EXPECT_EQ(s.store->getActiveProfile(), profile);
}

/// A parameter and a tag that know each other by proxies only, as two that are loaded one after the other do.
class OppositeProxy : public CollectionProxy {
 protected:
  void SetUp() override {
    auto const made = TagState::create(s.model, nameUuid("late"));
    made->setId(u"late");
    late = made;
  }
  TagState late;
  plinth::ElementSequence<TagState>& tags = *s.second->getTags();
};

TEST_F(OppositeProxy, IsKeptWhileTheFarEndDoesNotListTheOwner) {
  auto const waiting = proxy<TagState>("late");
  tags.add(waiting);
  tags.resolveAll();
  EXPECT_THAT(tags, ElementsAre(waiting));
  tags.remove(late);
  EXPECT_THAT(tags, ElementsAre(waiting));
  tags.remove(waiting);
}

TEST_F(OppositeProxy, ResolvingIsNoChangeAndARollbackDoesNotDoubleIt) {
  tags.add(proxy<TagState>("late"));
  late->getTagged()->add(
      element_cast<ParamState>(s.model->createProxy(ParamState::metaClass(), s.second->getPersistentProxyId(true))));
  int told = 0;
  auto const listening = s.model.addListener([&](plinth::ChangeSet const&) { ++told; });
  {
    auto transaction = s.model.beginTransaction();
    tags.insert(0, s.tag);
    EXPECT_EQ(tags.at(1), late);
  }
  EXPECT_EQ(told, 0);
  EXPECT_THAT(tags, ElementsAre(late));
  late->getTagged()->resolveAll();
  EXPECT_THAT(*late->getTagged(), ElementsAre(s.second));
  EXPECT_THAT(tags, ElementsAre(late)) << "the far end listed it already";
  tags.add(late);
  EXPECT_EQ(tags.insert(0, late), 0U);
  EXPECT_THAT(tags, ElementsAre(late));
}

TEST_F(OppositeProxy, ReplacingItLinksBothEnds) {
  tags.add(proxy<TagState>("late"));
  tags.replaceProxy(late);
  EXPECT_THAT(tags, ElementsAre(late));
  EXPECT_THAT(*late->getTagged(), ElementsAre(s.second));
  late->getTagged()->clear();

  late->getTagged()->add(
      element_cast<ParamState>(s.model->createProxy(ParamState::metaClass(), s.second->getPersistentProxyId(true))));
  late->getTagged()->replaceProxy(s.second);
  EXPECT_THAT(*late->getTagged(), ElementsAre(s.second));
  EXPECT_THAT(tags, ElementsAre(late));
}

TEST_F(OppositeProxy, UnloadingLeavesProxiesInTheOtherModel) {
  // Two models that know each other's element: the link becomes real on both sides when it is read.
  auto const elsewhere = plinth::Model::create();
  elsewhere->setName(u"elsewhere");
  EXPECT_EQ(raised([&] { s.model->setName(u"elsewhere"); }), "ModelNameTaken(elsewhere)");
  s.model->setName(u"here");
  auto const far = TagState::create(elsewhere);
  tags.add(element_cast<TagState>(s.model->createProxy(TagState::metaClass(), far->getPersistentProxyId(false))));
  far->getTagged()->add(
      element_cast<ParamState>(elsewhere->createProxy(ParamState::metaClass(), s.second->getPersistentProxyId(false))));
  EXPECT_EQ(tags.at(0), far);
  far->getTagged()->resolveAll();
  EXPECT_THAT(*far->getTagged(), ElementsAre(s.second));
  EXPECT_THAT(tags, ElementsAre(far));

  ProxyId const id = far->getPersistentProxyId(false);
  elsewhere->unload(far);
  ASSERT_EQ(tags.size(), 1U);
  EXPECT_TRUE(tags.at(0)->isProxy());
  EXPECT_EQ(*tags.at(0)->getProxyId(), id);
}

}  // namespace
}  // namespace collections_test
