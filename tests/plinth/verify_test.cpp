// A sound model gives no finding; each way to break one gives the finding that names it.
#include "plinth/diagnostics/Verify.hpp"

#include <gmock/gmock.h>

#include <functional>
#include <regex>

#include "plinth/ProxyId.hpp"
#include "plinth/meta/MetaRegistry.hpp"
#include "sample_model.hpp"

using plinth::Finding;
using plinth::verify;
using sample::SampleModel;

namespace {

constexpr std::size_t DEPTH = 100'000;

plinth::meta::PropertyImpl& property(plinth::ModelElement const& element, std::u16string const& name) {
  return *element->getMetaClass()->findProperty(name);
}

TEST(Verify, FindsNothingInASoundModel) {
  SampleModel sample;
  EXPECT_THAT(verify(sample.model), testing::IsEmpty());
  EXPECT_THAT(verify(plinth::Model()), testing::IsEmpty());
  EXPECT_THAT(verify(plinth::meta::MetaRegistry::getInstance().model()), testing::IsEmpty());

  auto transaction = sample.model.beginTransaction();
  sample.volume->setKey(u"loudness");
  sample.second->setCategory({});
  sample.night->destroy();
  EXPECT_THAT(verify(sample.model), testing::IsEmpty()) << "inside the transaction";
  transaction.commit();
  EXPECT_THAT(verify(sample.model), testing::IsEmpty()) << "after the commit";
}

TEST(Verify, AcceptsElementsOfOtherModelsProxiesAndDeadTargets) {
  SampleModel sample;
  auto const other = plinth::Model::create();
  other->setName(u"verify-test");
  auto const remote = sample::ext::ConfigProfile::create(other, sample::nameUuid("remote"));
  auto const proxy =
      sample.model->createProxy(sample::ext::ConfigProfile::metaClass(), remote->getPersistentProxyId(false));
  sample.store->setPropertyValue(
      plinth::meta::Property(&property(sample.store, u"ActiveProfile")),
      plinth::Value::createElementValue(plinth::meta::Property(&property(sample.store, u"ActiveProfile")), proxy));
  EXPECT_THAT(verify(sample.model), testing::IsEmpty()) << "with a proxy";
  EXPECT_EQ(sample.store->getActiveProfile(), remote);
  EXPECT_THAT(verify(sample.model), testing::IsEmpty()) << "with the element of the other model";
  sample.store->setActiveProfile(sample.night);
  sample.night->destroy();
  EXPECT_THAT(verify(sample.model), testing::IsEmpty()) << "with a dead target";
}

struct Breach {
  char const* name;
  std::function<void(SampleModel&)> cause;
  Finding expected;  ///< its UUIDs cut to nothing
};

std::ostream& operator<<(std::ostream& stream, Breach const& breach) { return stream << breach.name; }

class VerifyBreach : public testing::TestWithParam<Breach> {};

/// `ConfigStore{1f0c8a22}` as `ConfigStore{}`.
std::string withoutUuids(std::string const& text) {
  return std::regex_replace(text, std::regex(R"(\{[0-9a-f]{8}\})"), "{}");
}

TEST_P(VerifyBreach, IsNamedByRulePathAndProperty) {
  SampleModel sample;
  {
    auto transaction = sample.model.beginTransaction();
    GetParam().cause(sample);
    transaction.commit();
  }
  std::vector<std::string> found;
  for (Finding const& finding : verify(sample.model)) found.push_back(withoutUuids(finding.text()));
  EXPECT_THAT(found, testing::Contains(GetParam().expected.text()));
}

std::vector<Breach> breaches() {
  return {
      {"ChildWithoutContainerLink",
       [](SampleModel& s) { core(*s.volume).basicSetContainer(nullptr, nullptr, plinth::ModelElementImpl::NO_INDEX); },
       {"containment", "ConfigStore{}/Profiles[day]", "Values", "ConfigEntry{} to have it as its container link",
        "no container"}},
      {"ContainerThatDoesNotHoldTheChild",
       [](SampleModel& s) { core(*s.volume).basicSetContainer(s.night.impl(), &property(s.night, u"Values"), 0); },
       {"containment", "ConfigStore{}/Profiles[night]/Values[volume]", "Values", "a container that holds it",
        "Values of ConfigProfile{}"}},
      {"ContainmentCycle",
       [](SampleModel& s) {
         auto const inner = sample::expr::NumericOperation::create(s.model);
         s.sum->getOperandsMutable()->add(inner);
         core(*inner)._basicAdd(inner->getOperandsMutable(), s.sum);
         core(*s.sum).basicSetContainer(inner.impl(), &property(inner, u"Operands"), 0);
       },
       {"containment cycle", ".../Operands[2]/Operands[0]", "", "no element to contain itself",
        "NumericOperation{} inside itself"}},
      {"OneSidedReference",
       [](SampleModel& s) { core(*s.category)._basicRemove(s.category->getContentsMutable(), s.first); },
       {"opposite", "ConfigurationState{}/Params[first]", "Category", "CategoryState{} to list it in Contents",
        "no entry there"}},
      {"OneSidedCollection",
       [](SampleModel& s) { core(*s.tag)._basicRemove(s.tag->getTaggedMutable(), s.first); },
       {"opposite", "ConfigurationState{}/Params[first]", "Tags", "TagState{} to list it in Tagged", "no entry there"}},
      {"ForeignKey",
       [](SampleModel& s) {
         auto const stray = sample::ext::ConfigEntry::create(s.model, {});
         stray->setKey(u"old");
         core(*s.day)._basicAdd(s.day->getValuesMutable(), stray);
         stray->setKey(u"new");
         core(*stray).basicSetContainer(s.day.impl(), &property(s.day, u"Values"), 0);
       },
       {"key", "ConfigStore{}/Profiles[day]", "Values", "the key \"new\"", "\"old\""}},
      {"DeadChild",
       [](SampleModel& s) {
         auto const stray = sample::ext::ConfigEntry::create(s.model, {});
         stray->setKey(u"stray");
         core(*s.day)._basicAdd(s.day->getValuesMutable(), stray);
         stray->destroy();
       },
       {"target", "ConfigStore{}/Profiles[day]", "Values", "a live element", "the dead ConfigEntry{}"}},
  };
}

INSTANTIATE_TEST_SUITE_P(Each, VerifyBreach, testing::ValuesIn(breaches()),
                         [](auto const& breach) { return breach.param.name; });

TEST(Verify, FindsAReferenceThatWasGivenBackTwice) {
  SampleModel sample;
  auto* const element = sample.left.impl();
  std::uint32_t const excess = core(*element).refCount() - 1;
  for (std::uint32_t i = 0; i < excess; ++i) core(*element).removeRef();
  std::vector<Finding> const findings = verify(sample.model);
  for (std::uint32_t i = 0; i < excess; ++i) core(*element).addRef();
  ASSERT_THAT(findings, testing::SizeIs(1));
  EXPECT_EQ(withoutUuids(findings.front().text()),
            "reference count of NumericOperation{}/Operands[0]: expected at least 2, found 1");
}

TEST(Verify, TakesADeepTreeWithoutRecursion) {
  auto const model = plinth::Model::create();
  auto const root = sample::deepTree(model, DEPTH);
  EXPECT_THAT(verify(model), testing::IsEmpty());
  EXPECT_EQ(model->elementCount(), DEPTH);
}

}  // namespace
