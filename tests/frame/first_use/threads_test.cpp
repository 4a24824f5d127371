// What several threads may do at once: meet at the first use of the metamodel, and copy and release handles.
#include <gtest/gtest.h>

#include <atomic>
#include <tessel_config_datamodel/ext/ConfigEntry.hpp>
#include <tessel_config_datamodel/ext/Queries.hpp>
#include <tessel_config_datamodel/runtime/ParamState.hpp>
#include <tessel_config_datamodel/schema/SchemaData.hpp>
#include <thread>
#include <vector>

#include "plinth/meta/MetaRegistry.hpp"

using tessel::internal::config::runtime::ParamState;
using tessel::internal::config::schema::SchemaData;
using tessel::internal::ext::ConfigEntry;

namespace {

TEST(FirstUse, FromSeveralThreadsAtOnceGivesOneWholeMetamodel) {
  constexpr std::size_t THREADS = 6;
  std::vector<plinth::meta::ClassImpl const*> found(THREADS);
  std::vector<std::size_t> counts(THREADS);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < THREADS; ++i) {
    threads.emplace_back([&, i] {
      auto const& asked = i % 3 == 0   ? ConfigEntry::metaClass()
                          : i % 3 == 1 ? ParamState::metaClass()
                                       : SchemaData::metaClass();
      found[i] = asked.impl();
      counts[i] = asked->allProperties().size();
      // Each thread works in a model of its own meanwhile.
      auto const model = plinth::Model::create();
      auto const entry = ConfigEntry::create(model);
      entry->setKey(u"key");
      EXPECT_EQ(ConfigEntry::key().property()->getName(), u"Key");
      auto const param = ParamState::create(model);
      param->setDirty(true);
      EXPECT_EQ(plinth::meta::MetaRegistry::getInstance().getType(u"tessel.internal.ext.ConfigEntry"),
                ConfigEntry::metaClass());
      param->destroy();
    });
  }
  for (auto& thread : threads) thread.join();
  for (std::size_t i = 3; i < THREADS; ++i) EXPECT_EQ(found[i], found[i - 3]);
  EXPECT_EQ(counts[0], 2U);
  EXPECT_EQ(counts[1], 20U);
  EXPECT_EQ(counts[2], 17U);
}

TEST(Handles, OfOneElementAreCopiedAndReleasedByThreadsAtOnce) {
  auto const model = plinth::Model::create();
  auto entry = ConfigEntry::create(model);
  auto const* const impl = entry.elementImpl();
  auto const counted = impl->refCount();  // while there was one thread
  auto const onThreads = [](auto const& work) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back(work);
    for (auto& thread : threads) thread.join();
  };
  onThreads([&entry] {
    for (int i = 0; i < 20000; ++i) ConfigEntry const copy(entry);
  });
  EXPECT_EQ(impl->refCount(), counted);

  entry->destroy();
  std::atomic<std::size_t> taken{0};
  std::vector<ConfigEntry> last(4, entry);
  entry = {};
  EXPECT_EQ(impl->refCount(), last.size());
  onThreads([&] { last[taken++] = {}; });  // one of them ends the object; a second time would be found
}

}  // namespace
