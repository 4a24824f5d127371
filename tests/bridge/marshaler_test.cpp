// Marshalers: values of the foundation to host arrays and back.
#include <algorithm>
#include <set>

#include "host_fixture.hpp"
#include "plinth/bridge/MetaMarshalerRegistry.hpp"
#include "plinth/bridge/PolicyBasedValueMarshaler.hpp"
#include "tessel_config_datamodel/data/EnumOption.hpp"
#include "tessel_config_datamodel/expr/ExprType.hpp"
#include "tessel_config_datamodel/frame/HostArray.hpp"

namespace plinth::bridge {
namespace {

using tessel::internal::config::data::EnumOption;
using tessel::internal::config::expr::ExprType;

class Marshalers : public BridgeTest {
 protected:
  template <class T>
  static ValueMarshaler const& of() {
    return MetaMarshalerRegistry::getInstance().getPropertyMarshaler(meta::Type(MetaTypeOf<T>::type()));
  }
  template <class T>
  static Value value(T content, meta::ValueFlags flags = meta::SINGLE) {
    return Value::make<T>(ValueMeta(MetaTypeOf<T>::type(), flags), std::move(content));
  }
  template <class T>
  static Value optional(boost::optional<T> content) {
    return Value::make<boost::optional<T>>(ValueMeta(MetaTypeOf<T>::type(), meta::OPTIONAL), std::move(content));
  }
  static EnumOption option(char16_t const* name) {
    EnumOption made;
    made.setValue(name);
    return made;
  }
};

TEST_F(Marshalers, takePrimitiveValuesThereAndBack) {
  auto const there = [](ValueMarshaler const& marshaler, Value const& content) {
    EXPECT_EQ(marshaler.fromKestrelArray(*marshaler.toKestrelArray(content)), content);
  };
  there(of<bool>(), value(true));
  there(of<double>(), value(2.5));
  there(of<int>(), value(-1));
  there(of<long>(), value(std::numeric_limits<long>::min()));
  there(of<unsigned long>(), value(std::numeric_limits<unsigned long>::max()));
  there(of<unsigned int>(), value(4294967295u));
  there(of<std::u16string>(), value(std::u16string(u"\xd83d\xdc08")));
  there(of<ExprType>(), value(ExprType::OPERATION));
  there(of<EnumOption>(), value(option(u"a")));
  EXPECT_EQ(errorOf([&] { of<double>().toKestrelArray(value(true)); }), "plinth:messages:CannotCastIncompatibleTypes");
  EXPECT_EQ(errorOf([&] { of<long>().fromKestrelArray(*kestrel::createScalar(0.5)); }),
            "Kestrel:class:ValueOutOfRange");
  EXPECT_EQ(errorOf([&] { of<double>().fromKestrelArray(*text(u"x")); }), "Kestrel:class:WrongType");
}

TEST_F(Marshalers, showAnAbsentOptionalAsAnEmptyArrayOfItsClass) {
  auto const member = of<ExprType>().toKestrelArray(optional<ExprType>(ExprType::REFERENCE));
  EXPECT_EQ(kestrel::element<std::int32_t>(*member), 2);
  auto const noMember = of<ExprType>().toKestrelArray(optional<ExprType>(boost::none));
  EXPECT_TRUE(kestrel::isEmpty(*noMember));
  EXPECT_EQ(kestrel::className(*noMember).text(), "tessel.internal.config.expr.ExprType");
  auto const noOption = of<EnumOption>().toKestrelArray(optional<EnumOption>(boost::none));
  EXPECT_TRUE(kestrel::isEmpty(*noOption));
  EXPECT_EQ(kestrel::className(*noOption).text(), "tessel.internal.config.data.EnumOption");
  auto const noText = of<std::u16string>().toKestrelArray(optional<std::u16string>(boost::none));
  EXPECT_EQ(kestrel::className(*noText).text(), "char");
}

TEST_F(Marshalers, readAMemberFromTheTextOfALiteralAndAWrongClassAsZero) {
  auto const& marshaler = of<ExprType>();
  EXPECT_EQ(marshaler.fromHost(*text(u"CONDITIONAL")).getValue<ExprType>(), ExprType::CONDITIONAL);
  EXPECT_EQ(marshaler.fromHost(*kestrel::createString(u"CONDITIONAL")).getValue<ExprType>(), ExprType::CONDITIONAL);
  Value const none = marshaler.fromHost(*kestrel::createEmpty(kestrel::ClassId::Double));
  EXPECT_TRUE(none.isEmpty());
  EXPECT_EQ(none.meta().type(), MetaTypeOf<ExprType>::type());
  auto const other = corvid::construct(classNamed("tessel.internal.config.expr.ValueType"), {text(u"STRING").get()});
  EXPECT_EQ(static_cast<int>(marshaler.fromHost(*other).getValue<ExprType>()), 0);
  EXPECT_EQ(static_cast<int>(marshaler.fromHost(*text(u"no literal")).getValue<ExprType>()), 0);
  EXPECT_EQ(errorOf([&] { marshaler.fromKestrelArray(*text(u"no literal")); }), "Kestrel:class:WrongType");

  auto const row = marshaler.toValueVector(*kestrel::createStringRow({u"CONSTANT", u"OPERATION"}));
  ASSERT_EQ(row.size(), 2u);
  EXPECT_EQ(row[1].getValue<ExprType>(), ExprType::OPERATION);
  auto const back = marshaler.fromValueVector(row);
  EXPECT_EQ(kestrel::numberOfElements(*back), 2u);
  EXPECT_EQ(kestrel::className(*back).text(), "tessel.internal.config.expr.ExprType");
  EXPECT_TRUE(kestrel::isEmpty(*marshaler.fromValueVector({})));
  EXPECT_TRUE(marshaler.isCorrectType(*text(u"CONSTANT")));
  EXPECT_FALSE(marshaler.isCorrectType(*text(u"no literal")));
}

TEST_F(Marshalers, takeOneValueOnlyFromAnArrayOfOne) {
  auto const literals = kestrel::createStringRow({u"CONSTANT", u"OPERATION"});
  EXPECT_EQ(errorOf([&] { of<ExprType>().fromKestrelArray(*literals); }), "Kestrel:class:WrongType");
  EXPECT_EQ(errorOf([&] { of<ExprType>().fromKestrelArray(*text(u"")); }), "Kestrel:class:WrongType");
  EXPECT_TRUE(of<ExprType>().fromKestrelArray(*kestrel::createEmpty(kestrel::ClassId::Double)).isEmpty());
  auto const options = of<EnumOption>().fromValueVector({value(option(u"a")), value(option(u"b"))});
  EXPECT_EQ(errorOf([&] { of<EnumOption>().fromKestrelArray(*options); }), "Kestrel:class:WrongType");
  EXPECT_EQ(of<EnumOption>().toValueVector(*options).size(), 2u);
}

TEST_F(Marshalers, collapseEqualValuesInASetAndKeepThemInASequence) {
  auto const& marshaler = of<EnumOption>();
  auto const array = marshaler.fromValueVector({value(option(u"b")), value(option(u"a")), value(option(u"b"))});
  Value set = marshaler.toUnmanagedSetValue(*array);
  EXPECT_FALSE(set.meta().isManaged());
  EXPECT_EQ(set.getValue<std::set<EnumOption>>(), (std::set<EnumOption>{option(u"a"), option(u"b")}));
  Value sequence = marshaler.toUnmanagedSequence(*array);
  EXPECT_EQ(sequence.getValue<std::vector<EnumOption>>(),
            (std::vector<EnumOption>{option(u"b"), option(u"a"), option(u"b")}));
  set.release();
  sequence.release();
  auto const broken = kestrel::createObjects(makeInterned("tessel.internal.config.data.EnumOption"), kestrel::row(2));
  EXPECT_EQ(errorOf([&] { marshaler.toUnmanagedSequence(*broken); }), "Kestrel:class:WrongType");
}

TEST_F(Marshalers, copyAValueOnItsWayInAndOut) {
  auto const& marshaler = of<EnumOption>();
  auto const object = marshaler.toKestrelArray(value(option(u"a")));
  Value const read = marshaler.fromKestrelArray(*object);
  set(object, "Value", text(u"changed"));
  EXPECT_EQ(read.getValue<EnumOption>().getValue(), u"a");
  EXPECT_EQ(marshaler.fromKestrelArray(*object).getValue<EnumOption>().getValue(), u"changed");
}

TEST_F(Marshalers, takeHostArraysAsTheyAreAndNothingForAnEmptyOne) {
  using tessel::frame::HostArray;
  auto const& marshaler = of<HostArray>();
  auto const bytes = kestrel::createRow(std::vector<std::uint8_t>{1, 2});
  auto const back = marshaler.toKestrelArray(marshaler.fromKestrelArray(*bytes));
  EXPECT_TRUE(kestrel::equalContents(back.get(), bytes.get()));
  Value const none = marshaler.fromKestrelArray(*kestrel::createEmpty(kestrel::ClassId::Double));
  EXPECT_EQ(none.getValue<HostArray>().get(), nullptr);
  EXPECT_TRUE(kestrel::isEmpty(*marshaler.toKestrelArray(none)));
  EXPECT_EQ(errorOf([&] { marshaler.toValueVector(*bytes); }), "plinth:messages:CannotCastIncompatibleTypes");
}

TEST_F(Marshalers, refuseAHandleOnAModelInAHostArrayAtWhateverDepth) {
  auto const& marshaler = of<tessel::frame::HostArray>();
  auto const model = announceModel(Model::create());
  EXPECT_EQ(errorOf([&] { marshaler.fromKestrelArray(*model); }), "Kestrel:class:WrongType");
  auto cells = kestrel::createCell(kestrel::row(2));
  kestrel::setCell(*cells, 0, of<EnumOption>().toKestrelArray(value(option(u"a"))));
  auto record = kestrel::createStruct({"a"});
  kestrel::setField(*record, 0, "a", kestrel::deepCopy(cells.get()));
  EXPECT_EQ(errorOf([&] { marshaler.fromKestrelArray(*record); }), "none") << "values and gaps are kept";
  kestrel::setCell(*cells, 1, call(model, "beginTransaction"));
  kestrel::setField(*record, 0, "a", std::move(cells));
  EXPECT_EQ(errorOf([&] { marshaler.fromKestrelArray(*record); }), "Kestrel:class:WrongType");
}

TEST_F(Marshalers, aTypeWithoutOneIsANamedError) {
  auto& registry = MetaMarshalerRegistry::getInstance();
  meta::Type const type(ModelElement::metaClass());
  EXPECT_EQ(errorOf([&] { registry.getPropertyMarshaler(type); }), "plinth:messages:NoSuchType");
  registry.registerTypeMarshaler(type, std::make_unique<TypedValueMarshaler<bool>>(type, "my.Class"));
  EXPECT_EQ(registry.getPropertyMarshaler(type).getName(), "my.Class");
  registry.unregisterTypeMarshaler(type);
  EXPECT_EQ(registry.findPropertyMarshaler(type), nullptr);
}

}  // namespace
}  // namespace plinth::bridge
