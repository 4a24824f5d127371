// Packages and classes: registered by name, described at their first use, refused when they do not hold together.
#include "corvid/CorvidClass.hpp"
#include "corvid/CorvidPackage.hpp"
#include "corvid/factory/CorvidFactoryClassInfo.hpp"
#include "host_fixture.hpp"

namespace corvid {
namespace {

using internal::makeInterned;

class EmptyPackage final : public CorvidPackageInfo {
 public:
  explicit EmptyPackage(std::string name) : m_name(std::move(name)) {}
  std::string const& getName() const override { return m_name; }
  void initializePackage(CorvidPackage*) override {}

 private:
  std::string m_name;
};

class BareClass final : public factory::HandleClassInfo<int, true> {
 public:
  BareClass(std::string name, std::string superclass = "")
      : HandleClassInfo(name, "bare." + name), m_superclass(std::move(superclass)) {}
  void initializeClass(CorvidClass* hostClass) override {
    if (!m_superclass.empty()) hostClass->addSuperclass(makeInterned(m_superclass), 1, 0, 1);
  }

 private:
  std::string m_superclass;
};

using Packages = HostTest;

TEST_F(Packages, areFoundByDottedNameAndInitializedAtTheFirstSearchForAClass) {
  CorvidPackage* const residents = CorvidPackage::getPackage(makeInterned("zoo.residents"));
  ASSERT_NE(residents, nullptr);
  EXPECT_EQ(residents->getFullName().text(), "zoo.residents");
  EXPECT_EQ(CorvidPackage::getPackage(makeInterned("zoo"))->findSubpackage("residents"), residents);
  EXPECT_EQ(CorvidPackage::getPackage(makeInterned("residents")), nullptr);
  EXPECT_EQ(zoo::calls.packagesInitialized, 0);

  EXPECT_EQ(CorvidClass::getClass(makeInterned("zoo.residents.Dodo")), nullptr);
  EXPECT_EQ(zoo::calls.packagesInitialized, 1);
  EXPECT_EQ(residents->classes().size(), 6u);
  EXPECT_EQ(zoo::calls.animalsDescribed, 0) << "a class is described when it is used, not when its package is";

  EXPECT_NE(CorvidClass::getClass(makeInterned("zoo.residents.Cat")), nullptr);
  EXPECT_EQ(CorvidClass::getClass(makeInterned("Cat"), residents), &classNamed("zoo.residents.Cat"));
  EXPECT_EQ(zoo::calls.animalsDescribed, 1);
  EXPECT_EQ(zoo::calls.packagesInitialized, 1);
}

TEST_F(Packages, refuseANameThatIsTakenAndAClassThatIsNotTheirs) {
  CorvidPackage* const bare = CorvidPackage::addPackage(std::make_unique<EmptyPackage>("bare"));
  EXPECT_EQ(errorOf([] { CorvidPackage::addPackage(std::make_unique<EmptyPackage>("bare")); }),
            "Kestrel:class:DuplicateName");
  bare->addClass(std::make_unique<BareClass>("Bone"), NATIVE_CLASS);
  EXPECT_EQ(errorOf([&] { bare->addClass(std::make_unique<BareClass>("Bone"), NATIVE_CLASS); }),
            "Kestrel:class:DuplicateName");
  EXPECT_EQ(errorOf([&] { bare->addSubpackage(std::make_unique<EmptyPackage>("Bone")); }),
            "Kestrel:class:DuplicateName");
  EXPECT_EQ(errorOf([&] { bare->addClass(std::make_unique<BareClass>("Skin"), 1); }), "Kestrel:class:BadDescription");
  CorvidPackage* const other = CorvidPackage::addPackage(std::make_unique<EmptyPackage>("other"));
  EXPECT_EQ(errorOf([&] { other->addClass(std::make_unique<BareClass>("Skin"), NATIVE_CLASS); }),
            "Kestrel:class:BadDescription");
  EXPECT_EQ(bare->classes().size(), 1u);
  EXPECT_EQ(CorvidPackage::topLevelPackages().size(), 3u);
}

TEST_F(Packages, aDescriptionThatFailsLeavesTheClassAsItWasAndMayBeTriedAgain) {
  zoo::catDescriptionFails = true;
  EXPECT_EQ(errorOf([] { classNamed("zoo.residents.Cat"); }), "Kestrel:native:Exception");
  EXPECT_EQ(errorOf([] { classNamed("zoo.residents.Cat"); }), "Kestrel:native:Exception");
  zoo::catDescriptionFails = false;
  EXPECT_EQ(classNamed("zoo.residents.Cat").getMethods(makeInterned("Cat")).size(), 1u);
}

TEST_F(Packages, superclassesThatAreMissingOrGoInACircleAreNamedErrors) {
  CorvidPackage* const bare = CorvidPackage::addPackage(std::make_unique<EmptyPackage>("bare"));
  bare->addClass(std::make_unique<BareClass>("Orphan", "bare.Missing"), NATIVE_CLASS);
  bare->addClass(std::make_unique<BareClass>("Chicken", "bare.Egg"), NATIVE_CLASS);
  bare->addClass(std::make_unique<BareClass>("Egg", "bare.Chicken"), NATIVE_CLASS);
  EXPECT_EQ(errorOf([] { classNamed("bare.Orphan"); }), "Kestrel:class:NoSuchClass");
  EXPECT_EQ(errorOf([] { classNamed("bare.Chicken"); }), "Kestrel:class:BadDescription");
  EXPECT_EQ(errorOf([] { classNamed("bare.Egg"); }), "Kestrel:class:BadDescription");
}

TEST_F(Packages, aClassWithoutConstructorIsMadeFromItsDefaultInstance) {
  CorvidPackage* const bare = CorvidPackage::addPackage(std::make_unique<EmptyPackage>("bare"));
  bare->addClass(std::make_unique<BareClass>("Bone"), NATIVE_CLASS);
  EXPECT_TRUE(isLive(*construct(classNamed("bare.Bone"), {})));
}

TEST_F(Packages, shutDownIsRefusedWhileAScriptHoldsAnObject) {
  kestrel::OwnedArray animal = newAnimal();
  EXPECT_EQ(errorOf([] { shutDown(); }), "Kestrel:class:HostInUse");
  EXPECT_TRUE(isLive(*animal));
  animal.reset();
  shutDown();
  EXPECT_TRUE(CorvidPackage::topLevelPackages().empty());
  zoo::registerZoo();
  EXPECT_TRUE(isLive(*newAnimal()));
}

TEST_F(Packages, theClassStoreIsServiceManagedOnlyWhenTheHostSaysSo) {
  EXPECT_FALSE(isServiceManaged());
  setServiceManaged(true);
  EXPECT_TRUE(isServiceManaged());
  setServiceManaged(false);
}

}  // namespace
}  // namespace corvid
