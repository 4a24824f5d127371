// Facts derived from a small model that has one property of each scheme.
#include <gmock/gmock.h>

#include <boost/uuid/uuid_io.hpp>

#include "groundwork/NameUuid.hpp"
#include "modelgen/Summary.hpp"
#include "modelgen/context.hpp"
#include "modelgen/naming.hpp"
#include "workspace.hpp"

namespace modelgen::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

template <class Range>
std::vector<std::string> namesOf(Range const& range) {
  std::vector<std::string> names;
  for (auto const* each : range) names.push_back(each->name);
  return names;
}

std::vector<std::string> qualifiedNamesOf(std::vector<Property const*> const& properties) {
  std::vector<std::string> names;
  for (Property const* each : properties) names.push_back(each->owner->name + "." + each->name);
  return names;
}

class Derivation : public testing::Test {
 protected:
  void SetUp() override {
    Diagnostics diagnostics;
    std::vector<std::string> files;
    loadModels(goodOptions(workspace), set, diagnostics, files);
    ASSERT_TRUE(diagnostics.empty()) << diagnostics.sorted().front();
  }

  Class const& classNamed(std::string const& name) const { return *asClass(set.types.at("tessel.good.shop." + name)); }
  Property const& property(std::string const& owner, std::string const& name) const {
    return *findProperty(classNamed(owner), name);
  }

  Workspace workspace;
  ModelSet set;
};

TEST(Uuid, IsTheDigestOfTheBareNameWithVersionAndVariantSet) {
  // MD5("") is d41d8cd98f00b204e9800998ecf8427e, MD5("abc") is 900150983cd24fb0d6963f7d28e17f72; the bits of version 3
  // and of the variant are put over them.
  EXPECT_EQ(to_string(groundwork::nameUuid("")), "d41d8cd9-8f00-3204-a980-0998ecf8427e");
  EXPECT_EQ(to_string(groundwork::nameUuid("abc")), "90015098-3cd2-3fb0-9696-3f7d28e17f72");
}

TEST_F(Derivation, IndexesRunOnAlongTheChainAlsoFromAnImportedModel) {
  EXPECT_EQ(property("Shop", "Name").index, 1);
  EXPECT_EQ(property("Shop", "Shown").index, 3);
  EXPECT_EQ(property("Shop", "ShownSmall").index, 0) << "a derived view has no index";
  EXPECT_EQ(property("Shop", "Queue").index, 4);
  EXPECT_EQ(classNamed("Shop").lastIndex, 16);
  EXPECT_EQ(property("Archive", "Boxes").index, 17);
  EXPECT_EQ(classNamed("SmallItem").lastIndex, classNamed("Item").lastIndex);
  EXPECT_THAT(namesOf(classNamed("Archive").bases), ElementsAre("Named", "Shop"));
}

TEST_F(Derivation, FieldsStandAsValuesThenSingleElementsThenCollections) {
  EXPECT_THAT(namesOf(classNamed("Shop").fields),
              ElementsAre("Mode", "Operator", "Note", "Limit", "Picture", "Prices", "Places", "Tariffs", "Secret",
                          "Least", "Cashier", "Shown", "ShownSmall", "Queue", "QueuedSmall", "Items"));
  EXPECT_THAT(namesOf(classNamed("Shop").storageSlots), testing::Not(testing::Contains("ShownSmall")));
  EXPECT_EQ(classNamed("Shop").storageSlots.size(), 14u);
}

TEST_F(Derivation, OrderAndUniquenessFollowShapeAndSource) {
  auto const flags = [this](std::string const& name) {
    Property const& each = property("Shop", name);
    return std::make_pair(each.ordered, each.unique);
  };
  EXPECT_EQ(flags("Mode"), std::make_pair(true, true));
  EXPECT_EQ(flags("Prices"), std::make_pair(true, false));
  EXPECT_EQ(flags("Queue"), std::make_pair(true, true)) << "a sequence may choose";
  EXPECT_EQ(flags("Shown"), std::make_pair(false, true));
  EXPECT_EQ(flags("Items"), std::make_pair(false, false));
  EXPECT_EQ(flags("ShownSmall"), std::make_pair(false, true)) << "view of a set";
  EXPECT_EQ(flags("QueuedSmall"), std::make_pair(false, false)) << "view of a sequence";
}

TEST_F(Derivation, QueriesSeeElementsAndPlainValuesOnly) {
  EXPECT_THAT(namesOf(classNamed("Archive").chainQueryable),
              ElementsAre("Name", "Weight", "Shown", "Queue", "Mode", "Cashier", "Operator", "Limit", "Items", "Least",
                          "Boxes"));
}

TEST_F(Derivation, TheSetterOfAKeyKeepsItsMapsSoundOnceOneOfThemHoldsItsVeryClass) {
  Property const& code = property("Item", "Code");
  EXPECT_THAT(qualifiedNamesOf(code.keyedMaps), ElementsAre("Archive.Boxes", "Shop.Items", "Depot.Items"))
      << "in package order";
  EXPECT_FALSE(code.virtualSetter);
  for (char const* const name : {"Item", "SmallItem", "TinyItem"}) EXPECT_THAT(classNamed(name).overrides, IsEmpty());
}

TEST_F(Derivation, AKeyOfDerivedClassesOnlyIsKeptSoundByThese) {
  Class const& label = *asClass(set.types.at("tessel.good.Label"));
  Class const& priceLabel = *asClass(set.types.at("tessel.good.PriceLabel"));
  Property const& text = label.properties.front();
  EXPECT_TRUE(text.virtualSetter);
  EXPECT_THAT(text.keyedMaps, IsEmpty());
  ASSERT_EQ(priceLabel.overrides.size(), 1u);
  EXPECT_EQ(priceLabel.overrides.front().property, &text);
  EXPECT_THAT(qualifiedNamesOf(priceLabel.overrides.front().maps), ElementsAre("Depot.PriceLabels"));
}

TEST_F(Derivation, DefaultsAndStampsBecomeInitialisers) {
  Data const shop = classData(classNamed("Shop"), "");
  std::map<std::string, std::string> initializers;
  for (Data const& each : shop.get("properties")->list_value()) {
    initializers[each.get("name")->string_value()] = each.get("initializer")->string_value();
  }
  EXPECT_EQ(initializers["Mode"], "tessel::good::shop::ShopMode::OPEN");
  EXPECT_EQ(initializers["Operator"], "u\"a\\\"b\"");
  EXPECT_EQ(initializers["Least"], "(-9223372036854775807 - 1)");
  EXPECT_EQ(initializers["Limit"], "") << "an optional starts unset";
  ASSERT_EQ(classNamed("Archive").stamps.size(), 1u);
  EXPECT_EQ(classNamed("Archive").stamps.front().literal->name, "CLOSED");
}

TEST_F(Derivation, ThePackageTreeHoldsNamespacesBeforePackages) {
  std::vector<std::string> tree;
  for (PackageNode const& each : set.generated().packageTree) {
    tree.push_back(each.uri + (each.parent == nullptr ? "" : " in " + each.parent->slot));
  }
  std::string const root = "https://schema.tessel.invalid/plinth/good_datamodel/R2.7";
  EXPECT_THAT(tree, ElementsAre(root, root + "/tessel in rootPackage", root + "/tessel.good.shop in tessel_good",
                                root + "/tessel.good in tessel"));
}

TEST_F(Derivation, HandlesAreCreatedByPackageAndTypeInNameOrder) {
  std::vector<std::string> handles;
  for (Handle const& each : set.generated().handles) {
    if (each.kind != HandleKind::property) handles.push_back(each.slot);
  }
  EXPECT_THAT(handles, ElementsAre("rootPackage", "tessel", "tessel_good_shop", "good_Archive", "good_Area",
                                   "good_Item", "good_Shop", "good_SmallItem", "good_Tariff", "good_Tariff_apply",
                                   "good_TinyItem", "good_Integer64", "good_KestrelArray", "good_UInteger64",
                                   "good_ShopMode", "good_ShopMode_CLOSED", "good_ShopMode_OPEN", "tessel_good",
                                   "upper_Depot", "upper_Label", "upper_PriceLabel"));
  EXPECT_EQ(countModel(set.generated()).handles, 21 + countModel(set.generated()).properties);
}

}  // namespace
}  // namespace modelgen::test
