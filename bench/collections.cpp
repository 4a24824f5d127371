// Collections of elements and maps by key, from small to large, and the store of saved profiles as a whole.
#include <tessel_config_datamodel/runtime/CategoryState.hpp>
#include <tessel_config_datamodel/runtime/ConfigurationState.hpp>
#include <tessel_config_datamodel/runtime/ParamState.hpp>
#include <tessel_config_datamodel/runtime/PerspectiveState.hpp>
#include <unordered_set>

#include "support/Comparison.hpp"
#include "support/Sample.hpp"

namespace {

using bench::compare;
using bench::Meter;
using benchmark::State;
namespace ext = bench::ext;
namespace runtime = tessel::internal::config::runtime;

std::size_t sizeOf(State const& state) { return static_cast<std::size_t>(state.range(0)); }

std::vector<std::int64_t> const GROWTH{1000, 10000, 100000, 1000000};
constexpr std::size_t PROFILES = 100;
/// Each iteration makes a world of its own.
constexpr std::int64_t ITERATIONS = 5;

/// Runs `work(world)` in each iteration, on a world that is new each time.
template <class World, class Work>
bench::Comparison::Side onNew(Work work) {
  return [=](State& state) {
    auto const keys = bench::makeKeys(sizeOf(state));
    Meter meter(state, keys.size());
    for (auto _ : state) {
      World world(keys);
      meter.measure([&] { work(world); });
    }
  };
}

/// Entries by themselves, and two empty profiles.
struct Entries {
  explicit Entries(std::vector<std::u16string> const& allKeys) : keys(allKeys) {
    plinth::Transaction transaction = model.beginTransaction();
    one = ext::ConfigProfile::create(model);
    other = ext::ConfigProfile::create(model);
    entries.reserve(keys.size());
    for (std::u16string const& key : keys) {
      entries.push_back(ext::ConfigEntry::create(model));
      entries.back()->setKey(key);
    }
    transaction.commit();
  }
  void insertAll(ext::ConfigProfile const& profile) {
    plinth::Transaction transaction = model.beginTransaction();
    auto* const values = profile->getValuesMutable();
    for (ext::ConfigEntry const& entry : entries) values->insert(entry);
    transaction.commit();
  }
  std::vector<std::u16string> const& keys;
  plinth::Model model = plinth::Model::create();
  ext::ConfigProfile one, other;
  std::vector<ext::ConfigEntry> entries;
};
struct FilledEntries : Entries {
  explicit FilledEntries(std::vector<std::u16string> const& allKeys) : Entries(allKeys) { insertAll(one); }
};

struct PlainEntries {
  explicit PlainEntries(std::vector<std::u16string> const& allKeys) : keys(allKeys) {
    entries.reserve(keys.size());
    for (std::u16string const& key : keys) {
      entries.push_back(std::make_unique<plain::Entry>());
      entries.back()->key = key;
    }
  }
  void insertAll() {
    for (auto const& entry : entries) one.emplace(entry->key, entry.get());
  }
  std::vector<std::u16string> const& keys;
  std::map<plain::Text, plain::Entry*> one, other;
  std::vector<std::unique_ptr<plain::Entry>> entries;
};
struct FilledPlainEntries : PlainEntries {
  explicit FilledPlainEntries(std::vector<std::u16string> const& allKeys) : PlainEntries(allKeys) { insertAll(); }
};

void describeMaps() {
  compare("map: insert by key")
      .sizes(GROWTH)
      .iterations(ITERATIONS)
      .aims(3, 3)
      .baseline(onNew<PlainEntries>([](PlainEntries& world) { world.insertAll(); }))
      .library(onNew<Entries>([](Entries& world) { world.insertAll(world.one); }));
  compare("map: find by key")
      .sizes(GROWTH)
      .iterations(ITERATIONS)
      .aims(1.15, 1.0)
      .baseline(onNew<FilledPlainEntries>([](PlainEntries& world) {
        for (auto const& key : world.keys) benchmark::DoNotOptimize(world.one.find(key)->second);
      }))
      .library(onNew<FilledEntries>([](Entries& world) {
        auto const* const values = world.one->getValues();
        for (auto const& key : world.keys) benchmark::DoNotOptimize(values->find(key).impl());
      }));
  compare("map: change the key of a member")
      .sizes(GROWTH)
      .iterations(ITERATIONS)
      .baseline(onNew<FilledPlainEntries>([](PlainEntries& world) {
        for (auto const& entry : world.entries) {
          auto node = world.one.extract(entry->key);
          entry->key += u'x';
          node.key() = entry->key;
          world.one.insert(std::move(node));
        }
      }))
      .library(onNew<FilledEntries>([](Entries& world) {
        plinth::Transaction transaction = world.model.beginTransaction();
        for (ext::ConfigEntry const& entry : world.entries) entry->setKey(entry->getKey() + u'x');
        transaction.commit();
      }));
  compare("map: move a member to another map")
      .sizes(GROWTH)
      .iterations(ITERATIONS)
      .baseline(onNew<FilledPlainEntries>([](PlainEntries& world) {
        for (auto const& entry : world.entries) world.other.insert(world.one.extract(entry->key));
      }))
      .library(onNew<FilledEntries>([](Entries& world) { world.insertAll(world.other); }));
  compare("map: clear, a member")
      .sizes(GROWTH)
      .iterations(ITERATIONS)
      .baseline(onNew<FilledPlainEntries>([](PlainEntries& world) { world.one.clear(); }))
      .library(onNew<FilledEntries>([](Entries& world) { world.one->getValuesMutable()->clear(); }));
  compare("map: destroy a member")
      .sizes(GROWTH)
      .iterations(ITERATIONS)
      .baseline(onNew<FilledPlainEntries>([](PlainEntries& world) {
        for (auto& entry : world.entries) {
          world.one.erase(entry->key);
          entry.reset();
        }
      }))
      .library(onNew<FilledEntries>([](Entries& world) {
        plinth::Transaction transaction = world.model.beginTransaction();
        for (ext::ConfigEntry& entry : world.entries) {
          entry->destroy();
          entry = {};
        }
        transaction.commit();
      }));
}

/// Parameters by themselves, a category and a perspective.
struct Parameters {
  explicit Parameters(std::vector<std::u16string> const& keys) {
    plinth::Transaction transaction = model.beginTransaction();
    category = runtime::CategoryState::create(model);
    perspective = runtime::PerspectiveState::create(model);
    parameters.reserve(keys.size());
    for (std::size_t i = 0; i < keys.size(); ++i) parameters.push_back(runtime::ParamState::create(model));
    transaction.commit();
  }
  void addMembers() {
    plinth::Transaction transaction = model.beginTransaction();
    auto* const members = perspective->getMembersMutable();
    for (runtime::ParamState const& parameter : parameters) members->add(parameter);
    transaction.commit();
  }
  plinth::Model model = plinth::Model::create();
  runtime::CategoryState category;
  runtime::PerspectiveState perspective;
  std::vector<runtime::ParamState> parameters;
};
struct Members : Parameters {
  explicit Members(std::vector<std::u16string> const& keys) : Parameters(keys) { addMembers(); }
};

struct PlainParameters {
  explicit PlainParameters(std::vector<std::u16string> const& keys) : parameters(keys.size()) {}
  void addMembers() {
    for (plain::Parameter& parameter : parameters) members.insert(&parameter);
  }
  plain::Category category;
  std::unordered_set<plain::Parameter*> members;
  std::vector<plain::Parameter> parameters;
};
struct PlainMembers : PlainParameters {
  explicit PlainMembers(std::vector<std::u16string> const& keys) : PlainParameters(keys) { addMembers(); }
};

void describeSequencesAndSets() {
  compare("unique sequence with an opposite: add")
      .sizes(GROWTH)
      .iterations(ITERATIONS)
      .baseline(onNew<PlainParameters>([](PlainParameters& world) {
        for (plain::Parameter& parameter : world.parameters) {
          if (parameter.category == &world.category) continue;
          parameter.category = &world.category;
          world.category.contents.push_back(&parameter);
        }
      }))
      .library(onNew<Parameters>([](Parameters& world) {
        plinth::Transaction transaction = world.model.beginTransaction();
        auto* const contents = world.category->getContentsMutable();
        for (runtime::ParamState const& parameter : world.parameters) contents->add(parameter);
        transaction.commit();
      }));
  compare("set: add")
      .sizes(GROWTH)
      .iterations(ITERATIONS)
      .baseline(onNew<PlainParameters>([](PlainParameters& world) { world.addMembers(); }))
      .library(onNew<Parameters>([](Parameters& world) { world.addMembers(); }));
  compare("set: contains")
      .sizes(GROWTH)
      .iterations(ITERATIONS)
      .baseline(onNew<PlainMembers>([](PlainParameters& world) {
        for (plain::Parameter& parameter : world.parameters) {
          benchmark::DoNotOptimize(world.members.count(&parameter));
        }
      }))
      .library(onNew<Members>([](Parameters& world) {
        auto const* const members = world.perspective->getMembers();
        for (runtime::ParamState const& parameter : world.parameters) {
          benchmark::DoNotOptimize(members->contains(parameter));
        }
      }));
}

/// A category with all parameters, and a parameter with as many allowed values.
struct Sequences : Parameters {
  explicit Sequences(std::vector<std::u16string> const& keys) : Parameters(keys) {
    plinth::Transaction transaction = model.beginTransaction();
    for (runtime::ParamState const& parameter : parameters) contents().add(parameter);
    allowed().assign(std::vector<double>(keys.size(), 1));
    transaction.commit();
  }
  plinth::ElementSequence<runtime::ControllableState>& contents() { return *category->getContentsMutable(); }
  plinth::PrimitiveSequence<double>& allowed() { return *number->getAllowedValuesMutable(); }
  bench::data::DoubleParamData number = bench::data::DoubleParamData::create(model);
};
/// All parameters of the category lie in one configuration.
struct Configured : Sequences {
  explicit Configured(std::vector<std::u16string> const& keys) : Sequences(keys) {
    plinth::Transaction transaction = model.beginTransaction();
    auto& params = *configuration->getParamsMutable();
    for (std::size_t i = 0; i < keys.size(); ++i) {
      parameters[i]->setKey(keys[i]);
      params.insert(parameters[i]);
    }
    transaction.commit();
  }
  runtime::ConfigurationState configuration = runtime::ConfigurationState::create(model);
};
/// Some values have left one by one at the front.
struct ErasedSequences : Sequences {
  explicit ErasedSequences(std::vector<std::u16string> const& keys)
      : Sequences(keys), transaction(model.beginTransaction()) {
    for (int i = 0; i < 1000; ++i) allowed().erase(allowed().begin());
  }
  boost::optional<plinth::Transaction> transaction;
};
struct PlainSequences : PlainParameters {
  explicit PlainSequences(std::vector<std::u16string> const& keys) : PlainParameters(keys), allowed(keys.size(), 1) {
    for (plain::Parameter& parameter : parameters) {
      parameter.category = &category;
      category.contents.push_back(&parameter);
    }
  }
  std::vector<double> allowed;
};

/// What is to be linear in the whole, whatever lies in front of or behind it.
void describeGrowth() {
  std::vector<std::int64_t> const sizes{10000, 100000, 1000000};
  auto const eraseFrontAndPutBack = [](auto& values) {
    auto const old = values;
    values.erase(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2));
    benchmark::DoNotOptimize(std::vector(old));
    values = old;
  };
  auto const eraseFrontAndRollBack = [](Sequences& world, auto& values) {
    plinth::Transaction const transaction = world.model.beginTransaction();
    values.erase(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2));
    benchmark::DoNotOptimize(values.oldContents());
  };
  compare("unique sequence: add a member that is there")
      .sizes(sizes)
      .iterations(ITERATIONS)
      .baseline(onNew<PlainSequences>([](PlainSequences& world) {
        for (plain::Parameter& parameter : world.parameters) {
          if (parameter.category != &world.category) world.category.contents.push_back(&parameter);
        }
      }))
      .library(onNew<Sequences>([](Sequences& world) {
        for (runtime::ParamState const& parameter : world.parameters) world.contents().add(parameter);
      }));
  compare("sequence: erase the front half and take it back")
      .sizes(sizes)
      .iterations(ITERATIONS)
      .baseline(onNew<PlainSequences>([=](PlainSequences& world) {
        for (std::size_t i = 0; i < world.parameters.size() / 2; ++i) world.parameters[i].category = nullptr;
        eraseFrontAndPutBack(world.category.contents);
        for (std::size_t i = 0; i < world.parameters.size() / 2; ++i) world.parameters[i].category = &world.category;
      }))
      .library(onNew<Sequences>([=](Sequences& world) { eraseFrontAndRollBack(world, world.contents()); }));
  compare("sequence: destroy all members with what holds them")
      .sizes(sizes)
      .iterations(1)
      .baseline(onNew<PlainSequences>([](PlainSequences& world) {
        world.category.contents.clear();
        world.parameters.clear();
      }))
      .library(onNew<Configured>([](Configured& world) { world.configuration->destroy(); }));
  compare("values: erase the front half and take it back")
      .sizes(sizes)
      .iterations(ITERATIONS)
      .baseline(onNew<PlainSequences>([=](PlainSequences& world) { eraseFrontAndPutBack(world.allowed); }))
      .library(onNew<Sequences>([=](Sequences& world) { eraseFrontAndRollBack(world, world.allowed()); }));
  compare("values: take back 1 000 single erases at the front")
      .sizes(sizes)
      .iterations(ITERATIONS)
      .baseline(onNew<PlainSequences>([](PlainSequences& world) {
        auto const old = world.allowed;
        benchmark::DoNotOptimize(std::vector(old));
        world.allowed = old;
      }))
      .library(onNew<ErasedSequences>([](ErasedSequences& world) {
        benchmark::DoNotOptimize(world.allowed().oldContents());
        world.transaction.reset();
      }));
}

/// The store with its profiles, each with an entry for each key.
struct Store {
  void build(std::vector<std::u16string> const& keys) {
    plinth::Transaction transaction = model.beginTransaction();
    store = ext::ConfigStore::create(model);
    for (std::u16string const& id : bench::makeKeys(PROFILES)) {
      ext::ConfigProfile const profile = bench::makeProfile(model, keys);
      profile->setId(id);
      store->getProfilesMutable()->insert(profile);
      if (!changed) changed = profile;
    }
    transaction.commit();
  }
  void change() {
    for (ext::ConfigEntry const& entry : *changed->getValues()) {
      plinth::element_cast<bench::data::DoubleParamData>(entry->getData())->setValue(2);
    }
  }
  plinth::Model model = plinth::Model::create();
  ext::ConfigStore store;
  ext::ConfigProfile changed;
};

struct PlainStore {
  void build(std::vector<std::u16string> const& keys) {
    for (std::u16string const& id : bench::makeKeys(PROFILES)) profiles.emplace(id, bench::makePlainProfile(keys, log));
  }
  void change() {
    for (auto const& entry : profiles.begin()->second) entry.second->data->setValue(2);
  }
  plain::UndoLog log;
  std::map<plain::Text, plain::Profile> profiles;
};

/// Measures `work(world)` on a store that `prepare(world, keys)` has made ready; `items` for each key.
template <class World, class Prepare, class Work>
bench::Comparison::Side onStore(std::size_t items, Prepare prepare, Work work) {
  return [=](State& state) {
    auto const keys = bench::makeKeys(sizeOf(state));
    Meter meter(state, items * keys.size());
    for (auto _ : state) {
      World world;
      auto context = prepare(world, keys);
      meter.measure([&] { work(world, keys, context); });
    }
  };
}

void describeStore() {
  std::vector<std::int64_t> const sizes{100, 1000, 10000};
  auto const nothing = [](auto&, auto const&) { return 0; };
  auto const build = [](auto& world, auto const& keys) {
    world.build(keys);
    return 0;
  };
  compare("store of 100 profiles: build, an entry")
      .sizes(sizes)
      .iterations(1)
      .baseline(onStore<PlainStore>(PROFILES, nothing, [](PlainStore& w, auto const& keys, int) { w.build(keys); }))
      .library(onStore<Store>(PROFILES, nothing, [](Store& w, auto const& keys, int) { w.build(keys); }));
  compare("store: change a profile in a transaction, an entry")
      .sizes(sizes)
      .iterations(1)
      .baseline(onStore<PlainStore>(1, build,
                                    [](PlainStore& w, auto const&, int) {
                                      w.log.begin();
                                      w.change();
                                    }))
      .library(onStore<Store>(
          1,
          [](Store& w, auto const& keys) {
            w.build(keys);
            return w.model.beginTransaction();
          },
          [](Store& w, auto const&, plinth::Transaction&) { w.change(); }));
  compare("store: roll that back, an entry")
      .sizes(sizes)
      .iterations(1)
      .baseline(onStore<PlainStore>(
          1,
          [](PlainStore& w, auto const& keys) {
            w.build(keys);
            w.log.begin();
            w.change();
            return 0;
          },
          [](PlainStore& w, auto const&, int) { w.log.rollBack(); }))
      .library(onStore<Store>(
          1,
          [](Store& w, auto const& keys) {
            w.build(keys);
            boost::optional<plinth::Transaction> transaction(w.model.beginTransaction());
            w.change();
            return transaction;
          },
          [](Store&, auto const&, boost::optional<plinth::Transaction>& transaction) { transaction.reset(); }));
  compare("store: tear down, an entry")
      .sizes(sizes)
      .iterations(1)
      .baseline(onStore<PlainStore>(PROFILES, build, [](PlainStore& w, auto const&, int) { w.profiles.clear(); }))
      .library(onStore<Store>(PROFILES, build, [](Store& w, auto const&, int) {
        w.changed = {};
        w.store->destroy();
        w.store = {};
      }));
}

}  // namespace

int main(int argc, char** argv) {
  describeMaps();
  describeSequencesAndSets();
  describeGrowth();
  describeStore();
  return bench::run(argc, argv);
}
