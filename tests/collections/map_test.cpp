// Maps of elements by key, and the store of profiles that is made of them.
#include <gmock/gmock.h>

#include <functional>

#include "plinth/ChangeSet.hpp"
#include "plinth/ProxyId.hpp"
#include "plinth/diagnostics/Verify.hpp"
#include "plinth/sample_model.hpp"
#include "refusal.hpp"

namespace collections_test {
namespace {

using namespace sample;
using ext::ConfigEntry;
using ext::ConfigProfile;
using plinth::CollisionResolution;
using plinth::Value;
using testing::ElementsAre;
using testing::IsEmpty;

class ElementMap : public testing::Test {
 protected:
  ~ElementMap() override { EXPECT_THAT(plinth::verify(s.model), IsEmpty()); }
  ConfigEntry entry(std::u16string const& key) {
    auto const made = ConfigEntry::create(s.model);
    made->setKey(key);
    return made;
  }
  static Value text(std::u16string const& key) {
    return Value::make<std::u16string>({plinth::StandardTypes::stringMeta(), plinth::meta::SINGLE}, key);
  }

  SampleModel s;
  plinth::ElementMap<std::u16string, ConfigEntry>& values = *s.day->getValues();  // balance, volume
};

TEST_F(ElementMap, OrdersByCodeUnitsAndTakesTheEmptyKeyFirst) {
  for (auto const* key : {u"volumes", u"\xFFFD", u"\xD83D\xDE00", u"Volume", u""}) values.insert(entry(key));
  EXPECT_THAT(values.keys(),
              ElementsAre(u"", u"Volume", u"balance", u"volume", u"volumes", u"\xD83D\xDE00", u"\xFFFD"));
  std::vector<std::u16string> keys;
  for (auto const& [key, element] : values.entries()) {
    EXPECT_EQ(element->getKey(), key);
    keys.push_back(key);
  }
  EXPECT_EQ(keys, values.keys());
  EXPECT_EQ((*values.rbegin())->getKey(), u"\xFFFD");
  for (auto const& key : keys) {
    EXPECT_TRUE(values.contains(key));
    auto const member = values.find(key);
    EXPECT_TRUE(values.erase(key));
    EXPECT_FALSE(values.erase(key) || values.contains(key) || values.contains(member) || member->container());
  }
}

TEST_F(ElementMap, ATakenKeyIsRefusedKeptOrReplaced) {
  EXPECT_FALSE(values.insert(s.volume)) << "itself";
  EXPECT_FALSE(values.insert({}));
  auto const rival = entry(u"volume");
  s.night->getValues()->insert(rival);
  EXPECT_EQ(raised([&] { values.insert(rival); }), "UniquenessConstraint");
  EXPECT_FALSE(values.insert(rival, CollisionResolution::KEEP));
  EXPECT_THAT(values, ElementsAre(s.balance, s.volume));
  EXPECT_EQ(rival->container(), s.night);

  auto transaction = s.model.beginTransaction();
  EXPECT_TRUE(values.insert(rival, CollisionResolution::REPLACE));
  EXPECT_THAT(values, ElementsAre(s.balance, rival));
  EXPECT_FALSE(s.volume->container());
  EXPECT_EQ(rival->container(), s.day);
  EXPECT_THAT(*s.night->getValues(), IsEmpty());
  EXPECT_THAT(plinth::verify(s.model), IsEmpty());
}

TEST_F(ElementMap, RekeyingMovesTheEntryAndIsToldAsAChangeOfTheMap) {
  values.remove(s.balance);
  bool told = false;
  auto const listening = s.model.addListener([&](plinth::ChangeSet const& changes) {
    told = true;
    for (plinth::Storage const* record : changes.changed())
      EXPECT_EQ(record->bits(), record->element() == s.day ? 32U : 2U);
    EXPECT_EQ(changes.changed().size(), 2U);
  });
  s.volume->setKey(u"volume");
  EXPECT_FALSE(told) << "the same key is no transaction";
  s.volume->setKey(u"loudness");
  EXPECT_TRUE(told);
  EXPECT_EQ(values.find(u"loudness"), s.volume);
  EXPECT_FALSE(values.find(u"volume"));
  EXPECT_EQ(s.volume->container(), s.day);
}

TEST_F(ElementMap, ASiblingsKeyIsRefusedAndNothingElse) {
  EXPECT_EQ(raised([&] { s.volume->setKey(u"balance"); }), "UniquenessConstraint");
  EXPECT_EQ(s.volume->getKey(), u"volume");
  EXPECT_EQ(values.find(u"volume"), s.volume);
  auto const loose = entry(u"balance");
  loose->setKey(u"volume");
  loose->setKey(u"");
  EXPECT_THAT(values, ElementsAre(s.balance, s.volume));

  auto const nameless = ConfigProfile::create(s.model);
  s.store->getProfiles()->insert(nameless);
  EXPECT_EQ(raised([&] { s.store->getProfiles()->insert(ConfigProfile::create(s.model)); }), "UniquenessConstraint");
  EXPECT_EQ(raised([&] { nameless->setId(u"day"); }), "UniquenessConstraint");
}

TEST_F(ElementMap, TheGenericViewFindsByKeyAndRefusesAnotherClass) {
  auto& view = static_cast<plinth::GenericMapInterface&>(*values.getGenericInterface());
  EXPECT_TRUE(view.isMapInterface() && !view.isSequenceInterface() && !view.isMultimapInterface());
  EXPECT_EQ(view.genericGet(text(u"volume")), s.volume);
  EXPECT_TRUE(view.genericGet(text(u"nothing")).isEmpty());
  EXPECT_THAT(view.genericKeys(), ElementsAre(text(u"balance"), text(u"volume")));
  EXPECT_EQ(view.getQualifierType(), plinth::meta::Type(plinth::StandardTypes::stringMeta()));
  Value const number = Value::make<long>({plinth::StandardTypes::integer64Meta(), plinth::meta::SINGLE}, 1);
  EXPECT_EQ(raised([&] { view.genericGet(number); }), "CannotCastIncompatibleTypes(Integer64, String, single, single)");

  std::string const refusal =
      "CannotAddIncompatibleTypes(tessel.internal.ext.ConfigEntry, tessel.internal.ext.ConfigProfile)";
  EXPECT_EQ(raised([&] { view.genericAdd(s.day); }), refusal);
  EXPECT_EQ(raised([&] { view.genericRemove(s.day); }), refusal);
  EXPECT_FALSE(view.genericContains(s.day));
  EXPECT_FALSE(view.genericContains(entry(u"volume"))) << "another element of the same key";
  view.genericRemove(entry(u"volume"));
  view.genericEnsureAt(entry(u"extra"), 7);
  EXPECT_EQ(view.genericSize(), 3U);
  view.genericClear();
  EXPECT_FALSE(s.volume->container());

  plinth::ElementMap<std::u16string, ConfigEntry> keyless(plinth::CollectionPrivateTag(), nullptr);
  EXPECT_THROW(keyless.insert(s.volume), std::bad_function_call);
}

TEST_F(ElementMap, StoreAndEntryKeepTheirOwnRules) {
  auto const property = [](auto const& element, char16_t const* name) {
    return plinth::meta::Property(element->getMetaClass()->findProperty(name));
  };
  auto const bare = entry(u"bare");
  EXPECT_FALSE(bare->hasPropertyValue(property(bare, u"Data")));
  EXPECT_TRUE(bare->hasPropertyValue(property(bare, u"Key")));
  EXPECT_TRUE(s.store->hasPropertyValue(property(s.store, u"Version")));

  int told = 0;
  auto const listening = s.model.addListener([&](plinth::ChangeSet const&) { ++told; });
  s.store->setActiveProfile(s.day);
  {
    auto transaction = s.model.beginTransaction();
    s.store->setVersion(5);
    s.store->setVersion(0);
    transaction.commit();
  }
  EXPECT_EQ(told, 0) << "what it was before is no change";

  s.store->getProfiles()->remove(s.day);
  EXPECT_EQ(s.store->getActiveProfile(), s.day) << "still the active one, though no profile of the store";
  s.day->destroy();
  EXPECT_FALSE(s.store->getActiveProfile());
  EXPECT_EQ(s.store->getActiveProfile(), s.day);

  auto const absent = s.model->createProxy(ext::ConfigStore::metaClass(), {u"", u"", boost::none});
  auto const store = plinth::element_cast<ext::ConfigStore>(absent);
  EXPECT_EQ(raised([&] { return store->getProfiles(); }), "CannotModifyProxy");
  EXPECT_EQ(raised([&] { store->setVersion(1); }), "CannotModifyProxy");
}

}  // namespace
}  // namespace collections_test
