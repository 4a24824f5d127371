// A synthetic configuration: P parameters in P/20 categories with tags, perspectives, messages and metadata. Costs are
// those of each parameter, at growing P.
#include <algorithm>
#include <tessel_config_datamodel/runtime/CategoryState.hpp>
#include <tessel_config_datamodel/runtime/ConfigurationState.hpp>
#include <tessel_config_datamodel/runtime/MetaMessage.hpp>
#include <tessel_config_datamodel/runtime/Metadata.hpp>
#include <tessel_config_datamodel/runtime/ParamStateBuilder.hpp>
#include <tessel_config_datamodel/runtime/PerspectiveState.hpp>
#include <tessel_config_datamodel/runtime/TagState.hpp>

#include "support/Comparison.hpp"
#include "support/Sample.hpp"

namespace {

using bench::compare;
using bench::Meter;
using benchmark::State;
namespace data = bench::data;
namespace runtime = tessel::internal::config::runtime;

std::vector<std::int64_t> const SIZES{1000, 10000, 100000};
constexpr std::size_t PER_CATEGORY = 20;
constexpr std::size_t PER_CROWDED_CATEGORY = 100;
constexpr std::size_t TAGS = 10;
constexpr std::size_t PERSPECTIVES = 5;
/// One parameter of so many has a message, and one has metadata.
constexpr std::size_t REMARKS = 10;

std::size_t sizeOf(State const& state) { return static_cast<std::size_t>(state.range(0)); }

/// The live state, as the library holds it.
struct Configuration {
  explicit Configuration(std::vector<std::u16string> const& allKeys, std::size_t members = PER_CATEGORY)
      : keys(allKeys), perCategory(members), order(bench::makeOrder(allKeys.size())) {
    plinth::Transaction transaction = model.beginTransaction();
    root = runtime::ConfigurationState::create(model);
    for (std::size_t i = 0; i <= keys.size() / perCategory; ++i) {
      categories.push_back(runtime::CategoryState::create(model));
      root->getCategoriesMutable()->add(categories.back());
    }
    for (std::size_t i = 0; i < TAGS; ++i) {
      tags.push_back(runtime::TagState::create(model));
      tags.back()->setId(keys[i]);
      root->getTagsMutable()->insert(tags.back());
    }
    for (std::size_t i = 0; i < PERSPECTIVES; ++i) {
      perspectives.push_back(runtime::PerspectiveState::create(model));
      perspectives.back()->setId(keys[i]);
      root->getPerspectivesMutable()->insert(perspectives.back());
    }
    parameters.reserve(keys.size());
    numbers.reserve(keys.size());
    transaction.commit();
  }
  /// Parameters and their data, nothing else.
  void addParameters() {
    plinth::Transaction transaction = model.beginTransaction();
    auto* const map = root->getParamsMutable();
    for (std::u16string const& key : keys) {
      auto const parameter = runtime::ParamState::create(model);
      auto const number = data::DoubleParamData::create(model);
      parameter->setKey(key);
      parameter->setData(number);
      map->insert(parameter);
      parameters.push_back(parameter);
      numbers.push_back(number);
    }
    transaction.commit();
  }
  /// The same by builders.
  void buildParameters() {
    plinth::Transaction transaction = model.beginTransaction();
    for (std::u16string const& key : keys) {
      auto builder = std::make_unique<runtime::ParamState::Builder>(model);
      builder->setKey(key).setData(std::make_unique<data::DoubleParamData::Builder>());
      root->createIntoParams(std::move(builder));
    }
    transaction.commit();
  }
  void addLinks() {
    plinth::Transaction transaction = model.beginTransaction();
    for (std::size_t i = 0; i < parameters.size(); ++i) {
      runtime::ParamState const& parameter = parameters[i];
      parameter->setCategory(categories[i / perCategory]);
      parameter->getTagsMutable()->add(tags[i % TAGS]);
      perspectives[i % PERSPECTIVES]->getMembersMutable()->add(parameter);
      if (i % REMARKS == 0) parameter->getMessagesMutable()->add(runtime::MetaMessage::create(model));
      if (i % REMARKS == 1) parameter->getMetadataMutable()->insert(runtime::Metadata::create(model));
    }
    transaction.commit();
  }
  void moveAll() {
    plinth::Transaction transaction = model.beginTransaction();
    for (std::size_t const i : order) {
      parameters[i]->setCategory(categories[(i / perCategory + 1) % categories.size()]);
    }
    transaction.commit();
  }
  void setAll() {
    for (data::DoubleParamData const& number : numbers) number->setValue(3);
  }
  void tearDown() {
    root->destroy();
    parameters.clear();
    numbers.clear();
    categories.clear();
    tags.clear();
    perspectives.clear();
    root = {};
  }
  std::vector<std::u16string> const& keys;
  std::size_t perCategory;
  std::vector<std::size_t> order;
  plinth::Model model = plinth::Model::create();
  runtime::ConfigurationState root;
  std::vector<runtime::CategoryState> categories;
  std::vector<runtime::TagState> tags;
  std::vector<runtime::PerspectiveState> perspectives;
  std::vector<runtime::ParamState> parameters;
  std::vector<data::DoubleParamData> numbers;
};

/// The same in plain structs.
struct PlainConfiguration {
  explicit PlainConfiguration(std::vector<std::u16string> const& allKeys, std::size_t members = PER_CATEGORY)
      : keys(allKeys),
        perCategory(members),
        order(bench::makeOrder(allKeys.size())),
        categories(keys.size() / members + 1),
        tags(TAGS),
        perspectives(PERSPECTIVES) {
    parameters.reserve(keys.size());
  }
  void addParameters() {
    for (std::u16string const& key : keys) {
      auto parameter = std::make_unique<plain::Parameter>();
      parameter->key = key;
      parameter->data = std::make_unique<plain::Number>(log);
      parameters.push_back(parameter.get());
      map.emplace(key, std::move(parameter));
    }
  }
  void addLinks() {
    for (std::size_t i = 0; i < parameters.size(); ++i) {
      plain::Parameter& parameter = *parameters[i];
      parameter.category = &categories[i / perCategory];
      parameter.category->contents.push_back(&parameter);
      parameter.tags.push_back(&tags[i % TAGS]);
      tags[i % TAGS].insert(&parameter);
      perspectives[i % PERSPECTIVES].insert(&parameter);
      if (i % REMARKS == 0) parameter.messages.push_back(std::make_unique<plain::Message>());
      if (i % REMARKS == 1) parameter.metadata.emplace();
    }
  }
  void moveAll() {
    for (std::size_t const i : order) {
      auto& contents = parameters[i]->category->contents;
      contents.erase(std::find(contents.begin(), contents.end(), parameters[i]));
      parameters[i]->category = &categories[(i / perCategory + 1) % categories.size()];
      parameters[i]->category->contents.push_back(parameters[i]);
    }
  }
  void setAll() {
    for (plain::Parameter* parameter : parameters) parameter->data->setValue(3);
  }
  void tearDown() {
    map.clear();
    categories.clear();
    tags.clear();
    perspectives.clear();
  }
  std::vector<std::u16string> const& keys;
  std::size_t perCategory;
  std::vector<std::size_t> order;
  plain::UndoLog log;
  std::map<plain::Text, std::unique_ptr<plain::Parameter>> map;
  std::vector<plain::Parameter*> parameters;
  std::vector<plain::Category> categories;
  std::vector<std::set<plain::Parameter*>> tags, perspectives;
};

/// The same with fewer and larger categories.
template <class World>
struct Crowded : World {
  explicit Crowded(std::vector<std::u16string> const& keys) : World(keys, PER_CROWDED_CATEGORY) {}
};

/// Measures `work(world)` on a new world that `prepare(world)` has made ready.
template <class World, class Prepare, class Work>
bench::Comparison::Side on(Prepare prepare, Work work) {
  return [=](State& state) {
    auto const keys = bench::makeKeys(sizeOf(state));
    Meter meter(state, keys.size());
    for (auto _ : state) {
      World world(keys);
      prepare(world);
      meter.measure([&] { work(world); });
    }
  };
}

auto const nothing = [](auto&) {};
auto const addParameters = [](auto& world) { world.addParameters(); };
auto const addAll = [](auto& world) {
  world.addParameters();
  world.addLinks();
};

/// Both sides of a comparison do what has the same name.
template <class Prepare, class Work>
bench::Comparison& compareBoth(std::string name, Prepare prepare, Work work) {
  return compare(std::move(name))
      .sizes(SIZES)
      .baseline(on<PlainConfiguration>(prepare, work))
      .library(on<Configuration>(prepare, work));
}

void describeBuilding() {
  compareBoth("build a parameter with data, by setters", nothing, addParameters).aims(1000 / 495.0, 495 / 495.0);
  compareBoth("build a parameter with data, by builders", nothing, addParameters)
      .aims(1000 / 495.0, 495 / 495.0)
      .library(on<Configuration>(nothing, [](Configuration& world) { world.buildParameters(); }));
  compareBoth("build a parameter with data and links", nothing, addAll);
}

void describeChanging() {
  compare("set the value of each parameter, one transaction")
      .sizes(SIZES)
      .baseline(on<PlainConfiguration>(addParameters,
                                       [](PlainConfiguration& world) {
                                         world.log.begin();
                                         world.setAll();
                                         world.log.commit();
                                       }))
      .library(on<Configuration>(addParameters, [](Configuration& world) {
        plinth::Transaction transaction = world.model.beginTransaction();
        world.setAll();
        transaction.commit();
      }));
  compare("roll the value of each parameter back")
      .sizes(SIZES)
      .baseline(on<PlainConfiguration>(
          [](PlainConfiguration& world) {
            world.addParameters();
            world.log.begin();
            world.setAll();
          },
          [](PlainConfiguration& world) { world.log.rollBack(); }))
      .library([](State& state) {
        auto const keys = bench::makeKeys(sizeOf(state));
        Meter meter(state, keys.size());
        for (auto _ : state) {
          Configuration world(keys);
          world.addParameters();
          boost::optional<plinth::Transaction> transaction(world.model.beginTransaction());
          world.setAll();
          meter.measure([&] { transaction.reset(); });
        }
      });
  auto const moveAll = [](auto& world) { world.moveAll(); };
  compareBoth("move a parameter to another category", addAll, moveAll);
  compare("move a parameter among categories of 100")
      .aims(220 / 54.0, 76 / 54.0)
      .baseline(on<Crowded<PlainConfiguration>>(addAll, moveAll))
      .library(on<Crowded<Configuration>>(addAll, moveAll));
}

void describeReadingAndTeardown() {
  compare("look a parameter up by key")
      .sizes(SIZES)
      .aims(1.15, 1.0)
      .baseline(on<PlainConfiguration>(addParameters,
                                       [](PlainConfiguration& world) {
                                         for (auto const& key : world.keys) {
                                           benchmark::DoNotOptimize(world.map.find(key)->second.get());
                                         }
                                       }))
      .library(on<Configuration>(addParameters, [](Configuration& world) {
        auto const* const map = world.root->getParams();
        for (auto const& key : world.keys) benchmark::DoNotOptimize(map->find(key).impl());
      }));
  auto const tearDown = [](auto& world) { world.tearDown(); };
  compareBoth("tear a parameter with data down", addParameters, tearDown).aims(400 / 165.0, 165 / 165.0);
  compareBoth("tear a parameter with data and links down", addAll, tearDown);
}

}  // namespace

int main(int argc, char** argv) {
  describeBuilding();
  describeChanging();
  describeReadingAndTeardown();
  return bench::run(argc, argv);
}
