// Elements behind script objects: bindings, references, what is seen through the typed interface, notices, failures.
#include <plinth/ChangeSet.hpp>
#include <plinth/ElementDirectory.hpp>
#include <plinth/ProxyId.hpp>

#include "corvid/factory/BindingRegistry.hpp"
#include "host_fixture.hpp"
#include "plinth/bridge/Construct.hpp"
#include "tessel_config_datamodel/data/BooleanParamData.hpp"
#include "tessel_config_datamodel/data/StringArrayParamData.hpp"
#include "tessel_config_datamodel/expr/BooleanConstant.hpp"
#include "tessel_config_datamodel/expr/NumericOperation.hpp"
#include "tessel_config_datamodel/expr/Ref.hpp"
#include "tessel_config_datamodel/ext/ConfigEntry.hpp"
#include "tessel_config_datamodel/ext/ConfigProfile.hpp"

namespace plinth::bridge {
namespace {

using namespace tessel::internal::config;
using tessel::internal::ext::ConfigEntry;
using tessel::internal::ext::ConfigProfile;

class ElementAccess : public BridgeTest {
 protected:
  Model m_model = Model::create();
};

TEST_F(ElementAccess, aBindingHoldsOneReferenceAndGivesItBack) {
  ConfigEntry const entry = ConfigEntry::create(m_model);
  auto const references = core(*entry).refCount();
  auto const modelReferences = m_model->refCount();
  {
    auto const first = announce(entry);
    auto const second = announce(entry);
    EXPECT_EQ(kestrel::object(*first), kestrel::object(*second)) << "one element, one object";
    EXPECT_EQ(core(*entry).refCount(), references + 1);
    EXPECT_EQ(m_model->refCount(), modelReferences + 1);
  }
  EXPECT_EQ(core(*entry).refCount(), references);
  EXPECT_EQ(m_model->refCount(), modelReferences);
}

TEST_F(ElementAccess, aConstructorBindsTheObjectThatItWasGiven) {
  auto const model = announceModel(m_model);
  auto const made = corvid::construct(classNamed("tessel.internal.ext.ConfigEntry"), {model.get()});
  EXPECT_EQ(m_model->elementCount(), 1u);
  ModelElement const element(m_model->directory().all().front());
  EXPECT_EQ(kestrel::object(*announce(element)), kestrel::object(*made));
}

TEST_F(ElementAccess, anEmptyArrayIsNeitherStructNorUuid) {
  auto const model = announceModel(m_model);
  auto const none = kestrel::createEmpty(kestrel::ClassId::Double);
  auto const noStructs = kestrel::createStruct({"Key"}, kestrel::EMPTY);
  CorvidClass& entryClass = classNamed("tessel.internal.ext.ConfigEntry");
  EXPECT_EQ(errorOf([&] { return corvid::construct(entryClass, {none.get()}); }),
            "plinth:messages:CannotCreateWithoutModel");
  EXPECT_EQ(errorOf([&] {
              return corvid::construct(entryClass, {model.get(), none.get()});
            }),
            "plinth:messages:InvalidValue");
  EXPECT_EQ(errorOf([&] {
              return corvid::construct(entryClass, {model.get(), noStructs.get()});
            }),
            "plinth:messages:InvalidValue");
  auto const profile = announce(ConfigProfile::create(m_model));
  EXPECT_EQ(errorOf([&] { call(profile, "createIntoValues", {noStructs.get()}); }), "plinth:messages:InvalidValue");
  EXPECT_EQ(m_model->elementCount(), 1u);
}

TEST_F(ElementAccess, initialValuesAreReadAtWhateverDepth) {
  for (std::size_t const depth : {100, 50000}) {
    for (bool const isWrong : {false, true}) {
      kestrel::OwnedArray values = kestrel::createStruct({});
      if (isWrong) kestrel::setField(*values, 0, "Key\xff", kestrel::createChar(u"x"));
      for (std::size_t i = 0; i < depth; ++i) {
        kestrel::OwnedArray outer = kestrel::createStruct({"class", "Operands"});
        kestrel::setField(*outer, 0, "class", kestrel::createChar(u"NumericOperation"));
        if (i == 0) kestrel::setField(*values, 0, "class", kestrel::createChar(u"NumericConstant"));
        kestrel::OwnedArray list = kestrel::createCell(kestrel::row(1));
        kestrel::setCell(*list, 0, std::move(values));
        kestrel::setField(*outer, 0, "Operands", std::move(list));
        values = std::move(outer);
      }
      Model const model = Model::create();
      auto const modelObject = announceModel(model);
      auto& operation = classNamed("tessel.internal.config.expr.NumericOperation");
      auto const identifier = errorOf([&] { return corvid::construct(operation, {modelObject.get(), values.get()}); });
      EXPECT_EQ(identifier, isWrong ? "plinth:messages:NoSuchProperty" : "none");
      EXPECT_EQ(model->elementCount(), isWrong ? 0 : depth + 1);
    }
  }
}

TEST_F(ElementAccess, namesAreTakenWholeWhateverIsWrongInThem) {
  Model const model = Model::create();
  auto const modelObject = announceModel(model);
  auto& entry = classNamed("tessel.internal.ext.ConfigEntry");
  for (char const* name : {"Key\xff", "\xffKey", "Ke\xc3y", "Key\xed\xa0\x80"}) {
    auto const values = kestrel::createStruct({name});
    kestrel::setField(*values, 0, name, text(u"x"));
    EXPECT_EQ(errorOf([&] {
                return corvid::construct(entry, {modelObject.get(), values.get()});
              }),
              "plinth:messages:NoSuchProperty")
        << name;
  }
  auto const values = kestrel::createStruct({"class"});
  kestrel::setField(*values, 0, "class",
                    kestrel::createChar(u"Config\xd800"
                                        u"Entry"));
  EXPECT_EQ(errorOf([&] {
              return corvid::construct(entry, {modelObject.get(), values.get()});
            }),
            "plinth:messages:NoSuchType");
  EXPECT_FALSE(
      detail::extractUuid(*kestrel::createChar(u"3b241101-e2bb-4255-8caf-\xd800"
                                               u"4136c566a962")));
  EXPECT_EQ(model->elementCount(), 0u);
}

TEST_F(ElementAccess, aDroppedResultOfCreateIntoBindsNothing) {
  ConfigProfile const profile = ConfigProfile::create(m_model);
  auto const self = announce(profile);
  EXPECT_EQ(call(self, "createIntoValues", {}, false), nullptr);
  EXPECT_EQ(profile->getValues()->size(), 1u);
  EXPECT_EQ(corvid::liveObjectCount(), 1);
}

TEST_F(ElementAccess, uuidsAreReadFromTextsAlone) {
  char16_t const* const name = u"3b241101-e2bb-4255-8caf-4136c566a962";
  EXPECT_TRUE(detail::extractUuid(*text(name)).has_value());
  EXPECT_TRUE(detail::extractUuid(*text(name)) == detail::extractUuid(*kestrel::createString(name)));
  EXPECT_FALSE(detail::extractUuid(*text(u"3b241101")));
  EXPECT_FALSE(detail::extractUuid(*text(u"")));
  EXPECT_FALSE(detail::extractUuid(*kestrel::createStrings(kestrel::SCALAR)));
  EXPECT_FALSE(detail::extractUuid(*kestrel::createStringRow({name, name})));
  EXPECT_FALSE(detail::extractUuid(*kestrel::createScalar(1.0)));
}

TEST_F(ElementAccess, whatTheHostWritesTheTypedInterfaceReads) {
  auto const data = data::StringArrayParamData::create(m_model);
  auto const self = announce(data);
  set(self, "Name", text(u""));
  EXPECT_TRUE(data->getName() == boost::optional<std::u16string>(u"")) << "a written text is present";
  auto const absent = get(self, "MaxLength");
  EXPECT_EQ(kestrel::dimensions(*absent), kestrel::EMPTY);
  EXPECT_EQ(kestrel::className(*absent).text(), "uint32");
  set(self, "MaxLength", kestrel::createScalar(3.0));
  EXPECT_EQ(data->getMaxLength().value_or(0), 3u);
  set(self, "Value", kestrel::createStringRow({u"a", u"b"}));
  EXPECT_EQ(data->getValue()->values(), (std::vector<std::u16string>{u"a", u"b"}));
  data->getValueMutable()->push_back(u"c");
  EXPECT_EQ(kestrel::numberOfElements(*get(self, "Value")), 3u);
}

TEST_F(ElementAccess, anEmptySequenceKeepsItsClassAndAMixedOneItsCommonClass) {
  auto const operation = expr::NumericOperation::create(m_model);
  auto const self = announce(operation);
  EXPECT_EQ(kestrel::className(*get(self, "Operands")).text(), "tessel.internal.config.expr.ExprValue");
  operation->getOperandsMutable()->add(expr::BooleanConstant::create(m_model));
  EXPECT_EQ(kestrel::className(*get(self, "Operands")).text(), "tessel.internal.config.expr.BooleanConstant");
  operation->getOperandsMutable()->add(expr::Ref::create(m_model));
  auto const operands = get(self, "Operands");
  EXPECT_TRUE(classNamed(kestrel::className(*operands).text())
                  .isSubclassOf(makeInterned("tessel.internal.config.expr.ExprValue")));
  EXPECT_EQ(kestrel::object(*operands, 1)->className().text(), "tessel.internal.config.expr.Ref");
}

TEST_F(ElementAccess, assigningTheSameMembersInAnotherOrderIsOneNotice) {
  auto const operation = expr::NumericOperation::create(m_model);
  auto const one = expr::Ref::create(m_model);
  auto const two = expr::Ref::create(m_model);
  operation->getOperandsMutable()->add(one);
  operation->getOperandsMutable()->add(two);
  auto const self = announce(operation);
  auto const members = get(self, "Operands");
  auto reversed = kestrel::createObjects(kestrel::className(*members), kestrel::row(2));
  kestrel::setObject(*reversed, 0, kestrel::object(*members, 1));
  kestrel::setObject(*reversed, 1, kestrel::object(*members, 0));
  int notices = 0;
  auto const registration = m_model.addListener([&](ChangeSet const& changes) {
    ++notices;
    EXPECT_TRUE(changes.created().empty());
    EXPECT_TRUE(changes.destroyed().empty());
  });
  set(self, "Operands", reversed);
  EXPECT_EQ(notices, 1);
  EXPECT_EQ(operation->getOperands()->at(0), two);
  EXPECT_EQ(operation->getOperands()->at(1), one);
}

TEST_F(ElementAccess, aProxyIsReadAndRefusesToBeChanged) {
  ModelElement const proxy =
      m_model->createProxy(ConfigProfile::metaClass(), ProxyId{u"elsewhere", u"x", std::u16string()});
  ASSERT_TRUE(proxy->isProxy());
  auto const self = announce(proxy);
  EXPECT_EQ(kestrel::charText(*get(self, "Id")), u"");
  EXPECT_EQ(errorOf([&] { set(self, "Id", text(u"y")); }), "plinth:messages:CannotModifyProxy");
  EXPECT_EQ(errorOf([&] { get(self, "Values"); }), "plinth:messages:CannotModifyProxy");
  EXPECT_EQ(errorOf([&] { call(self, "createIntoValues"); }), "plinth:messages:CannotModifyProxy");
}

TEST_F(ElementAccess, aDestroyedElementIsRefusedByEveryDoor) {
  ConfigProfile const profile = ConfigProfile::create(m_model);
  auto const self = announce(profile);
  auto const values = get(self, "Values");
  profile->destroy();
  for (auto const& action : std::vector<std::function<void()>>{
           [&] { get(self, "Id"); }, [&] { set(self, "Id", text(u"y")); }, [&] { get(self, "Values"); },
           [&] { call(self, "createIntoValues"); }, [&] { call(values, "size"); }})
    EXPECT_EQ(errorOf(action), "Kestrel:class:InvalidHandle");
  EXPECT_FALSE(corvid::isLive(*self));
}

TEST_F(ElementAccess, anEmptySelfIsRefusedAsOneThatIsGone) {
  CorvidClass& profileClass = classNamed("tessel.internal.ext.ConfigProfile");
  auto const nobody = kestrel::createObjects(profileClass.getFullName(), kestrel::EMPTY);
  auto const& id = corvid::requireProperty(profileClass, makeInterned("Id"));
  for (auto const& action : std::vector<std::function<void()>>{
           [&] { corvid::getProperty(*nobody, id); }, [&] { corvid::setProperty(*nobody, id, *text(u"x")); },
           [&] { corvid::invoke(profileClass, makeInterned("createIntoValues"), {nobody.get()}); }})
    EXPECT_EQ(errorOf(action), "Kestrel:class:InvalidHandle");
}

TEST_F(ElementAccess, anElementThatAListenerAnnouncesFirstKeepsThatObject) {
  auto const model = announceModel(m_model);
  kestrel::OwnedArray seen;
  auto const registration =
      m_model.addListener([&](ChangeSet const& changes) { seen = announce(changes.created().front()); });
  auto const made = corvid::construct(classNamed("tessel.internal.ext.ConfigEntry"), {model.get()});
  ASSERT_NE(seen, nullptr);
  EXPECT_EQ(kestrel::object(*made), kestrel::object(*seen));
}

}  // namespace
}  // namespace plinth::bridge
