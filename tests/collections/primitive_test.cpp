// Collections of plain values.
#include <gmock/gmock.h>

#include <cmath>
#include <tessel_config_datamodel/data/BooleanParamData.hpp>
#include <tessel_config_datamodel/data/EnumOption.hpp>
#include <tessel_config_datamodel/data/StringParamData.hpp>
#include <tessel_config_datamodel/schema/ControllerDef.hpp>
#include <tessel_config_datamodel/schema/SchemaData.hpp>

#include "plinth/ChangeSet.hpp"
#include "plinth/FailurePoint.hpp"
#include "plinth/collections/PrimitiveSet.hpp"
#include "plinth/sample_model.hpp"
#include "refusal.hpp"

namespace collections_test {
namespace {

using plinth::CollisionResolution;
using plinth::PrimitiveKind;
using plinth::Value;
using tessel::internal::config::schema::ControllerDef;
using testing::ElementsAre;
using testing::IsEmpty;
namespace data = tessel::internal::config::data;

template <class T>
Value valueOf(T const& content) {
  return Value::make<T>({plinth::MetaTypeOf<T>::type(), plinth::meta::SINGLE}, content);
}

/// The untyped view of a sequence, as whoever doesn't know its class gets it.
plinth::GenericPrimitiveSequenceInterface& viewOf(plinth::AbstractPrimitiveCollection& sequence) {
  auto& view = *sequence.getGenericInterface();
  EXPECT_TRUE(view.isSequenceInterface() && !view.isMapInterface());
  return static_cast<plinth::GenericPrimitiveSequenceInterface&>(view);
}

class PrimitiveCollection : public testing::Test {
 protected:
  plinth::Model model = plinth::Model::create();
  data::DoubleParamData number = data::DoubleParamData::create(model);
  data::StringParamData text = data::StringParamData::create(model);
};

TEST_F(PrimitiveCollection, SequencesKeepDuplicatesAndRemoveTheFirst) {
  auto& allowed = *text->getAllowedValues();
  for (auto const* value : {u"a", u"b", u"a"}) allowed.push_back(value);
  EXPECT_THAT(allowed, ElementsAre(u"a", u"b", u"a"));
  EXPECT_TRUE(std::equal(allowed.rbegin(), allowed.rend(), allowed.begin()));
  allowed.genericRemove(valueOf<std::u16string>(u"a"));
  EXPECT_THAT(allowed, ElementsAre(u"b", u"a"));
  EXPECT_EQ(viewOf(allowed).genericIndexOf(valueOf<std::u16string>(u"a")), 1U);
  EXPECT_EQ(viewOf(allowed).genericIndexOf(valueOf<std::u16string>(u"c")), 0xFFFFFFFFU);
  viewOf(allowed).genericInsert(valueOf<std::u16string>(u"c"), 1);
  viewOf(allowed).genericReplace(valueOf<std::u16string>(u"d"), 0);
  EXPECT_EQ(*allowed.insert(allowed.begin(), allowed[2]), u"a") << "a value of its own";
  EXPECT_EQ(*allowed.erase(allowed.begin()), u"d");
  viewOf(allowed).genericRemoveAt(2);
  EXPECT_THAT(allowed.getAllValues(), ElementsAre(valueOf<std::u16string>(u"d"), valueOf<std::u16string>(u"c")));
  EXPECT_EQ(viewOf(allowed).genericAt(1).getValue<std::u16string>(), u"c");
  EXPECT_EQ(allowed.getKind(), PrimitiveKind::SEQUENCE);
}

TEST_F(PrimitiveCollection, ANaNIsAddedAndNeverFound) {
  auto& allowed = *number->getAllowedValues();
  allowed.push_back(std::nan(""));
  allowed.genericRemove(valueOf(std::nan("")));
  EXPECT_EQ(allowed.size(), 1U);
  EXPECT_EQ(viewOf(allowed).genericIndexOf(valueOf(std::nan(""))), 0xFFFFFFFFU);
  allowed.genericAdd(Value({plinth::StandardTypes::realMeta(), plinth::meta::SINGLE}));
  EXPECT_EQ(allowed[1], 0) << "a value with no content is the zero";
}

TEST_F(PrimitiveCollection, AValueOfAnotherTypeIsRefusedAndChangesNothing) {
  auto& allowed = *number->getAllowedValues();
  allowed.push_back(1);
  Value const wrong = valueOf<std::u16string>(u"1");
  std::string const refusal = "CannotCastIncompatibleTypes(String, Real, single, single)";
  EXPECT_EQ(raised([&] { allowed.genericAdd(wrong); }), refusal);
  EXPECT_EQ(raised([&] { allowed.genericRemove(wrong); }), refusal);
  EXPECT_EQ(raised([&] { viewOf(allowed).genericInsert(wrong, 0); }), refusal);
  EXPECT_EQ(raised([&] { viewOf(allowed).genericReplace(wrong, 0); }), refusal);
  EXPECT_EQ(raised([&] { viewOf(allowed).genericIndexOf(wrong); }), refusal);
  EXPECT_EQ(raised([&] {
              allowed.genericAdd(Value({plinth::StandardTypes::realMeta(), plinth::meta::SEQUENCE}));
            }),
            "CannotCastIncompatibleTypes(Real, Real, sequence, single)");
  EXPECT_THAT(allowed, ElementsAre(1));
}

TEST_F(PrimitiveCollection, AUniqueSequenceLeavesWhatItHas) {
  plinth::PrimitiveSequence<std::u16string> unique{plinth::CollectionPrivateTag()};
  unique.makeUnique();
  for (auto const* value : {u"a", u"b", u"a"}) unique.push_back(value);
  unique.push_back(u"b");
  EXPECT_EQ(unique.insert(unique.begin(), u"b") - unique.begin(), 1);
  viewOf(unique).genericReplace(valueOf<std::u16string>(u"a"), 1);
  EXPECT_THAT(unique, ElementsAre(u"a", u"b"));
  std::vector<std::u16string> const more{u"b", u"c", u"c"};
  EXPECT_EQ(*unique.insert(unique.begin(), more.begin(), more.end()), u"c");
  EXPECT_THAT(unique, ElementsAre(u"c", u"a", u"b"));
  unique.assign({u"x", u"y", u"x"});
  EXPECT_THAT(unique, ElementsAre(u"x", u"y"));
}

TEST_F(PrimitiveCollection, RangesGoInAndOutAsOneChange) {
  auto& allowed = *text->getAllowedValues();
  allowed.assign({u"a", u"b", u"c"});
  std::size_t changes = 0;
  auto const told = model.addListener([&changes](plinth::ChangeSet const&) { ++changes; });
  EXPECT_EQ(*allowed.insert(allowed.begin() + 1, allowed.begin(), allowed.end()), u"a") << "of its own values";
  EXPECT_THAT(allowed, ElementsAre(u"a", u"a", u"b", u"c", u"b", u"c"));
  EXPECT_EQ(*allowed.erase(allowed.begin() + 1, allowed.end() - 1), u"c");
  EXPECT_THAT(allowed, ElementsAre(u"a", u"c"));
  EXPECT_EQ(changes, 2U);
  EXPECT_EQ(allowed.erase(allowed.begin(), allowed.begin()), allowed.begin());
  EXPECT_EQ(allowed.insert(allowed.end(), allowed.begin(), allowed.begin()), allowed.end());
  EXPECT_EQ(changes, 2U) << "nothing is no change";
}

TEST_F(PrimitiveCollection, EveryChangeIsTakenBackAtItsLevel) {
  auto const flags = data::BooleanParamData::create(model);
  auto& bits = *flags->getAllowedValues();
  bits.assign({true, false, true});
  auto outer = model.beginTransaction();
  bits.push_back(true);
  {
    auto inner = model.beginTransaction();
    viewOf(bits).genericReplace(valueOf(true), 1);
    bits.erase(bits.begin());
    bits.insert(bits.begin(), false);
    bits.clear();
    bits.push_back(false);
  }
  EXPECT_THAT(bits, ElementsAre(true, false, true, true));
#ifdef TESSEL_FAILURE_POINTS
  plinth::armFailurePoint("primitive-insert", 1);
  EXPECT_THROW(bits.push_back(true), std::bad_alloc);
  EXPECT_TRUE(plinth::disarmFailurePoint());
  EXPECT_EQ(bits.size(), 4U);
#endif
}

TEST_F(PrimitiveCollection, AMapIsUniqueByKeyAndInKeyOrder) {
  auto const schema = tessel::internal::config::schema::SchemaData::create(model);
  auto& controllers = *schema->getControllers();
  auto const controller = [](std::u16string const& id, std::u16string const& name) {
    ControllerDef made;
    made.setId(id);
    made.setClass(name);
    return made;
  };
  EXPECT_TRUE(controllers.insert(controller(u"b", u"B")));
  EXPECT_TRUE(controllers.insert(controller(u"a", u"A")));
  EXPECT_FALSE(controllers.insert(controller(u"a", u"A")));
  EXPECT_EQ(raised([&] { controllers.genericAdd(valueOf(controller(u"a", u"X"))); }), "UniquenessConstraint");
  EXPECT_FALSE(controllers.insert(controller(u"a", u"X"), CollisionResolution::KEEP));
  EXPECT_EQ(controllers.find(u"a")->getClass(), u"A");
  {
    auto transaction = model.beginTransaction();
    EXPECT_TRUE(controllers.insert(controller(u"a", u"X"), CollisionResolution::REPLACE));
    EXPECT_EQ(controllers.find(u"a")->getClass(), u"X");
    controllers.genericRemove(valueOf(controller(u"b", u"other")));
    controllers.genericRemove(valueOf(controller(u"b", u"B")));
    EXPECT_FALSE(controllers.erase(u"b"));
    EXPECT_TRUE(controllers.erase(u"a"));
  }
  EXPECT_THAT(controllers.getAllValues(),
              ElementsAre(valueOf(controller(u"a", u"A")), valueOf(controller(u"b", u"B"))));
  EXPECT_EQ(controllers.getKind(), PrimitiveKind::MAP);
  auto& view = static_cast<plinth::GenericPrimitiveAssociativeInterface&>(*controllers.getGenericInterface());
  EXPECT_TRUE(view.isMapInterface());
  EXPECT_THAT(view.genericKeys(), ElementsAre(valueOf<std::u16string>(u"a"), valueOf<std::u16string>(u"b")));
  EXPECT_EQ(view.genericGet(valueOf<std::u16string>(u"b")), valueOf(controller(u"b", u"B")));
  EXPECT_TRUE(view.genericGet(valueOf<std::u16string>(u"c")).isEmpty());
  EXPECT_EQ(raised([&] { view.genericGet(valueOf(1.0)); }),
            "CannotCastIncompatibleTypes(Real, String, single, single)");
  EXPECT_EQ(view.getQualifierType().impl(), plinth::StandardTypes::stringMeta());

  plinth::PrimitiveMap<std::u16string, ControllerDef> keyless(plinth::CollectionPrivateTag(), {});
  EXPECT_THROW(keyless.insert(controller(u"a", u"A")), std::bad_function_call);
}

TEST_F(PrimitiveCollection, ASetIsOrderedAndDropsWhatIsEqual) {
  plinth::PrimitiveSet<data::EnumOption> options{plinth::CollectionPrivateTag()};
  data::EnumOption low, high;
  low.setValue(u"low");
  high.setValue(u"high");
  EXPECT_TRUE(options.insert(low));
  EXPECT_TRUE(options.insert(high));
  EXPECT_FALSE(options.insert(low));
  EXPECT_THAT(options, ElementsAre(high, low));
  options.genericRemove(valueOf(high));
  options.genericRemove(valueOf(high));
  EXPECT_THAT(options, ElementsAre(low));
  auto& view = *options.getGenericInterface();
  view.genericAdd(valueOf(high));
  EXPECT_EQ(view.genericSize(), 2U);
  EXPECT_THAT(view.genericValues(), ElementsAre(valueOf(high), valueOf(low)));
  view.genericClear();
  EXPECT_TRUE(options.empty());
  EXPECT_EQ(view.getKind(), PrimitiveKind::SET);
}

}  // namespace
}  // namespace collections_test
