// A fingerprint tells all of a model's state and nothing else, and names where two states part.
#include "plinth/diagnostics/Fingerprint.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <boost/uuid/uuid_io.hpp>
#include <functional>
#include <limits>

#include "plinth/Builder.hpp"
#include "plinth/ElementDirectory.hpp"
#include "plinth/ProxyId.hpp"
#include "plinth/diagnostics/ValueText.hpp"
#include "plinth/diagnostics/Verify.hpp"
#include "plinth/meta/MetaRegistry.hpp"
#include "sample_model.hpp"
#include "support/checks.hpp"

using plinth::diff;
using plinth::Fingerprint;
using sample::SampleModel;

namespace {

TEST(Fingerprint, IsTheSameForModelsInTheSameState) {
  SampleModel one;
  SampleModel other;
  auto const first = Fingerprint::of(one.model);
  auto const second = Fingerprint::of(other.model);
  EXPECT_FALSE(diff(first, second)) << diff(first, second)->text();
  EXPECT_TRUE(first == second);
  EXPECT_EQ(first.text(), second.text());
  EXPECT_EQ(first.hash(), second.hash());
  EXPECT_EQ(first.elementCount(), one.model->elementCount());

  // The order in which a set was filled, collections that were looked at and the model's name are no state.
  other.model->setName(u"fingerprint-test");
  other.perspective->getMembersMutable()->remove(other.first);
  other.perspective->getMembersMutable()->add(other.first);
  EXPECT_TRUE(other.night->getValues()->empty());
  EXPECT_TRUE(Fingerprint::of(other.model) == first);

  one.volume->setKey(u"two\nlines\\");
  EXPECT_THAT(Fingerprint::of(one.model).text(), testing::HasSubstr("/Values[two\\u000alines\\\\]\n"));
}

struct Change {
  char const* name;
  std::function<void(SampleModel&)> make;
  std::string path;  ///< UUIDs are those of the sample's names
  std::string property;
  std::string left;
  std::string right;
};

std::ostream& operator<<(std::ostream& stream, Change const& change) { return stream << change.name; }

class FingerprintChange : public testing::TestWithParam<Change> {};

TEST_P(FingerprintChange, IsNamedByPathAndPropertyAndGoneAfterRollback) {
  SampleModel sample;
  auto const before = Fingerprint::of(sample.model);
  {
    auto const transaction = sample.model.beginTransaction();
    GetParam().make(sample);
    auto const after = Fingerprint::of(sample.model);
    auto const difference = diff(before, after);
    ASSERT_TRUE(difference);
    EXPECT_EQ(difference->path, GetParam().path);
    EXPECT_EQ(difference->property, GetParam().property);
    EXPECT_EQ(difference->left, GetParam().left);
    EXPECT_EQ(difference->right, GetParam().right);
    EXPECT_TRUE(before != after);
    EXPECT_NE(before.hash(), after.hash());
  }
  auto const difference = diff(before, Fingerprint::of(sample.model));
  EXPECT_FALSE(difference) << difference->text();
  EXPECT_THAT(plinth::verify(sample.model), testing::IsEmpty());
}

std::string shortUuid(char const* name) { return "{" + to_string(sample::nameUuid(name)).substr(0, 8) + "}"; }
std::string uuid(char const* name) { return to_string(sample::nameUuid(name)); }

std::vector<Change> changes() {
  std::string const configuration = "ConfigurationState" + shortUuid("configuration");
  std::string const store = "ConfigStore" + shortUuid("store");
  return {
      {"Attribute", [](SampleModel& s) { s.store->setVersion(7); }, store, "Version", "0", "7"},
      {"Real", [](SampleModel& s) { s.sum->setValue(0.1 + 0.2); }, "NumericOperation" + shortUuid("sum"), "Value", "0",
       "0.30000000000000004"},
      {"Enumeration", [](SampleModel& s) { s.sum->setOperator(sample::expr::Operator::NOT_EQ); },
       "NumericOperation" + shortUuid("sum"), "Operator", "EQ", "NOT_EQ"},
      {"Reference", [](SampleModel& s) { s.store->setActiveProfile({}); }, store, "ActiveProfile", uuid("day"), "none"},
      {"Sequence", [](SampleModel& s) { s.sum->getOperandsMutable()->replaceAt(0, s.right); },
       "NumericOperation" + shortUuid("sum"), "Operands", "[" + uuid("left") + ", " + uuid("right") + "]",
       "[" + uuid("right") + ", " + uuid("right") + "]"},
      {"Created",
       [](SampleModel& s) { static_cast<void>(sample::ext::ConfigProfile::create(s.model, sample::nameUuid("new"))); },
       "ConfigProfile" + shortUuid("new"), "", "absent", "tessel.internal.ext.ConfigProfile"},
  };
}

INSTANTIATE_TEST_SUITE_P(Each, FingerprintChange, testing::ValuesIn(changes()),
                         [](auto const& change) { return change.param.name; });

TEST(Fingerprint, TellsProxiesDeadTargetsAndElementsOfOtherModels) {
  SampleModel sample;
  auto const other = plinth::Model::create();
  other->setName(u"library");
  auto const remote = sample::ext::ConfigProfile::create(other, sample::nameUuid("remote"));
  plinth::ModelElement const proxy =
      sample.model->createProxy(sample::ext::ConfigProfile::metaClass(), remote->getPersistentProxyId(false));
  support::basicSet(sample.store, u"ActiveProfile", static_cast<sample::ext::ConfigProfile const&>(proxy));
  auto const withProxy = Fingerprint::of(sample.model);
  EXPECT_THAT(withProxy.text(), testing::HasSubstr("ActiveProfile = proxy(\"tessel.internal.ext.ConfigProfile\" \"" +
                                                   uuid("remote") + "\"@\"library\")"));
  EXPECT_EQ(sample.store->getActiveProfile(), remote);
  EXPECT_THAT(Fingerprint::of(sample.model).text(),
              testing::HasSubstr("ActiveProfile = " + uuid("remote") + "@\"library\"\n"));
  sample.store->setActiveProfile(sample.night);
  sample.night->destroy();
  EXPECT_THAT(Fingerprint::of(sample.model).text(), testing::HasSubstr("ActiveProfile = dead(" + uuid("night") + ")"));
}

TEST(Fingerprint, TellsAnyTwoListsOfProxiesApart) {
  using Ids = std::vector<plinth::ProxyId>;
  auto const stateWith = [](Ids const& ids) {
    SampleModel sample;
    for (auto const& id : ids) {
      sample.perspective->getMembers()->addProxy(
          sample.model->createProxy(sample::runtime::ParamState::metaClass(), id));
    }
    return Fingerprint::of(sample.model);
  };
  auto const local = [](std::u16string name, std::u16string element) {
    return plinth::ProxyId{std::move(name), std::move(element), boost::none};
  };
  std::pair<Ids, Ids> const pairs[] = {
      {{local(u"A", u"B C")}, {local(u"A B", u"C")}},
      {{local(u"A", u"B@m")}, {plinth::ProxyId{u"A", u"B", std::u16string(u"m")}}},
      {{local(u"A", {u'\xD800'})}, {local(u"A", {u'\xDC01'})}},
      {{local(u"A", u"1), proxy(A 2")}, {local(u"A", u"1"), local(u"A", u"2")}},
      {{local(u"A", u"1\"), proxy(\"A\" \"2")}, {local(u"A", u"1"), local(u"A", u"2")}},
  };
  for (auto const& [left, right] : pairs) {
    EXPECT_TRUE(stateWith(left) != stateWith(right)) << stateWith(left).text();
    EXPECT_TRUE(stateWith(left) == stateWith(left));
  }
}

TEST(Fingerprint, TellsEveryPropertyOfEveryClass) {
  auto const model = plinth::Model::create();
  auto const& registry = plinth::meta::MetaRegistry::getInstance();
  std::size_t classes = 0;
  static_cast<void>(sample::ext::ConfigStore::create(model));  // brings the metamodel up
  for (plinth::ModelElementImpl const* element : registry.model()->directory().all()) {
    auto const* const metaClass = dynamic_cast<plinth::meta::ClassImpl const*>(element);
    if (metaClass == nullptr || metaClass->isAbstract() || metaClass->owningPackage() == nullptr) continue;
    auto const made = metaClass->instantiateBuilder(model)->create();
    std::string const text = Fingerprint::of(model).text();
    for (auto const* property : metaClass->allProperties()) {
      if (property->isDerived()) continue;
      std::string const name(property->getName().begin(), property->getName().end());
      EXPECT_THAT(text, testing::HasSubstr("\n  " + name + " = ")) << metaClass->narrowName();
    }
    made->destroy();
    ++classes;
  }
  EXPECT_GE(classes, 50U);
  EXPECT_EQ(model->elementCount(), 1U);
}

TEST(Fingerprint, TakesADeepTreeWithoutRecursion) {
  constexpr std::size_t DEPTH = 100'000;
  auto const model = plinth::Model::create();
  auto const root = sample::deepTree(model, DEPTH);
  auto const before = Fingerprint::of(model);
  EXPECT_EQ(before.elementCount(), DEPTH);
  auto lowest = root;
  while (!lowest->getOperands()->empty())
    lowest = static_cast<sample::expr::NumericOperation const&>(
        static_cast<plinth::ModelElement const&>(lowest->getOperands()->at(0)));
  lowest->setValue(1);
  auto const difference = diff(before, Fingerprint::of(model));
  ASSERT_TRUE(difference);
  EXPECT_EQ(difference->property, "Value");
  EXPECT_EQ(std::count(difference->path.begin(), difference->path.end(), '/'), DEPTH - 1);
}

TEST(ValueText, IsExactAndReadable) {
  using plinth::meta::OPTIONAL;
  using plinth::meta::SINGLE;
  auto const text = [](auto const& content) {
    using T = std::decay_t<decltype(content)>;
    return plinth::valueText(plinth::Value::make<T>({plinth::MetaTypeOf<T>::type(), SINGLE}, content));
  };
  EXPECT_EQ(text(0.1), "0.1");
  EXPECT_EQ(text(0.1 + 0.2), "0.30000000000000004");
  EXPECT_EQ(text(-std::numeric_limits<double>::infinity()), "-inf");
  EXPECT_EQ(text(std::numeric_limits<double>::quiet_NaN()), "nan(7ff8000000000000)");
  EXPECT_EQ(text(std::numeric_limits<long>::min()), "-9223372036854775808");
  EXPECT_EQ(text(std::numeric_limits<unsigned long>::max()), "18446744073709551615");
  EXPECT_EQ(text(std::u16string(u"\"a\\b\"\n\xD83D\xDE00 \xD800")),
            "\"\\\"a\\\\b\\\"\\u000a\xF0\x9F\x98\x80 \\ud800\"");
  auto const optional = plinth::ValueMeta(plinth::StandardTypes::stringMeta(), OPTIONAL);
  EXPECT_EQ(plinth::valueText(plinth::Value(optional)), "none");
  EXPECT_EQ(plinth::valueText(plinth::Value::make<boost::optional<std::u16string>>(optional, std::u16string())),
            "\"\"");
}

}  // namespace
