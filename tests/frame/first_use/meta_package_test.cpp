// The metamodel comes up once, at first use: whole or not at all, whatever was there before. Each case wants a process
// of its own, as ctest gives it.
#include <gmock/gmock.h>

#include <boost/uuid/uuid_io.hpp>
#include <mutex>
#include <tessel_config_datamodel/ext/ConfigEntryBuilder.hpp>
#include <tessel_config_datamodel/ext/ConfigProfileBuilder.hpp>
#include <tessel_config_datamodel/meta/MetaPackageTessel_config_datamodel.hpp>
#include <thread>

#include "groundwork/NameUuid.hpp"
#include "plinth/FailurePoint.hpp"
#include "plinth/meta/AbstractMetaPackage.hpp"
#include "plinth/meta/MetaRegistry.hpp"
#include "support/checks.hpp"

using MetaPackage = MetaPackageTessel_config_datamodel;
using plinth::meta::MetaRegistry;
using support::isSound;
using support::raised;
using tessel::internal::ext::ConfigEntry;
using tessel::internal::ext::ConfigProfile;

namespace {

constexpr char16_t const* ROOT_URI = u"https://schema.tessel.invalid/plinth/tessel_config_datamodel/Ed0417c.001";

std::ptrdiff_t rootPackages() {
  auto const packages = MetaRegistry::getInstance().rootPackages();
  return std::count_if(packages.begin(), packages.end(),
                       [](auto const& package) { return package->uri() == ROOT_URI; });
}

void expectWholeMetamodel() {
  auto& registry = MetaRegistry::getInstance();
  MetaPackage::getInstance();
  EXPECT_EQ(rootPackages(), 1);
  EXPECT_TRUE(registry.model()->isFrozen());
  EXPECT_EQ(registry.model()->level(), 0U);
  EXPECT_TRUE(isSound(registry.model()));
  EXPECT_EQ(registry.getType(u"tessel::internal::ext::ConfigEntry"), ConfigEntry::metaClass());
  EXPECT_EQ(registry.getType(u"tessel.internal.ext.ConfigEntry"), ConfigEntry::metaClass());
  EXPECT_EQ(raised([&] { registry.getType(u"tessel.internal.ext.Nothing"); }), "NoSuchType");
  // It serves: a tree is built, keyed, and taken down.
  auto const model = plinth::Model::create();
  ConfigProfile::Builder profile(model);
  auto entry = std::make_unique<ConfigEntry::Builder>();
  entry->setKey(u"k");
  profile.addValues(std::move(entry));
  auto const made = plinth::element_cast<ConfigProfile>(profile.create());
  made->getValues()->find(u"k")->setKey(u"l");
  EXPECT_TRUE(made->getValues()->find(u"l"));
  made->destroy();
  EXPECT_EQ(model->elementCount(), 0U);
}

#ifdef TESSEL_FAILURE_POINTS

TEST(MetaPackage, ThatFailsToComeUpLeavesNothingAndIsTriedAgain) {
  auto& registry = MetaRegistry::getInstance();
  // The first passages are those of the packages that this one takes types from; they stay once they stand.
  std::vector<std::pair<char const*, std::size_t>> const failures{
      {"create-package", 1}, {"create-package", 3}, {"create-class", 1}, {"create-class", 60},
      {"announce", 1},       {"announce", 200},     {"announce", 330},
  };
  for (auto const& [point, passage] : failures) {
    SCOPED_TRACE(point + std::to_string(passage));
    plinth::armFailurePoint(point, passage);
    EXPECT_EQ(raised([] { ConfigEntry::metaClass(); }), "std::bad_alloc");
    EXPECT_TRUE(plinth::disarmFailurePoint());
    EXPECT_EQ(rootPackages(), 0);
    EXPECT_EQ(registry.model()->level(), 0U);
    EXPECT_TRUE(registry.model()->isFrozen());
    EXPECT_TRUE(isSound(registry.model()));
    std::thread([&] { EXPECT_TRUE(registry.mutex().try_lock() && (registry.mutex().unlock(), true)); }).join();
  }
  expectWholeMetamodel();
}

#endif

static_assert(!std::is_default_constructible_v<MetaPackage>, "nobody but getInstance makes an incarnation");

/// What an earlier load of the library has left in the registry.
struct OlderIncarnation : plinth::meta::AbstractMetaPackage {
  plinth::meta::Package root;
  plinth::meta::Class type;

  OlderIncarnation() {
    auto& registry = MetaRegistry::getInstance();
    std::lock_guard const lock(registry.mutex());
    auto const thawer = registry.freezer().thaw();
    auto transaction = registry.model()->beginTransaction(true);
    root = plinth::meta::Package::create(registry.model(), groundwork::nameUuid("tessel_config_datamodel"));
    root->setUri(ROOT_URI);
    type = createClass(u"ConfigEntry", "tessel.internal.ext.ConfigEntry", false, ConfigEntry::Uuid());
    type->setOwningPackage(root);
    registry.registerTypeNames(type, "tessel::internal::ext::ConfigEntry", "tessel.internal.ext.ConfigEntry", "");
    transaction.commit();
    registerRootPackage(root);
  }
};

TEST(MetaPackage, ReplacesAnOlderIncarnation) {
  OlderIncarnation const older;
  EXPECT_TRUE(older.root && older.type);
  EXPECT_EQ(rootPackages(), 1);
  EXPECT_NE(ConfigEntry::metaClass(), older.type);
  EXPECT_FALSE(older.root || older.type);
  EXPECT_EQ(older.type->narrowName(), "tessel.internal.ext.ConfigEntry") << "what still refers to it can read it";
  expectWholeMetamodel();
}

TEST(MetaPackage, IsFrozenOnceItStands) {
  auto const& type = ConfigEntry::metaClass();
  EXPECT_EQ(raised([&] { type->setIsCorvidHidden(true); }), "CannotModifyFrozenModel");
  EXPECT_EQ(raised([&] { type->findProperty(u"Key")->setDefaultValue(std::u16string(u"x")); }),
            "CannotModifyFrozenModel");
  EXPECT_EQ(raised([&] { (void)MetaRegistry::getInstance().model().beginTransaction(); }), "CannotModifyFrozenModel");
  EXPECT_EQ(&MetaPackage::getInstance(), &MetaPackage::getInstance());
  expectWholeMetamodel();
}

}  // namespace
