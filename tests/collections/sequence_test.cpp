// Sequences of elements: what is ignored, what is refused, and how containment follows the slots.
#include <gmock/gmock.h>

#include <algorithm>

#include "plinth/diagnostics/Verify.hpp"
#include "plinth/sample_model.hpp"
#include "refusal.hpp"

namespace collections_test {
namespace {

using namespace sample;
using plinth::verify;
using runtime::CategoryState;
using runtime::ParamState;
using testing::ElementsAre;
using testing::IsEmpty;

class ElementSequence : public testing::Test {
 protected:
  ~ElementSequence() override { EXPECT_THAT(verify(s.model), IsEmpty()); }

  SampleModel s;
  plinth::ElementSequence<runtime::ControllableState>& contents =
      *s.category->getContents();                                              // unique, first and second
  plinth::ElementSequence<expr::ExprValue>& operands = *s.sum->getOperands();  // contained, not unique, left and right
};

TEST_F(ElementSequence, IgnoresNullsAndRepeatsOnlyWhereItIsNotUnique) {
  contents.add({});
  operands.add({});
  EXPECT_EQ(contents.insert(0, s.second), 1U) << "the place that it has already";
  contents.add(s.first);
  EXPECT_THAT(contents, ElementsAre(s.first, s.second));
  operands.add(s.left);
  EXPECT_THAT(operands, ElementsAre(s.left, s.right, s.left));
  operands.remove(expr::NumericConstant::create(s.model));
  EXPECT_EQ(operands.erase(1), 1U);
  EXPECT_THAT(operands, ElementsAre(s.left, s.left));
}

TEST_F(ElementSequence, AnElementInTwoSlotsIsContainedUntilItLeavesTheLast) {
  operands.add(s.left);
  auto const before = plinth::Fingerprint::of(s.model);
  operands.remove(s.left);
  EXPECT_EQ(s.left->container(), s.sum);
  EXPECT_THAT(operands, ElementsAre(s.right, s.left));
  operands.remove(s.left);
  EXPECT_FALSE(s.left->container());

  auto const other = expr::NumericOperation::create(s.model);
  operands.insert(0, s.left);
  operands.add(s.left);
  {
    auto transaction = s.model.beginTransaction();
    other->getOperands()->add(s.left);
    EXPECT_THAT(operands, ElementsAre(s.right)) << "the other container takes it from every slot";
    EXPECT_THAT(verify(s.model), IsEmpty());
    s.left->destroy();
    EXPECT_THAT(*other->getOperands(), IsEmpty());
  }
  EXPECT_THAT(operands, ElementsAre(s.left, s.right, s.left));
  other->destroy();
  EXPECT_EQ(changeSince(before, s.model), "");
  operands.clear();
  EXPECT_FALSE(s.left->container());
  EXPECT_FALSE(s.right->container());
}

TEST_F(ElementSequence, AssignmentToASlotMovesBothEndsOfTheLink) {
  auto const other = CategoryState::create(s.model);
  auto const third = ParamState::create(s.model);
  third->setCategory(other);
  contents[0] = third;
  EXPECT_THAT(contents, ElementsAre(third, s.second));
  EXPECT_THAT(*other->getContents(), IsEmpty());
  EXPECT_EQ(third->getCategory(), s.category);
  EXPECT_FALSE(s.first->getCategory());
  contents[0] = third;  // no change

  operands[1] = operands[0];
  EXPECT_THAT(operands, ElementsAre(s.left, s.left));
  EXPECT_FALSE(s.right->container());
}

TEST_F(ElementSequence, ReadsAsARandomAccessRangeThatNoAlgorithmCanChange) {
  using Iterator = plinth::ElementSequence<runtime::ControllableState>::Iterator;
  static_assert(std::is_same_v<std::iterator_traits<Iterator>::iterator_category, std::random_access_iterator_tag>);
  static_assert(!std::is_assignable_v<std::iterator_traits<Iterator>::reference, runtime::ControllableState>);
  auto const third = ParamState::create(s.model);
  third->setKey(u"third");
  EXPECT_TRUE(contents.add(third));
  EXPECT_FALSE(contents.add(third));
  std::vector<runtime::ControllableState> const copy(contents.begin(), contents.end());
  EXPECT_TRUE(std::equal(contents.rbegin(), contents.rend(), copy.rbegin()));
  for (std::size_t i = 0; i < copy.size(); ++i) {
    auto const offset = static_cast<std::ptrdiff_t>(i);
    EXPECT_EQ(contents.indexOf(copy[i]), i);
    EXPECT_EQ(std::distance(contents.begin(), std::find(contents.begin(), contents.end(), copy[i])), offset);
    EXPECT_EQ(contents.end()[offset - 3], copy[i]);
    auto const key = plinth::element_cast<ParamState>(contents[i])->getKey();
    auto const at = std::lower_bound(contents.begin(), contents.end(), key, [](auto const& member, auto const& wanted) {
      return plinth::element_cast<ParamState>(member)->getKey() < wanted;
    });
    EXPECT_TRUE(at == contents.begin() + offset && at < contents.end() && *at == std::as_const(contents)[i]);
  }
  EXPECT_TRUE(contents[0] && contents[0] == s.first && contents[0] != contents[1]);
  EXPECT_EQ(contents[1]->getCategory(), s.category);
  EXPECT_EQ(contents.indexOf(ParamState::create(s.model)), plinth::ReferenceSequence::ABSENT);
  EXPECT_EQ(contents.insert(contents.begin(), third) - contents.begin(), 2) << "the place that it has already";
  EXPECT_EQ(*contents.erase(contents.begin(), contents.begin() + 2), third);
  EXPECT_FALSE(s.first->getCategory() || s.second->getCategory());
}

TEST_F(ElementSequence, TakesASlotOfItsOwnAsArgument) {
  for (int i = 0; i < 20; ++i) operands.add(*operands.begin());
  EXPECT_EQ(operands.size(), 22U);
  operands.remove(*operands.begin());
  EXPECT_EQ(operands.at(0), s.right);
}

TEST_F(ElementSequence, EnsureAtInsertsOrSwaps) {
  auto& view = *contents.getGenericInterface();
  auto const third = ParamState::create(s.model);
  view.genericEnsureAt(third, 1);
  EXPECT_THAT(contents, ElementsAre(s.first, third, s.second));
  view.genericEnsureAt(s.second, 0);
  EXPECT_THAT(contents, ElementsAre(s.second, third, s.first));
  view.genericEnsureAt(s.second, 3);
  EXPECT_THAT(contents, ElementsAre(s.second, third, s.first)) << "the place behind the last is none to swap with";
}

TEST_F(ElementSequence, RefusesWithAMessageAndChangesNothing) {
  auto const other = plinth::Model::create();
  auto const foreign = ParamState::create(other);
  auto const dead = ParamState::create(s.model);
  dead->destroy();
  auto const above = expr::NumericOperation::create(s.model);
  above->getOperands()->add(s.sum);
  auto const before = plinth::Fingerprint::of(s.model);

  EXPECT_EQ(raised([&] { contents.add(foreign); }), "CannotCreateCrossModelAssociation");
  EXPECT_EQ(raised([&] { contents.insert(0, foreign); }), "CannotCreateCrossModelAssociation");
  EXPECT_EQ(raised([&] { contents[0] = foreign; }), "CannotCreateCrossModelAssociation");
  EXPECT_EQ(raised([&] { contents.add(dead); }), "CannotAddNonExistentObject");
  EXPECT_EQ(raised([&] { contents[0] = {}; }), "CannotAddNonExistentObject");
  EXPECT_EQ(raised([&] { contents[0] = s.second; }), "CannotAddSecondObject");
  EXPECT_EQ(raised([&] { operands.add(above); }), "CannotContainAncestor");
  EXPECT_EQ(raised([&] { operands[0] = s.sum; }), "CannotContainAncestor");
  EXPECT_EQ(changeSince(before, s.model), "");
}

TEST_F(ElementSequence, GenericOperationsRefuseAnotherClassButTheOnesThatOnlyLook) {
  auto& view = static_cast<plinth::GenericSequenceInterface&>(*operands.getGenericInterface());
  std::string const refusal =
      "CannotAddIncompatibleTypes(tessel.internal.config.expr.ExprValue, tessel.internal.config.runtime.ParamState)";
  EXPECT_EQ(raised([&] { view.genericAdd(s.first); }), refusal);
  EXPECT_EQ(raised([&] { view.genericInsert(s.first, 0); }), refusal);
  EXPECT_EQ(raised([&] { view.genericReplace(s.first, 0); }), refusal);
  EXPECT_EQ(raised([&] { view.genericEnsureAt(s.first, 0); }), refusal);
  EXPECT_EQ(raised([&] { view.genericRemove(s.first); }), refusal);
  for (plinth::ModelElement const& stranger : {plinth::ModelElement(), plinth::ModelElement(s.first)}) {
    EXPECT_FALSE(view.genericContains(stranger));
    EXPECT_EQ(view.genericIndexOf(stranger), 0xFFFFFFFFU);
  }
  view.genericAdd({});
  view.genericReplace({}, 0);
  view.genericInsert({}, 0);
  view.genericRemove({});
  EXPECT_EQ(view.genericSize(), 2U);
  EXPECT_TRUE(view.isSequenceInterface() && !view.isMapInterface() && !view.isMultimapInterface());
  EXPECT_EQ(view.genericAt(1), s.right);
  EXPECT_EQ(view.genericIndexOf(s.right), 1U);
  view.genericRemoveAt(0);
  EXPECT_THAT(operands, ElementsAre(s.right));
}

TEST_F(ElementSequence, AFilterNeverDeniesAMemberAndForgetsWhatHasGone) {
  operands.useFilter(std::make_unique<plinth::SaturatedBloomFilter>(4));
  auto const third = expr::NumericConstant::create(s.model);
  operands.add(third);
  {
    auto transaction = s.model.beginTransaction();
    operands.remove(third);
    EXPECT_FALSE(operands.contains(third));
    operands.clear();
    EXPECT_FALSE(operands.contains(s.left));
  }
  for (auto const& member : {s.left, s.right, third}) EXPECT_TRUE(operands.contains(member)) << "after the rollback";
  operands[0] = third;
  EXPECT_FALSE(operands.contains(s.left));
  EXPECT_TRUE(operands.contains(third));
}

TEST(SaturatedBloomFilter, CountersThatAreFullStayFull) {
  plinth::SaturatedBloomFilter filter(1);
  auto const uuid = nameUuid("often");
  for (int i = 0; i < 300; ++i) filter.add(uuid);
  for (int i = 0; i < 299; ++i) filter.remove(uuid);
  EXPECT_TRUE(filter.contains(uuid));
  EXPECT_FALSE(filter.contains(nameUuid("never")));
  filter.add(nameUuid("once"));
  filter.remove(nameUuid("once"));
  EXPECT_FALSE(filter.contains(nameUuid("once")));
}

// Undo: what was done in a committed inner transaction to an element that the outer one made must not be applied to
// what the collection has become since.
TEST_F(ElementSequence, ANewElementsCollectionForgetsStepsOfInnerTransactions) {
  auto const before = plinth::Fingerprint::of(s.model);
  {
    auto outer = s.model.beginTransaction();
    auto const made = expr::NumericOperation::create(s.model);
    {
      auto inner = s.model.beginTransaction();
      made->getOperands()->add(s.left);
      inner.commit();
    }
    made->getOperands()->clear();
    auto inner = s.model.beginTransaction();
    made->getOperands()->add(s.right);
  }
  EXPECT_EQ(changeSince(before, s.model), "");
}

}  // namespace
}  // namespace collections_test
