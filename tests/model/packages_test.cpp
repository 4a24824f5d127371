// The rules of the single packages that no other check covers, and a whole schema with its configuration.
#include <gmock/gmock.h>

#include <map>
#include <set>
#include <sstream>
#include <tessel_config_datamodel/data.hpp>
#include <tessel_config_datamodel/expr.hpp>
#include <tessel_config_datamodel/ext.hpp>
#include <tessel_config_datamodel/runtime.hpp>
#include <tessel_config_datamodel/schema.hpp>

#include "plinth/ElementDirectory.hpp"
#include "plinth/sample_model.hpp"
#include "support/checks.hpp"
#include "support/specimens.hpp"

using namespace sample;  // NOLINT: the packages of the sample
namespace schema = tessel::internal::config::schema;
using support::isSound;
using support::raised;
using testing::ElementsAre;

namespace {

TEST(ParamData, StoresWhatItIsGivenWithoutJudgement) {
  auto const model = plinth::Model::create();
  auto const number = data::DoubleParamData::create(model);
  number->setMin(5);
  number->setMax(1);
  number->setValue(100);
  EXPECT_TRUE(number->getMin() == 5 && number->getMax() == 1 && number->getValue() == 100);
  auto const choice = data::EnumParamData::create(model);
  choice->getAllowedValues()->assign({data::EnumOption(u"red"), data::EnumOption(u"red")});
  choice->setValue(u"no such option");
  EXPECT_EQ(choice->getAllowedValues()->size(), 2U);
  auto const composite = data::CompositeParamData::create(model);
  for (int i = 0; i < 2; ++i) composite->getValue()->push_back(data::CompositeEntry(u"not allowed"));
  EXPECT_EQ(composite->getValue()->size(), 2U);
  auto const flag = data::BooleanParamData::create(model);
  flag->getAllowedValues()->push_back(true);
  flag->getAllowedValues()->push_back(true);
  EXPECT_EQ(flag->getAllowedValues()->size(), 2U) << "a collection of values does not look for equal ones";
}

TEST(Ref, HoldsSubscriptsAndAValueThatComesAndGoes) {
  auto const model = plinth::Model::create();
  auto const ref = expr::Ref::create(model);
  ref->getSubscripts()->assign({u"i", u"i"});
  EXPECT_EQ(ref->getSubscripts()->size(), 2U);
  support::CommitCount commits(model);
  auto const value = plinth::meta::Property(expr::Ref::metaClass()->findProperty(u"Value"));
  ref->setValue(nullptr);
  EXPECT_EQ(commits.take(), 0);
  ref->setValue(kestrel::createScalar(1.0).get());
  ref->setValue(kestrel::createScalar(1.0).get());
  EXPECT_EQ(commits.take(), 2);
  EXPECT_TRUE(ref->hasPropertyValue(value));
  ref->setValue(nullptr);
  EXPECT_FALSE(ref->hasPropertyValue(value));
  ref->setExprType(expr::ExprType::CONSTANT);
  EXPECT_EQ(ref->getExprType(), expr::ExprType::CONSTANT);
}

TEST(Schema, KeysAreUniqueInMapsAndFreeElsewhere) {
  auto const model = plinth::Model::create();
  auto const root = schema::SchemaData::create(model);
  auto const other = schema::SchemaData::create(model);
  auto const add = [&](schema::SchemaData const& owner, char16_t const* key) {
    auto builder = std::make_unique<schema::ParamDef::Builder>();
    builder->setKey(key);
    return owner->createIntoParams(std::move(builder));
  };
  auto const first = add(root, u"a");
  auto const second = add(root, u"b");
  add(other, u"a");
  EXPECT_EQ(raised([&] { add(root, u"a"); }), "UniquenessConstraint");
  EXPECT_EQ(raised([&] { second->setKey(u"a"); }), "UniquenessConstraint");
  EXPECT_EQ(root->getParams()->keys(), (std::vector<std::u16string>{u"a", u"b"}));
  EXPECT_EQ(root->getParams()->find(u"b"), second);
  for (int i = 0; i < 2; ++i) root->createIntoCategories(std::make_unique<schema::CategoryDef::Builder>());
  EXPECT_EQ(root->getCategories()->at(0)->getKey(), root->getCategories()->at(1)->getKey());
  root->getCategories()->at(0)->getContents()->push_back(schema::GlobalNodeRef(u"b"));
  second->setKey(u"c");
  EXPECT_EQ(root->getCategories()->at(0)->getContents()->values()[0].getKey(), u"b") << "a value, not a link";
  first->getSuccessors()->push_back(4'000'000'000U);
  auto const production = schema::ProductionRef::create(model);
  production->setTargetKey(u"anything");
  first->getProductionRefs()->insert(production);
  EXPECT_EQ(first->getProductionRefs()->find(u"anything"), production);
  production->setTargetKey(u"else");
  EXPECT_FALSE(first->getProductionRefs()->find(u"anything"));
  EXPECT_TRUE(isSound(model));
}

TEST(Schema, SlotsOfAControllerLetTheFormerMethodGo) {
  auto const model = plinth::Model::create();
  auto const controller = schema::ControllerRef::create(model);
  auto const former = controller->createIntoUpdate(std::make_unique<schema::MethodRef::Builder>());
  former->setUseConstantArgs(true);
  support::CommitCount commits(model);
  controller->setUpdate(schema::MethodRef::create(model));
  EXPECT_EQ(commits.take(), 2);
  EXPECT_TRUE(former);
  EXPECT_FALSE(former->container());
}

TEST(Schema, NamesRuntimeStateWithoutOwningIt) {
  SampleModel s;
  auto const root = schema::SchemaData::create(s.model);
  root->setRuntimeState(s.configuration);
  auto const tag = root->createIntoTags(std::make_unique<schema::TagDef::Builder>());
  tag->setInitialState(s.tag);
  root->destroy();
  EXPECT_TRUE(s.configuration && s.tag);
}

TEST(Runtime, MapsOfOneConfigurationKeepTheirKeysApart) {
  SampleModel s;
  auto const production = s.configuration->createIntoProductions(std::make_unique<runtime::ProductionState::Builder>());
  production->setKey(u"first");
  auto const profile = s.configuration->createIntoProfiles(std::make_unique<runtime::ProfileState::Builder>());
  profile->setId(u"advanced");
  auto const tag = s.configuration->createIntoTags(std::make_unique<runtime::TagState::Builder>());
  EXPECT_EQ(raised([&] { tag->setId(u"advanced"); }), "UniquenessConstraint");
  EXPECT_EQ(tag->getId(), u"");
  for (auto const& each :
       {profile, s.configuration->createIntoProfiles(std::make_unique<runtime::ProfileState::Builder>())})
    each->setIsActive(true);
  tag->getTagged()->add(s.category);
  s.perspective->getMembers()->add(s.category);
  EXPECT_FALSE(tag->hasTaggedParams());
  EXPECT_TRUE(isSound(s.model));
}

TEST(ConfigStore, TakesOneProfileWithoutAnId) {
  auto const model = plinth::Model::create();
  auto const store = ext::ConfigStore::create(model);
  store->getProfiles()->insert(ext::ConfigProfile::create(model));
  EXPECT_EQ(raised([&] { store->getProfiles()->insert(ext::ConfigProfile::create(model)); }), "UniquenessConstraint");
  EXPECT_EQ(store->getProfiles()->size(), 1U);
}

constexpr int DEFINITIONS = 300;

std::u16string keyOf(int i) {
  std::string const text = "p" + std::to_string(i);
  return {text.begin(), text.end()};
}

/// A schema, the expressions that its definitions follow, and a configuration beside it, made by setters.
void makeBySetters(plinth::Model const& model) {
  auto const root = schema::SchemaData::create(model);
  auto const configuration = runtime::ConfigurationState::create(model);
  root->setRuntimeState(configuration);
  auto const category = runtime::CategoryState::create(model);
  configuration->getCategories()->add(category);
  for (int i = 0; i < DEFINITIONS; ++i) {
    auto const state = runtime::ParamState::create(model);
    state->setKey(keyOf(i));
    configuration->getParams()->insert(state);
    state->setCategory(category);
    auto const content = data::DoubleParamData::create(model);
    content->setValue(i);
    state->setData(content);
    auto const definition = schema::ParamDef::create(model);
    definition->setKey(keyOf(i));
    definition->setInitialState(state);
    definition->getSuccessors()->push_back(static_cast<unsigned>(i));
    root->getParams()->insert(definition);
    auto const follows = schema::FollowsDef::create(model);
    definition->getFollows()->add(follows);
    auto const sum = expr::NumericOperation::create(model);
    sum->setExprType(expr::ExprType::CONSTANT);  // as a builder leaves it
    sum->setOperator(expr::Operator::PLUS);
    follows->setExpr(sum);
    auto const ref = expr::Ref::create(model);
    ref->setSymbol(keyOf(i));
    sum->getOperands()->add(ref);
    auto const constant = expr::NumericConstant::create(model);
    constant->setValue(i);
    sum->getOperands()->add(constant);
  }
}

void makeByBuilders(plinth::Model const& model) {
  runtime::ConfigurationState::Builder configurationBuilder(model);
  configurationBuilder.addCategories(std::make_unique<runtime::CategoryState::Builder>(model));
  auto const configuration = plinth::element_cast<runtime::ConfigurationState>(configurationBuilder.create());
  schema::SchemaData::Builder root(model);
  root.setRuntimeState(configuration);
  for (int i = 0; i < DEFINITIONS; ++i) {
    auto content = std::make_unique<data::DoubleParamData::Builder>(model);
    content->setValue(i);
    auto state = std::make_unique<runtime::ParamState::Builder>(model);
    state->setKey(keyOf(i)).setCategory(configuration->getCategories()->at(0)).setData(std::move(content));
    auto const made = configuration->createIntoParams(std::move(state));
    auto ref = std::make_unique<expr::Ref::Builder>(model);
    ref->setSymbol(keyOf(i));
    auto constant = std::make_unique<expr::NumericConstant::Builder>(model);
    constant->setValue(i);
    auto sum = std::make_unique<expr::NumericOperation::Builder>(model);
    sum->setOperator(expr::Operator::PLUS).addOperands(std::move(ref)).addOperands(std::move(constant));
    auto follows = std::make_unique<schema::FollowsDef::Builder>(model);
    follows->setExpr(std::move(sum));
    auto definition = std::make_unique<schema::ParamDef::Builder>(model);
    definition->setKey(keyOf(i))
        .setInitialState(made)
        .addSuccessors({static_cast<unsigned>(i)})
        .addFollows(std::move(follows));
    root.addParams(std::move(definition));
  }
  root.create();
}

/// The state of a model, an element a text, with UUIDs replaced by numbers in the order of containment: so two compare.
std::set<std::string> shapeOf(plinth::Model const& model) {
  std::vector<plinth::ModelElementImpl*> order;
  for (auto const* root : {schema::SchemaData::metaClass().impl(), runtime::ConfigurationState::metaClass().impl()}) {
    for (auto* element : model->directory().elementsOf(*root)) order.push_back(element);
  }
  for (std::size_t i = 0; i < order.size(); ++i) core(*order[i]).collectContained(order);
  EXPECT_EQ(order.size(), model->elementCount());
  std::map<std::string, std::string> numbers;
  for (auto* element : order)
    numbers.emplace(boost::uuids::to_string(element->getUuid()), std::to_string(numbers.size()));
  std::set<std::string> elements;
  std::string element;
  std::istringstream text(plinth::Fingerprint::of(model).text());
  for (std::string line; std::getline(text, line);) {
    if (line.front() != ' ') elements.insert(std::exchange(element, {}));
    for (std::size_t dash = 0; (dash = line.find('-', dash + 1)) != std::string::npos;) {
      auto const found = dash < 8 ? numbers.end() : numbers.find(line.substr(dash - 8, 36));
      if (found != numbers.end()) line.replace(dash - 8, 36, found->second);
    }
    element += line + '\n';
  }
  elements.insert(element);
  return elements;
}

TEST(SchemaWithConfiguration, IsTheSameByBuildersAndBySetters) {
  auto const bySetters = plinth::Model::create();
  makeBySetters(bySetters);
  auto const byBuilders = plinth::Model::create();
  {
    auto const transaction = byBuilders.beginTransaction();
    makeByBuilders(byBuilders);
  }
  EXPECT_EQ(byBuilders->elementCount(), 0U);
  makeByBuilders(byBuilders);
  EXPECT_EQ(bySetters->elementCount(), DEFINITIONS * 7U + 3);
  EXPECT_TRUE(isSound(bySetters) && isSound(byBuilders));
  auto const shape = shapeOf(bySetters);
  auto const other = shapeOf(byBuilders);
  EXPECT_EQ(shape.size(), DEFINITIONS * 7U + 4) << "each element, and the empty text";
  auto const [left, right] = std::mismatch(shape.begin(), shape.end(), other.begin(), other.end());
  EXPECT_TRUE(left == shape.end() && right == other.end()) << *left << " against\n" << *right;
}

}  // namespace
