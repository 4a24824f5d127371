// Sets of elements and the views that narrow a collection.
#include <gmock/gmock.h>

#include "plinth/diagnostics/Verify.hpp"
#include "plinth/sample_model.hpp"
#include "refusal.hpp"

namespace collections_test {
namespace {

using namespace sample;
using runtime::CategoryState;
using runtime::ControllableState;
using runtime::ParamState;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class ElementSet : public testing::Test {
 protected:
  ~ElementSet() override { EXPECT_THAT(plinth::verify(s.model), IsEmpty()); }

  SampleModel s;
  plinth::UnorderedElementSet<ControllableState>& members = *s.perspective->getMembers();  // first, second
  plinth::UnorderedElementSet<ControllableState>& tagged = *s.tag->getTagged();            // first
  CategoryState inner = CategoryState::create(s.model);
};
using SubsettedElementSet = ElementSet;

TEST_F(ElementSet, HoldsAnElementOnceAndIgnoresNulls) {
  EXPECT_FALSE(members.add({}) || members.add(s.first) || members.remove({}) || members.remove(inner));
  EXPECT_THAT(members, UnorderedElementsAre(s.first, s.second));
  EXPECT_TRUE(members.contains(s.first));
  auto const other = plinth::Model::create();
  EXPECT_EQ(raised([&] { members.add(ParamState::create(other)); }), "CannotCreateCrossModelAssociation");
}

TEST_F(ElementSet, BothEndsOfAnOppositeFollowEachOther) {
  EXPECT_TRUE(tagged.add(s.second));
  EXPECT_THAT(*s.second->getTags(), ElementsAre(s.tag));
  EXPECT_TRUE(s.first->getTags()->remove(s.tag));
  EXPECT_THAT(tagged, ElementsAre(s.second));
  auto transaction = s.model.beginTransaction();
  tagged.clear();
  EXPECT_THAT(*s.second->getTags(), IsEmpty());
  EXPECT_THAT(plinth::verify(s.model), IsEmpty());
}

TEST_F(ElementSet, ADeadMemberOfAPlainReferenceCanBeRemoved) {
  s.first->destroy();
  EXPECT_EQ(members.size(), 2U);
  EXPECT_THAT(*s.perspective->getMemberParams(), ElementsAre(s.second)) << "the dead one is of no class";
  members.getGenericInterface()->genericRemove(s.first);
  EXPECT_EQ(members.size(), 2U) << "the generic view ignores dead elements";
  members.remove(s.first);
  EXPECT_THAT(members, ElementsAre(s.second));
}

TEST_F(SubsettedElementSet, WritesThroughToTheParent) {
  auto& contents = *s.category->getContents();
  inner->setCategory(s.category);
  auto const third = ParamState::create(s.model);
  s.category->getParams()->add(third);
  EXPECT_THAT(contents, ElementsAre(s.first, s.second, inner, third));
  EXPECT_EQ(third->getCategory(), s.category);
  EXPECT_THAT(*s.category->getParams(), ElementsAre(s.first, s.second, third));
  EXPECT_THAT(*s.category->getSubCategories(), ElementsAre(inner));
  s.category->getParams()->remove(s.first);
  EXPECT_FALSE(s.first->getCategory());
  s.category->getParams()->clear();
  EXPECT_THAT(contents, ElementsAre(inner));
  EXPECT_FALSE(s.category->hasParams());
  EXPECT_TRUE(s.category->hasSubCategories());
  EXPECT_EQ(s.category->getParams()->size(), 0U);
}

TEST_F(SubsettedElementSet, RefusesWhatItWouldNotShow) {
  auto& view = *s.perspective->getMemberParams()->getGenericInterface();
  EXPECT_EQ(raised([&] { view.genericAdd(inner); }),
            "CannotAddIncompatibleTypes(tessel.internal.config.runtime.ParamState, "
            "tessel.internal.config.runtime.CategoryState)");
  EXPECT_THAT(members, UnorderedElementsAre(s.first, s.second));
  members.getGenericInterface()->genericAdd(inner);
  EXPECT_EQ(members.size(), 3U);
  EXPECT_EQ(view.genericSize(), 2U);
  EXPECT_FALSE(view.genericContains(inner));
  view.genericBasicClear();
  EXPECT_EQ(view.genericSize(), 2U);
  view.genericClear();
  EXPECT_THAT(members, ElementsAre(inner));

  plinth::UnorderedElementSet<ControllableState> parent{plinth::CollectionPrivateTag()};
  plinth::SubsettedElementSet<ParamState, plinth::UnorderedElementSet<ControllableState>> filtered(
      parent, nullptr, nullptr, [&](plinth::ModelElement const& element) { return element == s.first; });
  EXPECT_EQ(raised([&] { filtered.add(s.second); }), "CannotAddIncompatibleObjectSubset");
  filtered.add(s.first);
  parent.add(s.second);
  EXPECT_THAT(filtered, ElementsAre(s.first));
  EXPECT_FALSE(filtered.contains(s.second));

  plinth::meta::Property const property(s.tag->getMetaClass()->findProperty(u"TaggedParams"));
  EXPECT_EQ(raised([&] { s.tag->setPropertyValue(property, s.tag->getPropertyValue(property)); }),
            "CannotSetReadOnlyProperty(tessel.internal.config.runtime.TagState.TaggedParams)");
}

}  // namespace
}  // namespace collections_test
