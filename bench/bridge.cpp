// The script bridge: properties read and written through the host from C++ and from Lua, against the typed interface.
#include <corvid/CorvidClass.hpp>
#include <corvid/Invocation.hpp>
#include <iostream>
#include <kestrel/Array.hpp>
#include <lua.hpp>
#include <plinth/bridge/ElementBinding.hpp>
#include <tessel_config_datamodel/bridge/EntryPoints.hpp>
#include <tessel_config_datamodel/data/DoubleArrayParamData.hpp>
#include <tessel_config_datamodel/data/DoubleParamDataBuilder.hpp>
#include <tessel_config_datamodel/runtime/ConfigurationState.hpp>
#include <tessel_config_datamodel/runtime/MetaMessage.hpp>

#include "Interpreter.hpp"
#include "support/Comparison.hpp"
#include "support/Sample.hpp"

namespace {

using bench::compare;
using bench::Meter;
using benchmark::State;
using corvid::internal::makeInterned;
namespace data = bench::data;
namespace runtime = tessel::internal::config::runtime;

constexpr std::size_t MEMBERS = 10000;

std::size_t sizeOf(State const& state) { return static_cast<std::size_t>(state.range(0)); }

kestrel::OwnedArray announce(plinth::ModelElement const& element) {
  return plinth::bridge::announceElement(element, corvid::Identifier());
}

corvid::CorvidPropInfo const& propertyOf(kestrel::OwnedArray const& self, char const* name) {
  return corvid::requireProperty(*corvid::classOf(*self), makeInterned(name));
}

/// Numbers, typed and as the host holds them.
struct Numbers {
  explicit Numbers(std::size_t count) : elements(bench::makeNumbers(model, count)) {
    for (auto const& element : elements) objects.push_back(announce(element));
    value = &propertyOf(objects.front(), "Value");
  }
  plinth::Model model = plinth::Model::create();
  std::vector<data::DoubleParamData> elements;
  std::vector<kestrel::OwnedArray> objects;
  corvid::CorvidPropInfo const* value = nullptr;
};

/// A script with a function of a number of rounds, called with one element.
class Script {
 public:
  explicit Script(std::string const& text) : m_interpreter(std::cout, std::cerr) {
    lua_State* const state = m_interpreter.state();
    if (!m_interpreter.runText("model = plinth.Model() " + text, "=bench")) std::exit(EXIT_FAILURE);
    lua_getglobal(state, "run");
  }
  void run(std::size_t rounds) {
    lua_State* const state = m_interpreter.state();
    lua_pushvalue(state, -1);
    lua_pushinteger(state, static_cast<lua_Integer>(rounds));
    if (lua_pcall(state, 1, 0, 0) != LUA_OK) std::exit(EXIT_FAILURE);
  }

 private:
  luafront::Interpreter m_interpreter;
};

bench::Comparison::Side inLua(std::string const& text) {
  return [text](State& state) {
    Script script(text);
    Meter meter(state, sizeOf(state));
    for (auto _ : state) meter.measure([&] { script.run(sizeOf(state)); });
  };
}

void readThroughHost(State& state) {
  Numbers const numbers(sizeOf(state));
  Meter meter(state, sizeOf(state));
  for (auto _ : state)
    meter.measure([&] {
      for (auto const& object : numbers.objects)
        benchmark::DoNotOptimize(corvid::getProperty(*object, *numbers.value).get());
    });
}

void writeThroughHost(State& state) {
  Numbers const numbers(sizeOf(state));
  Meter meter(state, sizeOf(state));
  double next = 0;
  for (auto _ : state) {
    auto const content = kestrel::createScalar(++next);
    meter.measure([&] {
      for (auto const& object : numbers.objects) corvid::setProperty(*object, *numbers.value, *content);
    });
  }
}

void describeProperties() {
  // The getter called as a function, as across libraries: inlined into the loop it is one load.
  compare("read a number through the host")
      .aims(10, 10)
      .baseline([](State& state) {
        Numbers const numbers(sizeOf(state));
        auto getter = &data::DoubleParamData::Impl::getValue;
        benchmark::DoNotOptimize(getter);
        Meter meter(state, sizeOf(state));
        for (auto _ : state)
          meter.measure([&] {
            for (auto const& element : numbers.elements) {
              double value = ((*element).*getter)();
              benchmark::DoNotOptimize(value);
            }
          });
      })
      .library(&readThroughHost);

  compare("write a number through the host")
      .baseline([](State& state) {
        Numbers const numbers(sizeOf(state));
        Meter meter(state, sizeOf(state));
        double next = 0;
        for (auto _ : state) {
          ++next;
          meter.measure([&] {
            for (auto const& element : numbers.elements) element->setValue(next);
          });
        }
      })
      .library(&writeThroughHost);
}

void describeLua() {
  std::string const number = "local number = tessel.internal.config.data.DoubleParamData(model) ";
  compare("read a number in Lua").baseline(&readThroughHost).library(inLua(number + R"(
    function run(rounds) for _ = 1, rounds do local _ = number.Value end end)"));
  compare("write a number in Lua").baseline(&writeThroughHost).library(inLua(number + R"(
    function run(rounds) for i = 1, rounds do number.Value = i + 0.5 end end)"));
  compare("call a method in Lua").baseline(&readThroughHost).library(inLua(number + R"(
    function run(rounds) for _ = 1, rounds do number:isProxy() end end)"));
}

void describeNumberRows() {
  struct Row {
    Row() : owner(data::DoubleArrayParamData::create(model)) { owner->getValueMutable()->assign(values); }
    plinth::Model model = plinth::Model::create();
    std::vector<double> values = std::vector<double>(MEMBERS, 1.5);
    data::DoubleArrayParamData owner;
  };
  compare("read a row of 10 000 numbers through the host")
      .sizes({MEMBERS})
      .baseline([](State& state) {
        Row const row;
        Meter meter(state, 1);
        for (auto _ : state)
          meter.measure([&] { benchmark::DoNotOptimize(std::vector<double>(row.owner->getValue()->values()).data()); });
      })
      .library([](State& state) {
        Row const row;
        auto const self = announce(row.owner);
        auto const& property = propertyOf(self, "Value");
        Meter meter(state, 1);
        for (auto _ : state)
          meter.measure([&] { benchmark::DoNotOptimize(corvid::getProperty(*self, property).get()); });
      });
  compare("write a row of 10 000 numbers through the host")
      .sizes({MEMBERS})
      .baseline([](State& state) {
        Row const row;
        Meter meter(state, 1);
        for (auto _ : state) meter.measure([&] { row.owner->getValueMutable()->assign(row.values); });
      })
      .library([](State& state) {
        Row const row;
        auto const self = announce(row.owner);
        auto const& property = propertyOf(self, "Value");
        auto const array = kestrel::createRow(row.values);
        Meter meter(state, 1);
        for (auto _ : state) meter.measure([&] { corvid::setProperty(*self, property, *array); });
      });
}

/// A sequence of elements, each of which the host knows already or doesn't.
struct Messages {
  Messages() : owner(runtime::ConfigurationState::create(model)) {
    plinth::Transaction transaction = model.beginTransaction();
    for (std::size_t i = 0; i < MEMBERS; ++i) members.push_back(runtime::MetaMessage::create(model));
    assign();
    transaction.commit();
  }
  void assign() {
    plinth::Transaction transaction = model.beginTransaction();
    auto& sequence = *owner->getGlobalMessagesMutable();
    sequence.clear();
    for (auto const& member : members) sequence.add(member);
    transaction.commit();
  }
  plinth::Model model = plinth::Model::create();
  runtime::ConfigurationState owner;
  std::vector<runtime::MetaMessage> members;
};

void describeElementRows() {
  compare("read a sequence of 10 000 elements through the host")
      .sizes({MEMBERS})
      .baseline([](State& state) {
        Messages messages;
        Meter meter(state, 1);
        for (auto _ : state)
          meter.measure([&] {
            auto const& sequence = *messages.owner->getGlobalMessages();
            std::vector<runtime::MetaMessage> copy;
            copy.reserve(sequence.size());
            for (auto const& member : sequence) copy.push_back(member);
            benchmark::DoNotOptimize(copy.data());
          });
      })
      .library([](State& state) {
        Messages const messages;
        auto const self = announce(messages.owner);
        auto const& property = propertyOf(self, "GlobalMessages");
        Meter meter(state, 1);
        for (auto _ : state) meter.measure([&] { corvid::getProperty(*self, property); });
      });
  compare("write a sequence of 10 000 elements through the host")
      .sizes({MEMBERS})
      .baseline([](State& state) {
        Messages messages;
        Meter meter(state, 1);
        for (auto _ : state) meter.measure([&] { messages.assign(); });
      })
      .library([](State& state) {
        Messages const messages;
        auto const self = announce(messages.owner);
        auto const& property = propertyOf(self, "GlobalMessages");
        auto const array = corvid::getProperty(*self, property);
        Meter meter(state, 1);
        for (auto _ : state) meter.measure([&] { corvid::setProperty(*self, property, *array); });
      });
}

void describeConstruction() {
  compare("construct an element from a struct of three fields")
      .baseline([](State& state) {
        Meter meter(state, sizeOf(state));
        for (auto _ : state) {
          plinth::Model const model = plinth::Model::create();
          meter.measure([&] {
            for (std::size_t i = 0; i < sizeOf(state); ++i)
              benchmark::DoNotOptimize(data::DoubleParamData::Builder(model)
                                           .setValue(2.5)
                                           .setMax(9)
                                           .setName(std::u16string(u"speed"))
                                           .create());
          });
        }
      })
      .library([](State& state) {
        auto& hostClass =
            corvid::CorvidClass::requireClass(makeInterned("tessel.internal.config.data.DoubleParamData"));
        auto const fields = kestrel::createStruct({"Value", "Max", "Name"});
        kestrel::setField(*fields, 0, "Value", kestrel::createScalar(2.5));
        kestrel::setField(*fields, 0, "Max", kestrel::createScalar(9.0));
        kestrel::setField(*fields, 0, "Name", kestrel::createChar(u"speed"));
        Meter meter(state, sizeOf(state));
        for (auto _ : state) {
          auto const model = plinth::bridge::announceModel(plinth::Model::create());
          meter.measure([&] {
            for (std::size_t i = 0; i < sizeOf(state); ++i) {
              benchmark::DoNotOptimize(corvid::construct(hostClass, {model.get(), fields.get()}));
            }
          });
        }
      });
}

}  // namespace

int main(int argc, char** argv) {
  MLInitialize_tessel_config_datamodel();
  describeProperties();
  describeLua();
  describeNumberRows();
  describeElementRows();
  describeConstruction();
  return bench::run(argc, argv);
}
