// What the generator makes of its test tables compiles and works: one property of each scheme, among them shapes that
// the configuration model does not use.
#include <gmock/gmock.h>

#include <good_datamodel/good/ArchiveBuilder.hpp>
#include <good_datamodel/good/TinyItemBuilder.hpp>
#include <good_datamodel/upper/DepotBuilder.hpp>
#include <good_datamodel/upper/PriceLabelBuilder.hpp>

#include "plinth/AbstractPrimitiveCollection.hpp"
#include "plinth/Model.hpp"
#include "plinth/diagnostics/ValueText.hpp"
#include "support/checks.hpp"

namespace {

using support::raised;
using support::Snapshot;
using tessel::base::Color;
using tessel::base::Point;
using tessel::good::Depot;
using tessel::good::PriceLabel;
using tessel::good::shop::Archive;
using tessel::good::shop::Item;
using tessel::good::shop::Shop;
using tessel::good::shop::TinyItem;
using testing::ElementsAre;
using testing::SizeIs;

/// The property's values as reflection shows them.
plinth::AbstractPrimitiveCollection const& valuesOf(plinth::ModelElement const& element, char16_t const* property) {
  auto const value = element->getPropertyValue(plinth::meta::Property(element->getMetaClass()->findProperty(property)));
  EXPECT_EQ(value.meta().flags(), plinth::meta::SET);
  return value.primitiveCollection();
}

class GeneratedCode : public testing::Test {
 protected:
  plinth::Model model = plinth::Model::create();
};

TEST_F(GeneratedCode, SetOfValuesHoldsEachOnceInOrderAndIsTakenBack) {
  auto const shop = Shop::create(model);
  EXPECT_FALSE(shop->hasPlaces());
  for (double const x : {3.0, 1.0, 3.0, 2.0}) shop->getPlacesMutable()->insert(Point(x));
  EXPECT_THAT(shop->getPlaces()->values(), ElementsAre(Point(1), Point(2), Point(3)));

  Snapshot const before(model);
  {
    auto const transaction = model.beginTransaction();
    shop->getPlaces()->insert(Point(4));
    shop->getPlaces()->erase(Point(1));
    EXPECT_THAT(shop->getPlaces()->values(), ElementsAre(Point(2), Point(3), Point(4)));
  }
  EXPECT_TRUE(before.isBack());
  {
    auto const transaction = model.beginTransaction();
    shop->getPlaces()->clear();
    EXPECT_FALSE(shop->hasPlaces());
  }
  EXPECT_TRUE(before.isBack());
  EXPECT_THAT(shop->getPlaces()->values(), ElementsAre(Point(1), Point(2), Point(3)));
}

TEST_F(GeneratedCode, SetOfValuesIsBuiltAndShownByReflection) {
  Depot::Builder builder(model);
  builder.addColors({Color::DARK_RED, Color::RED, Color::DARK_RED}).addWords(u"b").addWords(u"a");
  auto const depot = plinth::element_cast<Depot>(builder.create());
  EXPECT_THAT(depot->getColors()->values(), ElementsAre(Color::RED, Color::DARK_RED));

  auto const& words = valuesOf(depot, u"Words");
  EXPECT_EQ(words.getKind(), plinth::PrimitiveKind::SET);
  auto const all = words.getAllValues();
  ASSERT_EQ(all.size(), 2U);
  EXPECT_EQ(all.front().getValue<std::u16string>(), u"a");
  depot->getWords()->genericRemove(all.front());
  EXPECT_THAT(words.getAllValues(), SizeIs(1));
  depot->getWords()->genericAdd(all.front());
  EXPECT_THAT(depot->getWords()->values(), ElementsAre(u"a", u"b"));
  EXPECT_EQ(raised([&] { depot->getColors()->genericAdd(all.front()); }), "CannotCastIncompatibleTypes");
  EXPECT_TRUE(support::isSound(model));
}

TEST_F(GeneratedCode, KeyThatMapsOfItsClassAndOfADerivedOneShareKeepsBothSound) {
  auto const archive = Archive::create(model);
  auto const item = Item::create(model);
  auto const loose = TinyItem::create(model);
  auto const boxed = TinyItem::create(model);
  item->setCode(u"item");
  loose->setCode(u"loose");
  boxed->setCode(u"boxed");
  archive->getItems()->insert(item);
  archive->getItems()->insert(loose);
  archive->getBoxes()->insert(boxed);
  Snapshot const before(model);

  EXPECT_EQ(raised([&] { loose->setCode(u"item"); }), "UniquenessConstraint");
  EXPECT_TRUE(before.isBack());
  {
    auto const transaction = model.beginTransaction();
    for (Item const& each : {item, Item(loose), Item(boxed)}) each->setCode(each->getCode() + u"2");
    EXPECT_EQ(archive->getItems()->find(u"item2"), item);
    EXPECT_EQ(archive->getItems()->find(u"loose2"), loose);
    EXPECT_EQ(archive->getBoxes()->find(u"boxed2"), boxed);
    EXPECT_FALSE(archive->getItems()->find(u"item"));
    EXPECT_TRUE(support::isSound(model));
  }
  EXPECT_TRUE(before.isBack());
}

TEST_F(GeneratedCode, KeyOfAMapOfADerivedClassOnlyKeepsItSoundThroughTheBase) {
  auto const depot = Depot::create(model);
  auto const label = PriceLabel::create(model);
  label->setText(u"old");
  depot->getPriceLabels()->insert(label);
  tessel::good::Label(label)->setText(u"new");
  EXPECT_EQ(depot->getPriceLabels()->find(u"new"), label);
  EXPECT_FALSE(depot->getPriceLabels()->find(u"old"));
  EXPECT_TRUE(support::isSound(model));
}

}  // namespace
