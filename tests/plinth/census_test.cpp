// The census counts what lives, in a model and in the process.
#include "plinth/diagnostics/Census.hpp"

#include <gmock/gmock.h>

#include "plinth/ProxyId.hpp"
#include "sample_model.hpp"

using plinth::Census;
using plinth::census;
using plinth::surplus;
using sample::SampleModel;

namespace {

TEST(Census, CountsTheLiveElementsOfAModelByClass) {
  SampleModel sample;
  Census const before = census(sample.model);
  EXPECT_EQ(before.elements(), sample.model->elementCount());
  EXPECT_EQ(before.countOf(*sample::runtime::ParamState::metaClass().impl()), 2U);
  EXPECT_THAT(before.text(), testing::HasSubstr("2 tessel.internal.ext.ConfigProfile\n"));
  sample.day->destroy();
  EXPECT_EQ(surplus(census(sample.model), before).text(),
            "2 tessel.internal.config.data.DoubleParamData\n"
            "2 tessel.internal.ext.ConfigEntry\n"
            "1 tessel.internal.ext.ConfigProfile\n");
}

TEST(Census, CountsWhatIsAboutInTheProcess) {
  sample::ext::ConfigStore::metaClass();  // the metamodel is not counted, whenever it comes up
  Census const before = census();
  {
    auto const model = plinth::Model::create();
    auto const store = sample::ext::ConfigStore::create(model);
    auto const profile = sample::ext::ConfigProfile::create(model);
    EXPECT_EQ(surplus(before, census()).text(),
              "1 tessel.internal.ext.ConfigProfile\n1 tessel.internal.ext.ConfigStore\n1 models\n");
    profile->destroy();
    auto const proxy = model->createProxy(sample::ext::ConfigProfile::metaClass(), profile->getPersistentProxyId(true));
    EXPECT_EQ(surplus(before, census()).text(),
              "1 tessel.internal.ext.ConfigStore\n1 models\n2 proxies or dead elements\n");
  }
  EXPECT_EQ(surplus(before, census()).text(), "");
}

TEST(Census, CountsNothingThatWasRolledBackOrLetGo) {
  Census const before = census();
  {
    SampleModel sample;
    Census const filled = census();
    auto const transaction = sample.model.beginTransaction();
    static_cast<void>(sample::ext::ConfigProfile::create(sample.model));
    sample.day->destroy();
  }
  EXPECT_EQ(surplus(before, census()).text(), "");
}

}  // namespace
