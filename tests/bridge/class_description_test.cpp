// What the host is told of each class: superclass, construction, properties, methods; over every class of the model.
#include <map>
#include <set>

#include "corvid/CorvidTypeRepository.hpp"
#include "host_fixture.hpp"
#include "plinth/meta/MetaRegistry.hpp"

namespace plinth::bridge {
namespace {

class ClassDescriptions : public BridgeTest {
 protected:
  /// The host's classes of the model's own classes, each with its meta class.
  static std::vector<std::pair<CorvidClass*, meta::ClassImpl*>> modelClasses() {
    std::vector<std::pair<CorvidClass*, meta::ClassImpl*>> all;
    for (char const* package : {"config.data", "config.expr", "config.runtime", "config.schema", "ext"})
      for (CorvidClass* each :
           CorvidPackage::getPackage(makeInterned(std::string("tessel.internal.") + package))->classes())
        if (auto* const metaClass = metaClassOf(*each))
          all.emplace_back(&classNamed(each->getFullName().text()), metaClass);
    return all;
  }
  static meta::ClassImpl* metaClassOf(CorvidClass const& hostClass) {
    return dynamic_cast<meta::ClassImpl*>(
        meta::MetaRegistry::getInstance().findType(hostClass.getFullName().text()).impl());
  }
  static corvid::CorvidMethodInfo const* methodOf(CorvidClass const& hostClass, std::string const& name) {
    auto const& methods = hostClass.getMethods(makeInterned(name));
    return methods.size() == 1 ? methods.front() : nullptr;
  }
  static std::string inputsOf(corvid::CorvidMethodInfo const& method) {
    std::string types;
    for (Identifier const type : method.getSignature().inputs()) types += type.text() + ", ";
    return types;
  }
  static corvid::CorvidPropInfo const& property(std::string const& className, char const* name) {
    return corvid::requireProperty(classNamed("tessel.internal." + className), makeInterned(name));
  }
};

TEST_F(ClassDescriptions, standForEveryClassOfTheMetamodel) {
  auto const classes = modelClasses();
  EXPECT_EQ(classes.size(), 67u);
  std::set<std::string> hidden;
  for (auto const& [hostClass, metaClass] : classes) {
    SCOPED_TRACE(hostClass->getFullName().text());
    auto const& info = hostClass->getInfo();
    EXPECT_TRUE(info.isHandle());
    EXPECT_FALSE(info.isEnumeration());
    EXPECT_EQ(info.isAbstract(), metaClass->isAbstract());
    EXPECT_EQ(info.createDefaultInstance(), nullptr);
    if (info.isHidden()) hidden.insert(info.getName());
    auto const* const base = metaClass->superclass();
    std::string const expected = base != nullptr ? base->narrowName() : "plinth.ModelElement";
    ASSERT_GE(hostClass->lineage().size(), 2u);
    EXPECT_EQ(hostClass->lineage()[1]->getFullName().text(), expected);
  }
  EXPECT_EQ(hidden, (std::set<std::string>{"ConfigEntry", "ConfigProfile", "ConfigStore", "InternalDef"}));
}

TEST_F(ClassDescriptions, haveAConstructorUnlessTheyAreAbstract) {
  std::size_t constructors = 0;
  for (auto const& [hostClass, metaClass] : modelClasses()) {
    SCOPED_TRACE(hostClass->getFullName().text());
    auto const* const constructor = methodOf(*hostClass, hostClass->getName().text());
    ASSERT_EQ(constructor != nullptr, !metaClass->isAbstract());
    if (constructor == nullptr) continue;
    ++constructors;
    auto const& signature = constructor->getSignature();
    EXPECT_EQ(inputsOf(*constructor), "plinth.Model, any, any, ");
    EXPECT_EQ(signature.argumentNames(), (std::vector<std::string>{"model", "opt_init", "opt_uuid"}));
    EXPECT_EQ(signature.outputs(), std::vector<Identifier>{hostClass->getFullName()});
    EXPECT_EQ(signature.minimumInputs(), 1u);
    EXPECT_EQ(constructor->getAttributes(), 0u);
  }
  EXPECT_EQ(constructors, 50u);
}

TEST_F(ClassDescriptions, haveACreateIntoMethodForEachContainmentOfTheClassItself) {
  std::size_t methods = 0;
  for (auto const& [hostClass, metaClass] : modelClasses()) {
    for (meta::PropertyImpl const* each : metaClass->ownProperties()) {
      std::string const name = "createInto" + memberName(*each).text();
      SCOPED_TRACE(hostClass->getFullName().text() + "." + name);
      auto const* const method = methodOf(*hostClass, name);
      ASSERT_EQ(method != nullptr, each->isComposite());
      if (method == nullptr) continue;
      ++methods;
      EXPECT_EQ(inputsOf(*method), hostClass->getFullName().text() + ", any, char, ");
      EXPECT_EQ(method->getSignature().outputs().front().text(), each->type()->narrowName());
      EXPECT_EQ(method->getSignature().minimumInputs(), 1u);
      EXPECT_TRUE(method->getSignature().argumentNames().empty());
      EXPECT_EQ(method->getAttributes(), 0u);
    }
  }
  EXPECT_EQ(methods, 41u);
}

TEST_F(ClassDescriptions, giveTheirMetaClassByAStaticMethod) {
  for (auto const& [hostClass, metaClass] : modelClasses()) {
    SCOPED_TRACE(hostClass->getFullName().text());
    auto const& methods = hostClass->getMethods(makeInterned("StaticMetaClass"));
    ASSERT_FALSE(methods.empty());
    EXPECT_EQ(methods.back()->getAttributes(), 520u);
    auto const announced = corvid::invoke(*hostClass, makeInterned("StaticMetaClass"), {});
    EXPECT_EQ(kestrel::object(*announced)->native(makeInterned("plinth.meta.Class")), metaClass);
  }
}

TEST_F(ClassDescriptions, haveEveryPropertyUnderItsNameSingleOnesFirst) {
  std::size_t properties = 0;
  std::size_t hidden = 0;
  for (auto const& [hostClass, metaClass] : modelClasses()) {
    SCOPED_TRACE(hostClass->getFullName().text());
    std::vector<std::string> expected;
    for (bool const many : {false, true})
      for (meta::PropertyImpl const* each : metaClass->ownProperties()) {
        auto const* const found = hostClass->findProperty(memberName(*each));
        ASSERT_NE(found, nullptr) << memberName(*each);
        EXPECT_EQ(found->getFlags(), each->isCorvidHidden() ? 0x800u : 0u);
        EXPECT_EQ(found->getDescription(), "");
        if (each->isMany() == many && !each->isCorvidHidden()) expected.push_back(memberName(*each).text());
        properties += many ? 1 : 0;
        hidden += many && each->isCorvidHidden() ? 1 : 0;
      }
    std::vector<std::string> actual;
    for (corvid::CorvidPropInfo const* each : hostClass->listProperties()) actual.push_back(each->getName().text());
    ASSERT_GE(actual.size(), expected.size());
    actual.resize(expected.size());
    EXPECT_EQ(actual, expected);
  }
  EXPECT_EQ(hidden, 11u) << "those of the hidden classes";
  EXPECT_EQ(properties, 195u) << "208 less those of the datatypes";
}

TEST_F(ClassDescriptions, typeEachPropertyByItsShape) {
  struct Row {
    char const* className;
    char const* property;
    char const* dataType;
    bool isReadOnly;
    corvid::Multiplicity multiplicity;
  };
  using corvid::Multiplicity;
  for (Row const& row : {
           Row{"config.data.BooleanParamData", "Value", "logical scalar", false, Multiplicity::Single},
           Row{"config.data.DoubleParamData", "Value", "double scalar", false, Multiplicity::Single},
           Row{"config.data.IntegerParamData", "Value", "int64 scalar", false, Multiplicity::Single},
           Row{"ext.ConfigStore", "Version", "uint64 scalar", false, Multiplicity::Single},
           Row{"config.schema.ReferableDef", "Ordinal", "uint32 scalar", false, Multiplicity::Single},
           Row{"config.data.StringArrayParamData", "MaxLength", "uint32 scalar", false, Multiplicity::Optional},
           Row{"config.data.StringParamData", "Value", "CorvidFactoryString scalar", false, Multiplicity::Single},
           Row{"config.data.UserVisibleData", "Name", "CorvidFactoryString scalar", false, Multiplicity::Single},
           Row{"config.data.UserVisibleData", "Help", "tessel.internal.util.DocRef", false, Multiplicity::Optional},
           Row{"config.expr.ExprValue", "ExprType", "tessel.internal.config.expr.ExprType scalar", false,
               Multiplicity::Single},
           Row{"ext.ConfigEntry", "Data", "tessel.internal.config.data.ParamData", false, Multiplicity::Single},
           Row{"config.expr.Operation", "Operands", "tessel.internal.config.expr.ExprValue", false, Multiplicity::Many},
           Row{"config.runtime.PerspectiveState", "Members", "plinth.Set", true, Multiplicity::Single},
           Row{"config.runtime.CategoryState", "Params", "plinth.Set", true, Multiplicity::Single},
           Row{"config.runtime.ConfigurationState", "Params", "plinth.Map", true, Multiplicity::Single},
           Row{"config.schema.SchemaData", "Controllers", "tessel.internal.config.schema.ControllerDef", true,
               Multiplicity::Many},
           Row{"config.data.StringArrayParamData", "Value", "CorvidFactoryString vector", false, Multiplicity::Many},
           Row{"config.data.BooleanParamData", "AllowedValues", "logical", false, Multiplicity::Many},
           Row{"config.data.DoubleArrayParamData", "Value", "double", false, Multiplicity::Many},
           Row{"config.data.IntegerArrayParamData", "Value", "int64", false, Multiplicity::Many},
           Row{"config.schema.SchemaData", "NonPerspectiveOrdinals", "uint32", false, Multiplicity::Many},
           Row{"config.data.EnumBasedParamData", "AllowedValues", "any", false, Multiplicity::Many},
           Row{"config.schema.MethodRef", "ConstantArgs", "any", false, Multiplicity::Single},
       }) {
    SCOPED_TRACE(std::string(row.className) + "." + row.property);
    auto const& info = property(row.className, row.property);
    EXPECT_EQ(info.getDataType().text(), row.dataType);
    EXPECT_EQ(info.isReadOnly(), row.isReadOnly);
    EXPECT_EQ(info.getMultiplicity(), row.multiplicity);
  }
}

TEST_F(ClassDescriptions, describeDatatypesAsValues) {
  std::size_t properties = 0;
  for (char const* name :
       {"data.CompositeEntry", "data.EnumOption", "schema.ControllerDef", "schema.EvalDef", "schema.GlobalNodeRef"}) {
    SCOPED_TRACE(name);
    CorvidClass& hostClass = classNamed(std::string("tessel.internal.config.") + name);
    auto const& info = hostClass.getInfo();
    EXPECT_FALSE(info.isHandle());
    EXPECT_EQ(hostClass.lineage().size(), 1u) << "no superclass";
    void* const value = info.createDefaultInstance();
    ASSERT_NE(value, nullptr);
    info.destroyInstance(value);
    info.destroyInstance(nullptr);
    EXPECT_EQ(methodOf(hostClass, info.getName())->getSignature().maximumInputs(), 0u);
    for (char const* comparison : {"eq", "ne", "lt"}) {
      auto const* const method = methodOf(hostClass, comparison);
      ASSERT_NE(method, nullptr);
      std::string const own = hostClass.getFullName().text() + ", ";
      EXPECT_EQ(inputsOf(*method), own + own);
      EXPECT_EQ(method->getSignature().outputs().front().text(), "logical scalar");
      EXPECT_EQ(method->getAttributes(), 0u);
    }
    for (corvid::CorvidPropInfo const* each : hostClass.listProperties()) EXPECT_EQ(each->getFlags(), 0x40u);
    properties += hostClass.listProperties().size();
  }
  EXPECT_EQ(properties, 13u);
}

TEST_F(ClassDescriptions, describeEnumerationsWithTheirLiteralsAndMethods) {
  std::map<std::string, std::string> const expected = {
      {"expr.ConditionType",
       "EQUAL 1 MEMBER 2 NOT_MEMBER 3 LESS_THAN 4 LESS_THAN_EQUAL 5 GREATER_THAN 6 GREATER_THAN_EQUAL 7 BETWEEN 8 "},
      {"expr.ExprType", "CONSTANT 1 REFERENCE 2 OPERATION 3 CONDITIONAL 4 "},
      {"expr.Operator",
       "EQ 1 NOT_EQ 2 NOT 3 GT 4 GT_EQ 5 LT 6 LT_EQ 7 OR 8 AND 9 XOR 10 PLUS 11 MINUS 12 MEMBER 13 NOT_MEMBER 14 "
       "HAS 15 NOT_HAS 16 COUNT 17 IF_THEN 18 ISA 19 MESSAGE 20 "},
      {"expr.ValueType", "ANY 0 BOOLEAN 1 NUMBER 2 STRING 3 "},
      {"runtime.TagType", "GENERIC 0 PRODUCT 1 OWNER 2 SUPPORT_PACKAGE 3 ROLE 4 "},
      {"schema.UserFacingStringEscape", "ESCAPE_NONE 0 ESCAPE_LITERALS 1 ESCAPE_MESSAGES 2 "},
  };
  for (auto const& [name, literals] : expected) {
    SCOPED_TRACE(name);
    CorvidClass& hostClass = classNamed("tessel.internal.config." + name);
    auto const& info = hostClass.getInfo();
    EXPECT_TRUE(info.isEnumeration());
    EXPECT_FALSE(info.isHandle());
    EXPECT_FALSE(info.isConstructedOnLoad());
    EXPECT_EQ(info.createDefaultInstance(), nullptr);
    EXPECT_EQ(hostClass.getUnderlyingType().text(), "int32");
    std::string actual;
    for (auto const& member : hostClass.getEnumValues()) {
      actual +=
          member->getName().text() + " " + std::to_string(kestrel::element<std::int32_t>(member->getValue())) + " ";
      EXPECT_EQ(kestrel::className(member->getValue()), hostClass.getFullName());
      EXPECT_EQ(&member->getValue(), &member->getValue()) << "made once";
    }
    EXPECT_EQ(actual, literals);
    for (char const* method : {"getValue", "getLiteral", "getPublicIdentifier"}) {
      ASSERT_NE(methodOf(hostClass, method), nullptr);
      EXPECT_EQ(methodOf(hostClass, method)->getAttributes(), 4098u);
    }
  }
}

TEST_F(ClassDescriptions, aSelfThatIsNoMemberCountsAsZero) {
  CorvidClass& type = classNamed("tessel.internal.config.expr.ValueType");
  auto const call = [&](char const* method, kestrel_array const& self) {
    return corvid::invoke(type, makeInterned(method), {&self});
  };
  auto const other = corvid::construct(classNamed("tessel.internal.config.expr.ExprType"), {text(u"OPERATION").get()});
  auto const beyond = kestrel::createBuiltInBased(type.getFullName(), kestrel::createScalar<std::int32_t>(21));
  EXPECT_EQ(kestrel::element<std::int32_t>(*call("getValue", *kestrel::createEmpty(kestrel::ClassId::Double))), 0);
  EXPECT_EQ(kestrel::element<std::int32_t>(*call("getValue", *other)), 0);
  EXPECT_EQ(kestrel::charText(*call("getLiteral", *other)), u"ANY");
  EXPECT_EQ(kestrel::element<std::int32_t>(*call("getValue", *beyond)), 21);
  EXPECT_EQ(kestrel::charText(*call("getLiteral", *beyond)), u"");
  EXPECT_EQ(kestrel::charText(*call("getPublicIdentifier", *beyond)), u"");
}

}  // namespace
}  // namespace plinth::bridge
