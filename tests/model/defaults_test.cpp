// What new data objects hold, written down once more: the tables of the model and the metamodel agree with each other
// whatever they say.
#include <gtest/gtest.h>

#include <boost/optional.hpp>
#include <tessel_config_datamodel/data/EnumOption.hpp>

#include "model/specimen.hpp"
#include "model/typed_view.hpp"

using namespace support;  // NOLINT: the vocabulary of these checks

namespace {

struct Default {
  char const* owner;
  char16_t const* property;
  char const* value;         ///< of a new element, as text
  char16_t const* metaText;  ///< that the metamodel gives; null for none
};

Default const defaults[] = {
    {"DataObject", u"Enabled", "true", u"true"},
    {"DataObject", u"Visible", "true", u"true"},
    {"UserVisibleData", u"Name", "none", nullptr},
    {"UserVisibleData", u"Description", "none", nullptr},
    {"UserVisibleData", u"Help", "none", nullptr},
    {"ParamData", u"Refreshable", "false", nullptr},
    {"NumericParamData", u"Min", "-2147483648", u"-2.147483648E9"},
    {"NumericParamData", u"Max", "2147483647", u"2.147483647E9"},
    {"NumericParamData", u"StepSize", "1", u"1.0"},
    {"NumericParamData", u"IncludeMin", "true", u"true"},
    {"NumericParamData", u"IncludeMax", "true", u"true"},
    {"DoubleParamData", u"Value", "0", u"0"},
    {"IntegerParamData", u"Value", "0", u"0"},
    {"DoubleArrayParamData", u"MaxLength", "none", nullptr},
    {"DoubleArrayParamData", u"MinLength", "none", nullptr},
    {"IntegerArrayParamData", u"MaxLength", "none", nullptr},
    {"IntegerArrayParamData", u"MinLength", "none", nullptr},
    {"StringBasedParamData", u"Regex", "\"\"", nullptr},
    {"StringBasedParamData", u"RegexDescription", "\"\"", nullptr},
    {"StringParamData", u"Value", "\"\"", u""},
    {"StringArrayParamData", u"MaxLength", "none", nullptr},
    {"StringArrayParamData", u"MinLength", "none", nullptr},
    {"EnumParamData", u"Value", "\"\"", nullptr},
    {"EnumArrayParamData", u"MaxLength", "none", nullptr},
    {"EnumArrayParamData", u"MinLength", "none", nullptr},
    {"FileBasedParamData", u"AllowFolders", "false", u"false"},
    {"FileBasedParamData", u"AllowMultiSelect", "false", u"false"},
    {"FileBasedParamData", u"InitialDir", "\"\"", nullptr},
    {"FileParamData", u"Value", "\"\"", u""},
    {"FileArrayParamData", u"MaxLength", "none", nullptr},
    {"FileArrayParamData", u"MinLength", "none", nullptr},
    {"BooleanParamData", u"Value", "false", u"false"},
};

TypeImpl const& dataType(std::string const& name) {
  MetaPackageTessel_config_datamodel::getInstance();
  auto const found = plinth::meta::MetaRegistry::getInstance().findType("tessel.internal.config.data." + name);
  if (!found) throw std::logic_error("no type " + name);
  return *found.impl();
}

PropertyImpl& propertyOf(TypeImpl const& owner, std::u16string const& name) {
  for (PropertyImpl* each : owner.ownProperties()) {
    if (each->getName() == name) return *each;
  }
  throw std::logic_error("no property " + plinth::quoted(name));
}

TEST(Defaults, OfDataObjectsAreTheSameHoweverTheyAreMade) {
  auto const model = Model::create();
  for (Default const& row : defaults) {
    SCOPED_TRACE(row.owner + plinth::quoted(row.property));
    TypeImpl const& owner = dataType(row.owner);
    PropertyImpl& property = propertyOf(owner, row.property);
    auto const& text = property.defaultValue();
    EXPECT_TRUE(row.metaText == nullptr ? !text : text == std::u16string(row.metaText));
    int made = 0;
    for (typed::ClassView const& each : typed::classes()) {
      if (each.create == nullptr || !each.metaClass()->conformsTo(owner)) continue;
      ++made;
      for (ModelElement const& element : {each.create(model), each.metaClass()->instantiateBuilder(model)->create()}) {
        EXPECT_EQ(plinth::valueText(element->getPropertyValue(Property(&property))), row.value);
      }
    }
    EXPECT_GT(made, 0);
  }
}

TEST(Defaults, OfAnEnumOptionAreNoTextsAndEnabled) {
  using tessel::internal::config::data::EnumOption;
  EnumOption const option;
  EXPECT_EQ(option.getValue(), u"");
  EXPECT_FALSE(option.getDisplayValue());
  EXPECT_TRUE(option.getEnabled());
  TypeImpl const& type = dataType("EnumOption");
  EXPECT_FALSE(propertyOf(type, u"Value").defaultValue());
  EXPECT_FALSE(propertyOf(type, u"DisplayValue").defaultValue());
  EXPECT_TRUE(propertyOf(type, u"Enabled").defaultValue() == std::u16string(u"true"));
}

}  // namespace
