// How a tree stands in the model: definitions give the tree back that they were written from, and state and profiles
// hold typed values.
#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <tessel_config_datamodel/data/BooleanParamData.hpp>
#include <tessel_config_datamodel/data/EnumParamData.hpp>
#include <tessel_config_datamodel/data/IntegerParamData.hpp>
#include <tessel_config_datamodel/data/StringParamData.hpp>
#include <tessel_config_datamodel/expr/UntypedOperation.hpp>
#include <tessel_config_datamodel/ext/ConfigEntry.hpp>
#include <tessel_config_datamodel/runtime/MetaMessage.hpp>
#include <tessel_config_datamodel/runtime/PerspectiveState.hpp>
#include <tessel_config_datamodel/runtime/TagState.hpp>
#include <tessel_config_datamodel/schema/CategoryDef.hpp>
#include <tessel_config_datamodel/schema/FollowsDef.hpp>

#include "TreeFixture.hpp"
#include "language/ExpressionText.hpp"
#include "loading/ModelText.hpp"
#include "profiles/ProfileApplication.hpp"

namespace kconfig::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string textOfFile(std::string const& name) {
  std::ifstream file(std::string(KCONFIG_DEMO "/") + name);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

Input demo(std::string const& profile) {
  Input input;
  input.files = {{"Kconfig", textOfFile("Kconfig")}, {"radio/Kconfig", textOfFile("radio/Kconfig")}};
  input.variables = {{"WEATHER_EDITION", "7"}};
  input.profile = profile;
  return input;
}

TEST(Mapping, DefinitionsSayWhatTheAuthorWrote) {
  Bench bench(demo(""));
  schema::SchemaData const& schema = bench.workspace.schema();
  std::vector<std::string> attributes;
  schema::ParamDef const param = schema->getParams()->find(u"MEMORY_SIZE");
  for (schema::FollowsDef const& row : *param->getFollows()) {
    attributes.push_back(fromModel(row->getAttribute()));
  }
  EXPECT_THAT(attributes, ElementsAre("Name", "Range", "Range", "Value", "Value"));
  EXPECT_EQ((*schema->getParams()->find(u"TEMPERATURE")->getLogic())[1].getCode(), u"Temperature");
  auto const range = plinth::element_cast<expr::UntypedOperation>(param->getFollows()->at(1)->getExpr());
  ASSERT_TRUE(range);
  EXPECT_EQ(range->getOperator(), expr::Operator::IF_THEN);
  EXPECT_EQ(range->getOperands()->size(), 3U);
  EXPECT_EQ((*param->getLogic())[0].getCode(), u"hex");
  EXPECT_EQ(schema->getNodeCount(), schema->getParams()->size() + schema->getCategories()->size() + 2);
}

TEST(Mapping, DependenciesCanBeFollowedBothWays) {
  Bench bench(demo(""));
  schema::SchemaData const& schema = bench.workspace.schema();
  std::vector<std::pair<std::uint32_t, std::uint32_t>> forward;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> back;
  auto const collect = [&](schema::ControllableDef const& definition) {
    for (schema::GlobalNodeRef const& required : *definition->getRequires()) {
      back.emplace_back(required.getOrdinal(), definition->getOrdinal());
      EXPECT_EQ(schema->getParams()->find(required.getKey())->getOrdinal(), required.getOrdinal());
    }
    for (unsigned int const successor : *definition->getSuccessors()) {
      forward.emplace_back(definition->getOrdinal(), successor);
    }
  };
  for (schema::ParamDef const& param : *schema->getParams()) {
    collect(param);
  }
  for (schema::CategoryDef const& category : *schema->getCategories()) {
    collect(category);
  }
  std::sort(forward.begin(), forward.end());
  std::sort(back.begin(), back.end());
  EXPECT_FALSE(forward.empty());
  EXPECT_EQ(forward, back);
}

class State : public testing::Test {
 protected:
  runtime::ParamState param(char16_t const* key) { return state->getParams()->find(key); }
  template <class Data>
  Data dataOf(char16_t const* key) {
    return plinth::element_cast<Data>(param(key)->getData());
  }

  Bench bench{demo(textOfFile("profiles/garden.defconfig") + "CONFIG_MEMORY_SIZE=0x7\nCONFIG_BOARD_SMALL=y\n")};
  runtime::ConfigurationState state = bench.workspace.states().root;
};

TEST_F(State, HoldsTypedValuesWithTheirConstraints) {
  EXPECT_TRUE(dataOf<data::BooleanParamData>(u"EXPERT")->getValue());
  EXPECT_EQ(dataOf<data::EnumParamData>(u"TEMPERATURE")->getValue(), u"y");
  EXPECT_EQ(dataOf<data::StringParamData>(u"BOARD_NAME")->getValue(), u"meadow \"S\"");
  auto const period = dataOf<data::IntegerParamData>(u"READING_PERIOD");
  EXPECT_EQ(period->getValue(), 10);
  EXPECT_EQ(period->getMin(), 1);
  EXPECT_EQ(period->getMax(), 3600);
  auto const memory = dataOf<data::IntegerParamData>(u"MEMORY_SIZE");
  EXPECT_EQ(memory->getValue(), 0x10000);
  EXPECT_EQ(param(u"MEMORY_SIZE")->getCachedCode(), u"0x10000");
}

TEST_F(State, TellsAChoiceByItsOptions) {
  runtime::ParamState const board = param(u"BOARD_SMALL");
  runtime::ParamState const choice = state->getParams()->find(board->getCategory()->getKey());
  ASSERT_TRUE(choice);
  EXPECT_EQ(choice->getTypeName(), u"choice");
  auto const data = plinth::element_cast<data::EnumParamData>(choice->getData());
  EXPECT_EQ(data->getValue(), u"BOARD_SMALL");
  ASSERT_EQ(data->getAllowedValues()->size(), 3U);
  EXPECT_TRUE((*data->getAllowedValues())[2].getDisplayValue() == std::u16string(u"Simulated on a PC"));
  bench.workspace.apply(bench.workspace.load(""));
  EXPECT_FALSE((*data->getAllowedValues())[2].getEnabled()) << "EXPERT is off, the member is hidden";
}

TEST_F(State, TellsWhatTheUserHasSetAndWhatIsWrongWithIt) {
  runtime::ParamState const period = param(u"READING_PERIOD");
  EXPECT_TRUE(period->getUserModified());
  EXPECT_EQ(plinth::element_cast<data::IntegerParamData>(period->getDefault())->getValue(), 60);
  EXPECT_FALSE(param(u"FILTER_WIDTH")->getUserModified());
  EXPECT_FALSE(param(u"FILTER_WIDTH")->hasDefault());
  EXPECT_EQ(param(u"MEMORY_SIZE")->getMessages()->size(), 1U);
  bench.workspace.apply(bench.workspace.load(""));
  EXPECT_FALSE(period->getUserModified());
  EXPECT_FALSE(period->hasDefault());
  EXPECT_THAT(*param(u"MEMORY_SIZE")->getMessages(), IsEmpty());
}

TEST_F(State, GroupsParametersForTheUser) {
  runtime::TagState const radio = state->getTags()->find(u"radio");
  ASSERT_TRUE(radio);
  EXPECT_EQ(radio->getType(), runtime::TagType::OWNER);
  EXPECT_TRUE(radio->getTagged()->contains(param(u"RADIO_POWER")));
  runtime::PerspectiveState const settable = state->getPerspectives()->find(u"settable");
  EXPECT_TRUE(settable->getMembers()->contains(param(u"RADIO_CHANNEL")));
  EXPECT_FALSE(settable->getMembers()->contains(param(u"RADIO_POWER")));
  EXPECT_TRUE(param(u"RADIO_POWER")->getInternal());
  EXPECT_EQ(param(u"FILTER_WIDTH")->getCategory()->getKey(), u"below:FILTER");
}

TEST(Mapping, ProfilesKeepWhatTheFileSaid) {
  Input const tree{{{"Kconfig",
                     "config MODULES\n\tbool \"m\"\n\toption modules\n\tdefault y\nconfig I\n\tint \"i\"\nconfig H\n"
                     "\thex \"h\"\nconfig S\n\tstring \"s\"\nchoice\n\ttristate \"c\"\nconfig A\n\ttristate \"a\"\n"
                     "config B\n\ttristate \"b\"\nendchoice\n"}}};
  for (char const* profile :
       {"", "CONFIG_I=-5\nCONFIG_H=0x00aB\nCONFIG_S=\"\"\n", "CONFIG_I=99999999999999999999\nCONFIG_H=fF\n",
        "CONFIG_S=\"a\\\"b \xff \xc3\xa9\"\n# CONFIG_MODULES is not set\n", "CONFIG_A=y\nCONFIG_B=y\n",
        "CONFIG_A=m\nCONFIG_B=m\n", "CONFIG_A=y\nCONFIG_B=m\n", "CONFIG_A=y\nCONFIG_A=n\n", "CONFIG_B=n\n"}) {
    Diagnostics diagnostics;
    plinth::Model const model = plinth::Model::create();
    Definitions definitions = readDefinitions(readTree("Kconfig", surroundingsOf(tree), diagnostics, model).schema);
    CompiledTree const compiled = compile(definitions.tree);
    UserValues users(definitions.tree, compiled);
    applyProfile(readProfile(profile, "CONFIG_", "p", diagnostics), "p", definitions.tree.symbols, users, diagnostics);
    ext::ConfigStore const store = ext::ConfigStore::create(model);
    UserValues const back = readProfileValues(storeProfile(store, "p", definitions, users), definitions, compiled);
    for (SymbolId symbol = 0; symbol < definitions.tree.symbols.size(); ++symbol) {
      UserValue const& left = users[symbol];
      UserValue const& right = back[symbol];
      EXPECT_TRUE(left.present == right.present && left.tristate == right.tristate && left.text == right.text &&
                  left.member == right.member && (left.line == right.line || !users.isAsked(symbol)))
          << definitions.tree.symbols[symbol].name << " in " << profile;
    }
  }
}

TEST(Mapping, TextsOfAnyBytesPassThroughTheModel) {
  for (char const* text : {"", "plain", "caf\xc3\xa9", "\xff\xfe", "a\xc3", "\xf0\x9f\x98\x80", "\xed\xb2\x80"}) {
    EXPECT_EQ(fromModel(toModel(text)), text);
  }
  EXPECT_EQ(toModel("caf\xc3\xa9"), u"caf\u00e9");
}

}  // namespace
}  // namespace kconfig::test
