// Plain values: datatypes with their order and hash, their serializers and those of enumerations, and generic values.
#include <gmock/gmock.h>

#include <boost/lexical_cast.hpp>
#include <cstring>
#include <set>
#include <tessel_config_datamodel/data/BooleanParamData.hpp>
#include <tessel_config_datamodel/data/CompositeEntry.hpp>
#include <tessel_config_datamodel/data/DoubleParamData.hpp>
#include <tessel_config_datamodel/data/EnumOption.hpp>
#include <tessel_config_datamodel/expr/ConditionType.hpp>
#include <tessel_config_datamodel/ext/ConfigEntry.hpp>
#include <tessel_config_datamodel/runtime/TagType.hpp>
#include <tessel_config_datamodel/schema/EvalDef.hpp>

#include "support/checks.hpp"
#include "support/specimens.hpp"

using plinth::StandardTypes;
using plinth::meta::PropertySerializerRegistry;
using plinth::meta::Type;
using support::Property;
using support::raised;
using support::Value;
using support::ValueMeta;
using tessel::internal::config::data::CompositeEntry;
using tessel::internal::config::data::EnumOption;
using tessel::internal::config::expr::ConditionType;
using tessel::internal::config::runtime::TagType;
using tessel::internal::config::schema::EvalDef;
namespace meta = plinth::meta;

namespace {

using Text = boost::optional<std::u16string>;

template <class T>
Value single(T const& content) {
  return Value::make<T>({plinth::MetaTypeOf<T>::type(), meta::SINGLE}, content);
}

/// The hash of a text and the combination of hashes, spelled out once more.
std::uint64_t hashOf(std::u16string const& text) {
  return std::_Hash_bytes(text.data(), 2 * text.size(), 0xc70f6907UL);
}
std::uint64_t combined(std::vector<std::uint64_t> const& hashes) {
  std::uint64_t constexpr M = 0xc6a4a7935bd1e995UL;
  std::uint64_t state = 0;
  for (std::uint64_t hash : hashes) {
    std::uint64_t k = hash * M;
    k ^= k >> 47;
    state = (state ^ (k * M)) * M + 0xe6546b64UL;
  }
  return state;
}

TEST(Datatype, IsOrderedFieldByField) {
  std::vector<EnumOption> const ascending{
      EnumOption(u"", boost::none, true),   EnumOption(u"a", boost::none, false),
      EnumOption(u"a", boost::none, true),  EnumOption(u"a", u"", false),
      EnumOption(u"a", u"x", true),         EnumOption(u"aa", boost::none, false),
      EnumOption(u"b", boost::none, false), EnumOption(u"\uFFFD", boost::none, false)};
  for (std::size_t i = 0; i < ascending.size(); ++i) {
    for (std::size_t j = 0; j < ascending.size(); ++j) {
      EXPECT_EQ(ascending[i].compareWith(ascending[j]), i < j ? -1 : i > j ? 1 : 0) << i << ", " << j;
      EXPECT_EQ(ascending[i] == ascending[j], i == j);
      EXPECT_EQ(ascending[i] != ascending[j], i != j);
      EXPECT_EQ(ascending[i] < ascending[j], i < j);
      EXPECT_EQ(ascending[i] > ascending[j], i > j);
      EXPECT_EQ(ascending[i] <= ascending[j], i <= j);
      EXPECT_EQ(ascending[i] >= ascending[j], i >= j);
      EXPECT_EQ(std::hash<EnumOption>()(ascending[i]) == std::hash<EnumOption>()(ascending[j]), i == j);
    }
  }
  EXPECT_TRUE(EnumOption(u"\U0001F600", boost::none, true) < EnumOption(u"\uFFFD", boost::none, true))
      << "by code units";
  EXPECT_TRUE(CompositeEntry(u"f", boost::none, u"b") < CompositeEntry(u"f", u"", boost::none));
}

TEST(Datatype, HashesByTheFormulaWithEmptyOptionalsLeftOut) {
  EXPECT_EQ(std::hash<EnumOption>()(EnumOption(u"v", u"d", true)), combined({hashOf(u"v"), hashOf(u"d"), 1}));
  EXPECT_EQ(std::hash<EnumOption>()(EnumOption(u"v", boost::none, false)), combined({hashOf(u"v"), 0}));
  EXPECT_EQ(std::hash<CompositeEntry>()(CompositeEntry(u"f", boost::none, u"")), combined({hashOf(u"f"), hashOf(u"")}));
  EXPECT_EQ(std::hash<EvalDef>()(EvalDef(u"a", u"", true)), combined({hashOf(u"a"), hashOf(u""), 1}));
}

TEST(Datatype, IsMadeFromItsFieldsAndTakesTextsInAllForms) {
  EnumOption given(u"a");
  EXPECT_TRUE(given.getValue() == u"a" && !given.getDisplayValue() && given.getEnabled()) << "the others by default";
  Text const kept(u"kept");
  given.setDisplayValue(kept);
  EXPECT_TRUE(given.getDisplayValue() == kept);
  given.setDisplayValue(u"literal");
  EXPECT_EQ(given, EnumOption(u"a", std::u16string(u"literal")));
  given.setDisplayValue({});
  EXPECT_EQ(given, EnumOption(u"a", boost::none, true));
  Text handed(u"a text that is too long to stand in the string itself");
  auto const* const characters = handed->data();
  given.setDisplayValue(std::move(handed));
  EXPECT_EQ(given.getDisplayValue()->data(), characters) << "moved, not copied";
  auto const model = plinth::Model::create();
  auto const element = tessel::internal::config::data::DoubleParamData::create(model);
  element->setName(u"literal");
  element->setDescription(kept);
  EXPECT_TRUE(element->getName() == Text(u"literal") && element->getDescription() == kept);
  element->setName(boost::none);
  EXPECT_FALSE(element->getName());
}

TEST(Datatype, IsPrintedFieldByFieldInUtf8) {
  EXPECT_EQ(testing::PrintToString(EnumOption(u"a")), "EnumOption{Value: \"a\", DisplayValue: none, Enabled: true}");
  EXPECT_EQ(testing::PrintToString(CompositeEntry(u"\u00e9\n", u"")),
            "CompositeEntry{Field: \"\u00e9\\u000a\", Code: \"\", Bytes: none}");
}

TEST(DatatypeSerializer, ReadsAndWritesFieldsOfACopy) {
  auto const& type = *plinth::MetaTypeOf<EnumOption>::type();
  auto const& serializer =
      *PropertySerializerRegistry::getInstance().datatypeSerializer(Type(plinth::MetaTypeOf<EnumOption>::type()));
  Property const value(type.ownProperties()[0]);
  Property const display(type.ownProperties()[1]);
  Value const object = serializer.createDefaultValue();
  EXPECT_TRUE(object.getValue<EnumOption>().getEnabled());
  Value const changed = serializer.setPropertyValue(object, value, single<std::u16string>(u"red"));
  EXPECT_EQ(changed.getValue<EnumOption>().getValue(), u"red");
  EXPECT_EQ(object.getValue<EnumOption>().getValue(), u"") << "the object that was passed in is as it was";
  EXPECT_EQ(serializer.getPropertyValue(changed, value).getValue<std::u16string>(), u"red");
  EXPECT_TRUE(serializer.getPropertyValue(changed, display).meta().isOptionalEmpty());
  Value const shown = serializer.setPropertyValue(changed, display, single<std::u16string>(u"Red"));
  EXPECT_TRUE(serializer.getPropertyValue(shown, display).getValue<Text>() == Text(u"Red"));
  Value const hidden = serializer.setPropertyValue(shown, display, serializer.getPropertyValue(changed, display));
  EXPECT_EQ(hidden, changed);
  EXPECT_EQ(raised([&] { serializer.setPropertyValue(object, value, single(1.0)); }), "CannotCastIncompatibleTypes");
  EXPECT_EQ(raised([&] { serializer.getPropertyValue(single(1.0), value); }), "CannotCastIncompatibleTypes");
  Property const foreign(plinth::MetaTypeOf<EvalDef>::type()->ownProperties()[0]);
  EXPECT_EQ(raised([&] { serializer.getPropertyValue(object, foreign); }), "NoSuchProperty");
  EXPECT_EQ(raised([&] { serializer.setPropertyValue(object, {}, single(1.0)); }), "NoSuchProperty");
  EXPECT_EQ(serializer.fromOptionalValue(serializer.toOptionalValue(changed)), changed);
  EXPECT_EQ(raised([&] { serializer.fromOptionalValue(serializer.createEmptyOptionalValue()); }), "InvalidValue");
  Type const optionType(plinth::MetaTypeOf<EnumOption>::type());
  Value sequence = serializer.combineAsUnmanagedSequenceValue(optionType, {shown, object, shown});
  Value set = serializer.combineAsUnmanagedSetValue(optionType, {shown, object, shown});
  EXPECT_FALSE(sequence.meta().isManaged() || set.meta().isManaged());
  EXPECT_EQ(sequence.getValue<std::vector<EnumOption>>().size(), 3U);
  EXPECT_EQ(set.getValue<std::set<EnumOption>>().size(), 2U);
  sequence.release();
  set.release();
  EXPECT_EQ(raised([&] { (void)serializer.combineAsUnmanagedSetValue(Type(value->type()), {shown}); }),
            "CannotCastIncompatibleTypes");
}

TEST(EnumSerializer, WritesAndReadsNamesValuesAndPublicIdentifiers) {
  Type const type(plinth::MetaTypeOf<ConditionType>::type());
  auto const& registry = PropertySerializerRegistry::getInstance();
  auto const& name = *registry.propertySerializer(type, "");
  auto const& value = *registry.propertySerializer(type, "ID");
  auto const& publicId = *registry.propertySerializer(type, "PublicID");
  EXPECT_EQ(name.serializeValue(single(ConditionType::EQUAL)), u"EQUAL");
  EXPECT_EQ(value.serializeValue(single(ConditionType::EQUAL)), u"1");
  EXPECT_EQ(publicId.serializeValue(single(ConditionType::EQUAL)), u"EQUAL");
  auto const none = static_cast<ConditionType>(-77);
  EXPECT_EQ(name.serializeValue(single(none)), u"");
  EXPECT_EQ(value.serializeValue(single(none)), u"-77");
  EXPECT_EQ(publicId.serializeValue(single(none)), u"");
  EXPECT_EQ(value.serializeValue(name.createDefaultValue(type)), u"0");
  EXPECT_EQ(name.serializeOptionalValue(name.createEmptyOptionalValue(type)), u"");
  EXPECT_EQ(name.parseValue(u"LESS_THAN", type).getValue<ConditionType>(), ConditionType::LESS_THAN);
  Value const between = publicId.parseOptionalValue(u"BETWEEN", type);
  EXPECT_TRUE(between.getValue<boost::optional<ConditionType>>() == ConditionType::BETWEEN);
  for (auto const* text : {u"equal", u"EQUAL ", u"", u"1"}) {
    EXPECT_THROW(name.parseValue(text, type), boost::bad_lexical_cast);
    EXPECT_THROW(publicId.parseValue(text, type), boost::bad_lexical_cast);
  }
  Type const tag(plinth::MetaTypeOf<TagType>::type());
  auto const& tagValue = *registry.propertySerializer(tag, "ID");
  EXPECT_EQ(tagValue.parseValue(u"+2", tag).getValue<TagType>(), TagType::OWNER);
  EXPECT_EQ(tagValue.parseValue(u"0", tag).getValue<TagType>(), TagType::GENERIC);
  Value twice = tagValue.combineAsUnmanagedSequenceValue(tag, {single(TagType::OWNER), single(TagType::OWNER)});
  Value again = tagValue.combineAsUnmanagedSequenceValue(tag, {single(TagType::OWNER), single(TagType::OWNER)});
  EXPECT_EQ(twice, again);
  EXPECT_EQ(twice.hash(), again.hash());
  tagValue.releaseValue(twice);
  tagValue.releaseValue(again);
  EXPECT_EQ(raised([&] { (void)tagValue.createEmptyOptionalValue(type); }), "CannotCastIncompatibleTypes");
  for (auto const* text : {u"2\xD800", u"\xDC00\u0032", u"\uFF12", u"9", u"-1", u"++2", u" 2", u"2 ", u"2.0", u"0x2",
                           u"", u"4294967298", u"99999999999999999999", u"OWNER", u"\u0662"}) {
    EXPECT_THROW(tagValue.parseValue(text, tag), boost::bad_lexical_cast) << plinth::quoted(text);
  }
  EXPECT_EQ(raised([&] { name.serializeValue(single(TagType::ROLE)); }), "CannotCastIncompatibleTypes");
}

TEST(Value, HashesAndComparesByItsContent) {
  EXPECT_EQ(single(-0.0).hash(), single(0.0).hash());
  EXPECT_EQ(single(-0.0).hash(), 0U);
  EXPECT_EQ(single(-0.0), single(0.0));
  double const half = 0.5;
  EXPECT_EQ(single(half).hash(), std::_Hash_bytes(&half, sizeof half, 0xc70f6907UL));
  EXPECT_EQ(single(-1L).hash(), ~0UL);
  EXPECT_EQ(single(TagType::ROLE).hash(), 4U);
  EXPECT_EQ(single(std::u16string(u"t")).hash(), hashOf(u"t"));
  ValueMeta const sequence(StandardTypes::realMeta(), meta::SEQUENCE);
  auto const empty = Value::make<std::vector<double>>(sequence, {});
  EXPECT_EQ(empty, Value::make<std::vector<double>>(sequence, {}));
  EXPECT_EQ(empty.hash(), 0U);
  EXPECT_EQ(Value::make<std::vector<double>>(sequence, {half, 0.0}).hash(), combined({single(half).hash(), 0}));
  EXPECT_NE(single(1L), single(1UL)) << "other types";
  Value const nan = single(std::numeric_limits<double>::quiet_NaN());
  EXPECT_NE(nan, nan);
}

TEST(Value, GivesItsContentOnlyAsItsOwnTypeAndShape) {
  Value const text = single(std::u16string(u"text"));
  EXPECT_EQ(raised([&] { text.getValue<double>(); }), "CannotCastIncompatibleTypes");
  EXPECT_EQ(raised([&] { text.getValue<std::vector<std::u16string>>(); }), "CannotCastIncompatibleTypes");
  EXPECT_EQ(raised([&] { text.getValue<Text>(); }), "CannotCastIncompatibleTypes");
  EXPECT_EQ(raised([&] { Value().getValue<bool>(); }), "CannotCastIncompatibleTypes");
  EXPECT_EQ(Value(ValueMeta(StandardTypes::realMeta(), meta::SINGLE)).getValue<double>(), 0.0) << "no content";
  EXPECT_FALSE(Value(ValueMeta(StandardTypes::stringMeta(), meta::OPTIONAL).setOptionalEmpty()).getValue<Text>());
  auto const model = plinth::Model::create();
  using namespace tessel::internal;
  auto const entryElement = ext::ConfigEntry::create(model);
  auto const number = config::data::DoubleParamData::create(model);
  auto const property = plinth::meta::Property(ext::ConfigEntry::metaClass()->findProperty(u"Data"));
  Value const held = Value::createElementValue(property, plinth::ModelElement(number));
  EXPECT_EQ(held.getValue<config::data::ParamData>(), number);
  EXPECT_EQ(raised([&] { held.getValue<config::data::BooleanParamData>(); }), "CannotCastIncompatibleTypes");
  EXPECT_EQ(raised([&] {
              entryElement->setPropertyValue(property,
                                             Value::createElementValue(property, plinth::ModelElement(entryElement)));
            }),
            "CannotCastIncompatibleTypes");
}

TEST(Value, CopiesOwnTheirContents) {
  Value copy;
  {
    Value const value = single(std::u16string(u"a text that is too long to stand in the string itself"));
    copy = value;
    EXPECT_NE(copy.content(), value.content());
    EXPECT_EQ(copy, value);
  }
  Value const moved = std::move(copy);
  EXPECT_EQ(moved.getValue<std::u16string>().size(), 53U);
  Value small = single(true);
  Value const other = small;
  small = single(false);
  EXPECT_TRUE(other.getValue<bool>());
}

}  // namespace
