// How the library makes itself known to a host: packages in order, classes in order, marshalers before all.
#include "corvid/CorvidTypeRepository.hpp"
#include "host_fixture.hpp"
#include "plinth/bridge/EmptyParentPackage.hpp"
#include "plinth/bridge/FromAnyAsStringTypeConverter.hpp"
#include "plinth/bridge/MetaMarshalerRegistry.hpp"
#include "plinth/meta/MetaRegistry.hpp"
#include "tessel_config_datamodel/bridge/Packages.hpp"

namespace plinth::bridge {
namespace {

using corvid::CorvidTypeRepository;

CorvidPackage* package(char const* name) { return CorvidPackage::getPackage(makeInterned(name)); }

std::string classesOf(char const* name) {
  std::string names;
  for (CorvidClass const* hostClass : package(name)->classes()) names += hostClass->getName().text() + " ";
  return names;
}

/// A host that has loaded nothing.
class FreshHost : public BridgeTest {
 protected:
  void SetUp() override {}
};

TEST_F(FreshHost, hasAMarshalerOfEachTypeBeforeAnyPackageIsRegistered) {
  auto const& registry = MetaMarshalerRegistry::getInstance();
  for (char const* name : {"data.CompositeEntry", "data.EnumOption", "expr.ConditionType", "expr.ExprType",
                           "expr.Operator", "expr.ValueType", "runtime.TagType", "schema.ControllerDef",
                           "schema.EvalDef", "schema.GlobalNodeRef", "schema.UserFacingStringEscape"}) {
    std::string const qualified = std::string("tessel.internal.config.") + name;
    meta::Type const type = meta::MetaRegistry::getInstance().findType(qualified);
    ASSERT_NE(registry.findPropertyMarshaler(type), nullptr) << name;
    EXPECT_EQ(registry.getPropertyMarshaler(type).getName(), qualified);
  }
  EXPECT_TRUE(CorvidPackage::topLevelPackages().empty());
}

TEST_F(FreshHost, packagesAboveComeIntoBeingOnDemandAndAreFoundByTheNext) {
  EmptyParentPackage::registerPackage(std::make_unique<::bridge::tessel_internal_config_dataPackage>());
  CorvidPackage* const config = package("tessel.internal.config");
  ASSERT_NE(config, nullptr);
  EXPECT_TRUE(package("tessel")->classes().empty());
  EXPECT_TRUE(package("tessel.internal")->classes().empty());
  EXPECT_TRUE(config->classes().empty());

  EmptyParentPackage::registerPackage(std::make_unique<::bridge::tessel_internal_config_exprPackage>());
  EmptyParentPackage::registerPackage(std::make_unique<::bridge::tessel_internal_extPackage>());
  EXPECT_EQ(package("tessel.internal.config"), config);
  EXPECT_EQ(config->subpackages().size(), 2u);
  EXPECT_EQ(package("tessel.internal")->subpackages().size(), 2u);
  EXPECT_EQ(CorvidPackage::topLevelPackages().size(), 1u);
}

TEST_F(FreshHost, aPackageIsNamedByWhatFollowsTheLastDot) {
  EmptyParentPackage const nested("a.b.c");
  EXPECT_EQ(nested.getName(), "c");
  EXPECT_EQ(nested.getParentName(), "a.b");
  EmptyParentPackage const top("alone");
  EXPECT_EQ(top.getName(), "alone");
  EXPECT_EQ(top.getParentName(), "");
  EmptyParentPackage const empty("");
  EXPECT_EQ(empty.getName() + empty.getParentName(), "");
}

TEST_F(FreshHost, theEntryWorksInEachModeOfTheHost) {
  for (bool const managed : {false, true}) {
    corvid::setServiceManaged(managed);
    MLInitialize_tessel_config_datamodel();
    EXPECT_NE(package("tessel.internal.ext"), nullptr);
    corvid::shutDown();
  }
  corvid::setServiceManaged(false);
}

using Registration = BridgeTest;

TEST_F(Registration, registersTheFivePackagesInTheirOrder) {
  std::string names;
  for (CorvidPackage const* each : package("tessel.internal.config")->subpackages())
    names += each->getName().text() + " ";
  EXPECT_EQ(names, "data expr runtime schema ");
  names.clear();
  for (CorvidPackage const* each : package("tessel.internal")->subpackages()) names += each->getName().text() + " ";
  EXPECT_EQ(names, "util script config ext ") << "the siblings come first";
  EXPECT_NE(CorvidClass::getClass(makeInterned("vellum.internal.form.model.DecoratedMessage")), nullptr);
}

TEST_F(Registration, addsModelClassesThenEnumerationsThenDatatypes) {
  EXPECT_EQ(classesOf("tessel.internal.config.data"),
            "BooleanParamData CompositeParamData DataObject DoubleArrayParamData DoubleParamData EnumArrayParamData "
            "EnumBasedParamData EnumParamData FileArrayParamData FileBasedParamData FileParamData "
            "IntegerArrayParamData IntegerParamData NumericParamData ParamData StringArrayParamData "
            "StringBasedParamData StringParamData UserVisibleData CompositeEntry EnumOption ");
  EXPECT_EQ(classesOf("tessel.internal.config.expr"),
            "BooleanConstant BooleanOperation Branch Condition ConditionalOperation Constant ExecutableExprValue "
            "ExprValue NumericConstant NumericOperation Operation Ref StringConstant StringOperation UntypedOperation "
            "ConditionType ExprType Operator ValueType ");
  EXPECT_EQ(classesOf("tessel.internal.config.runtime"),
            "CategoryState ConfigurationState ControllableState GenericUserVisibleState GlobalState MetaMessage "
            "Metadata ParamState PerspectiveState ProductionState ProfileState TagState TagType ");
  EXPECT_EQ(classesOf("tessel.internal.config.schema"),
            "BaseDef CategoryDef ControllableDef ControllerRef FollowsDef InternalDef MethodRef ParamDef "
            "PerspectiveDef ProductionDef ProductionRef ProfileDef ReferableDef SchemaData SchemaObjectDef ServiceDef "
            "TagDef UnresolvedMessage UserFacingStringEscape ControllerDef EvalDef GlobalNodeRef ");
  EXPECT_EQ(classesOf("tessel.internal.ext"), "ConfigEntry ConfigProfile ConfigStore ");
}

TEST_F(Registration, aSecondEntryLeavesWhatIsInUse) {
  CorvidPackage* const data = package("tessel.internal.config.data");
  CorvidClass* const hostClass = &classNamed("tessel.internal.ext.ConfigEntry");
  MLInitialize_tessel_config_datamodel();
  EXPECT_EQ(package("tessel.internal.config.data"), data);
  EXPECT_EQ(&classNamed("tessel.internal.ext.ConfigEntry"), hostClass);
}

TEST_F(Registration, aConversionThatIsInstalledAgainReplacesTheFirst) {
  std::string const name = "tessel.internal.config.expr.ExprType";
  classNamed(name);
  meta::Type const type = meta::MetaRegistry::getInstance().findType(name);
  std::ptrdiff_t const before = corvid::liveDescriptionCount();
  FromAnyAsStringTypeConverter::install(makeInterned(name), meta::Enum(static_cast<meta::EnumImpl*>(type.impl())));
  EXPECT_EQ(corvid::liveDescriptionCount(), before);
  for (char const* shape : {"", " property", " scalar"}) {
    auto* const converter = CorvidTypeRepository::getConversion("any", name + shape);
    ASSERT_NE(converter, nullptr) << shape;
    EXPECT_EQ(kestrel::element<std::int32_t>(*converter->convert(*text(u"OPERATION"))), 3);
    EXPECT_EQ(converter->convert(*text(u"operation")), nullptr);
    EXPECT_EQ(converter->convert(*kestrel::createScalar(3)), nullptr);
  }
}

}  // namespace
}  // namespace plinth::bridge
