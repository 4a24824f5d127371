// Teardown: what an element takes with it, what it lets go of, and who is told.
#include <gmock/gmock.h>

#include <tessel_config_datamodel/expr/BranchBuilder.hpp>
#include <tessel_config_datamodel/expr/ConditionalOperation.hpp>
#include <tessel_config_datamodel/schema/SchemaData.hpp>

#include "plinth/ChangeSet.hpp"
#include "plinth/ProxyId.hpp"
#include "plinth/sample_model.hpp"
#include "support/checks.hpp"

using sample::SampleModel;
using support::isSound;
using support::raised;
using support::Snapshot;

namespace {

TEST(Teardown, TakesWhatIsContainedAndNothingThatIsOnlyReferredTo) {
  SampleModel s;
  auto const data = s.volume->getData();
  std::size_t const before = s.model->elementCount();
  s.day->destroy();
  EXPECT_FALSE(s.day || s.volume || s.balance || data);
  EXPECT_EQ(s.model->elementCount(), before - 5);
  EXPECT_THAT(s.store->getProfiles()->getAllValues(), testing::ElementsAre(s.night));
  s.configuration->destroy();
  EXPECT_FALSE(s.configuration || s.category || s.tag || s.perspective || s.first || s.second);
  EXPECT_TRUE(s.store) << "a configuration only names its store";
  s.day->destroy();  // once more does no harm
  EXPECT_TRUE(isSound(s.model));
}

TEST(Teardown, DetachesFromTheFarEndsOfOppositesAndClearsReferences) {
  SampleModel s;
  s.first->destroy();
  EXPECT_THAT(s.category->getContents()->getAllValues(), testing::ElementsAre(s.second));
  EXPECT_TRUE(s.tag->getTagged()->empty());
  s.category->destroy();
  EXPECT_TRUE(s.second->getCategory().isEmpty());
  s.store->destroy();
  EXPECT_EQ(core(*s.store.impl()).refCount(), 2U)
      << "the handle, and the reference of the configuration to what is dead";
  EXPECT_EQ(s.configuration->getConfigStore(), s.store);
  EXPECT_FALSE(s.configuration->hasConfigStore());
  EXPECT_TRUE(isSound(s.model));
}

TEST(Teardown, EndsChildrenInTheOrderOfTheirPropertiesAndThenTheirContainer) {
  SampleModel s;
  auto const conditional = sample::expr::ConditionalOperation::create(s.model);
  auto const branch = conditional->createIntoBranches(std::make_unique<sample::expr::Branch::Builder>());
  auto const inner = conditional->createIntoOperands(std::make_unique<sample::expr::NumericOperation::Builder>());
  auto const leaf = plinth::element_cast<sample::expr::NumericOperation>(inner)->createIntoOperands(
      std::make_unique<sample::expr::NumericConstant::Builder>());
  auto const last = conditional->createIntoOperands(std::make_unique<sample::expr::NumericConstant::Builder>());
  std::vector<plinth::ModelElement> ended;
  auto const listening = s.model.addListener([&](plinth::ChangeSet const& changes) { ended = changes.destroyed(); });
  conditional->destroy();
  EXPECT_THAT(ended, testing::ElementsAre(branch, leaf, inner, last, conditional));
  EXPECT_EQ(raised([&] { core(*s.volume).destroyRecursively(true, false, true); }), "CannotModifyOutsideTransaction");
  EXPECT_TRUE(s.volume);
  EXPECT_TRUE(isSound(s.model));
}

TEST(Teardown, LeavesHandlesThatAreSafeToUseAlsoWithoutTheirModel) {
  sample::runtime::ParamState param;
  sample::runtime::PerspectiveState perspective;
  {
    SampleModel s;
    s.model->setName(u"short lived");
    param = s.first;
    perspective = s.perspective;
  }
  EXPECT_EQ(raised([&] { param->setKey(u"other"); }), "CannotModifyDestroyedElement");
  EXPECT_EQ(raised([&] { perspective->setId(u"other"); }), "CannotModifyDestroyedElement");
  EXPECT_EQ(raised([&] { param->setCategory({}); }), "CannotModifyDestroyedElement");
  EXPECT_FALSE(param->getPersistentProxyId(false).model);
}

TEST(Teardown, SparesANodeThatABranchNamesAndDestroysTheBranches) {
  auto const model = plinth::Model::create();
  auto const conditional = sample::expr::ConditionalOperation::create(model);
  auto const branch = conditional->createIntoBranches(std::make_unique<sample::expr::Branch::Builder>());
  auto const outside = sample::expr::NumericConstant::create(model);
  auto const other = sample::expr::Branch::create(model);
  branch->setCondition(outside);
  conditional->setActiveBranch(other);  // need not be one of its branches
  EXPECT_TRUE(conditional->hasActiveBranch());
  conditional->destroy();
  EXPECT_FALSE(branch);
  EXPECT_TRUE(outside && other);
  EXPECT_TRUE(isSound(model));
}

TEST(Teardown, SkipsProxiesAmongTheChildrenAndClearsThem) {
  SampleModel s;
  auto const lost = sample::ext::ConfigEntry::create(s.model);
  lost->setKey(u"lost");
  auto const id = lost->getPersistentProxyId(true);
  lost->destroy();
  auto const proxy = s.model->createProxy(sample::ext::ConfigEntry::metaClass(), id);
  s.day->getValues()->addProxy(static_cast<sample::ext::ConfigEntry const&>(proxy));
  EXPECT_EQ(s.day->getValues()->getAllValuesAndProxies().size(), 3U);
  Snapshot const before(s.model);
  {
    auto const transaction = s.model.beginTransaction();
    auto const* const values = s.day->getValues();
    s.day->destroy();
    EXPECT_TRUE(values->getAllValuesAndProxies().empty());
    EXPECT_TRUE(proxy) << "it stands for what is elsewhere";
    EXPECT_FALSE(s.volume);
  }
  EXPECT_TRUE(before.isBack());
}

TEST(Teardown, AnnouncesTheEndOfEachCollectionElementsFirst) {
  static std::vector<std::u16string> ended;
  auto const model = plinth::Model::create();
  auto const schema = sample::runtime::ConfigurationState::create(model);
  auto const definitions = tessel::internal::config::schema::SchemaData::create(model);
  definitions->getCustomTypes()->push_back(u"type");
  static_cast<void>(definitions->getTags());
  static_cast<void>(definitions->getParams());
  plinth::ElementImpl::m_callback = [](plinth::ElementImpl*, plinth::AbstractOwnedCollection* collection) {
    ended.push_back(collection->property()->getName());
  };
  definitions->destroy();
  plinth::ElementImpl::m_callback = nullptr;
  EXPECT_THAT(ended, testing::ElementsAre(u"Params", u"Tags", u"CustomTypes"));
}

TEST(InverseRemove, ClearsASingleReferenceWhateverItIsGiven) {
  SampleModel s;
  auto& active = *plinth::meta::Property(sample::ext::ConfigStore::metaClass()->findProperty(u"ActiveProfile")).impl();
  auto transaction = s.model.beginTransaction();
  core(*s.store).inverseRemove(*s.night.impl(), active);
  EXPECT_TRUE(s.store->getActiveProfile().isEmpty());
  core(*s.store).inverseAdd(*s.night.impl(), active);
  EXPECT_EQ(s.store->getActiveProfile(), s.night);
  auto& foreign = *plinth::meta::Property(sample::ext::ConfigEntry::metaClass()->findProperty(u"Data")).impl();
  EXPECT_EQ(raised([&] { core(*s.store).inverseAdd(*s.night.impl(), foreign); }), "NoSuchProperty");
  EXPECT_EQ(raised([&] { core(*s.store).inverseRemove(*s.night.impl(), foreign); }), "NoSuchProperty");
}

}  // namespace
