// Elements: create, change, take back, commit with listeners, read, reflect, build, tear down.
#include <algorithm>
#include <numeric>

#include "plinth/ChangeSet.hpp"
#include "support/Comparison.hpp"
#include "support/Sample.hpp"

namespace {

using bench::compare;
using bench::Meter;
using benchmark::State;
namespace data = bench::data;
namespace ext = bench::ext;

std::size_t sizeOf(State const& state) { return static_cast<std::size_t>(state.range(0)); }

std::vector<std::int64_t> const GROWTH{1000, 10000, 100000, 1000000};

/// One plain structure's part of a comparison: `work(number, value)` for each number, with a value that is always new.
template <class Prepare, class Work, class Finish>
bench::Comparison::Side onPlain(Prepare prepare, Work work, Finish finish) {
  return [=](State& state) {
    plain::UndoLog log;
    auto const numbers = bench::makePlainNumbers(log, sizeOf(state));
    double value = 0;
    Meter meter(state, numbers.size());
    for (auto _ : state) {
      ++value;
      prepare(log, numbers, value);
      meter.measure([&] {
        for (auto const& number : numbers) work(*number, value);
      });
      finish(log);
    }
  };
}

/// The same on elements of a model.
template <class Prepare, class Work, class Finish>
bench::Comparison::Side onElements(Prepare prepare, Work work, Finish finish) {
  return [=](State& state) {
    plinth::Model const model = plinth::Model::create();
    auto const numbers = bench::makeNumbers(model, sizeOf(state));
    double value = 0;
    Meter meter(state, numbers.size());
    for (auto _ : state) {
      ++value;
      auto context = prepare(model, numbers, value);
      meter.measure([&] {
        for (auto const& number : numbers) work(number, value);
      });
      finish(context);
    }
  };
}

auto const nothing = [](auto&&...) { return 0; };
auto const setPlainValue = [](plain::Number& number, double value) { number.setValue(value); };
auto const setValue = [](data::DoubleParamData const& number, double value) { number->setValue(value); };

void describeCreation() {
  auto const plainSide = [](State& state) {
    Meter meter(state, sizeOf(state));
    for (auto _ : state) {
      plain::UndoLog log;
      std::vector<std::unique_ptr<plain::Number>> numbers;
      numbers.reserve(sizeOf(state));
      meter.measure([&] {
        for (std::size_t i = 0; i < sizeOf(state); ++i) numbers.push_back(std::make_unique<plain::Number>(log));
      });
    }
  };
  auto const create = [](State& state, bool together) {
    data::DoubleParamData::metaClass();
    Meter meter(state, sizeOf(state));
    for (auto _ : state) {
      plinth::Model const model = plinth::Model::create();
      meter.measure([&] {
        boost::optional<plinth::Transaction> outer;
        if (together) outer.emplace(model.beginTransaction());
        for (std::size_t i = 0; i < sizeOf(state); ++i) static_cast<void>(data::DoubleParamData::create(model));
        if (together) outer->commit();
      });
    }
  };
  compare("create, each in its own transaction").baseline(plainSide).library([=](State& s) { create(s, false); });
  compare("create, all in one transaction").baseline(plainSide).library([=](State& s) { create(s, true); });
}

void describeSetters() {
  compare("set an attribute in its own transaction")
      .aims(60 / 11.0, 29 / 11.0)
      .baseline(onPlain(nothing, setPlainValue, nothing))
      .library(onElements(nothing, setValue, nothing));
  compare("set again inside an outer transaction")
      .aims(20 / 9.4, 9.4 / 9.4)
      .baseline(onPlain(
          [](plain::UndoLog& log, auto const& numbers, double value) {
            log.begin();
            for (auto const& number : numbers) number->setValue(-value);
          },
          setPlainValue, [](plain::UndoLog& log) { log.commit(); }))
      .library(onElements(
          [](plinth::Model const& model, auto const& numbers, double value) {
            plinth::Transaction transaction = model.beginTransaction();
            for (auto const& number : numbers) number->setValue(-value);
            return transaction;
          },
          setValue, [](plinth::Transaction& transaction) { transaction.commit(); }));
  compare("change 3 properties of an element")
      .aims(90 / 23.0, 60 / 23.0)
      .baseline(onPlain([](plain::UndoLog& log, auto const&, double) { log.begin(); },
                        [](plain::Number& number, double value) {
                          number.setValue(value);
                          number.setMin(-value);
                          number.setMax(value);
                        },
                        [](plain::UndoLog& log) { log.rollBack(); }))
      .library(onElements([](plinth::Model const& model, auto const&, double) { return model.beginTransaction(); },
                          [](data::DoubleParamData const& number, double value) {
                            number->setValue(value);
                            number->setMin(-value);
                            number->setMax(value);
                          },
                          [](plinth::Transaction&) {}));
}

/// Changes three properties of every number and measures how that is taken back.
void describeRollback() {
  compare("roll 3 changed properties of an element back")
      .sizes(GROWTH)
      .aims(55 / 5.3, 11 / 5.3)
      .baseline([](State& state) {
        plain::UndoLog log;
        auto const numbers = bench::makePlainNumbers(log, sizeOf(state));
        double value = 0;
        Meter meter(state, numbers.size());
        for (auto _ : state) {
          ++value;
          log.begin();
          for (auto const& number : numbers) {
            number->setValue(value);
            number->setMin(-value);
            number->setMax(value);
          }
          meter.measure([&] { log.rollBack(); });
        }
      })
      .library([](State& state) {
        plinth::Model const model = plinth::Model::create();
        auto const numbers = bench::makeNumbers(model, sizeOf(state));
        double value = 0;
        Meter meter(state, numbers.size());
        for (auto _ : state) {
          ++value;
          boost::optional<plinth::Transaction> transaction(model.beginTransaction());
          for (auto const& number : numbers) {
            number->setValue(value);
            number->setMin(-value);
            number->setMax(value);
          }
          meter.measure([&] { transaction.reset(); });
        }
      });
}

void describeListeners() {
  auto const told = [](int count) {
    return [=](State& state) {
      std::size_t changes = 0;
      plain::UndoLog log;
      for (int i = 0; i < count; ++i) log.listen([&](auto const& entries) { changes += entries.size(); });
      auto const numbers = bench::makePlainNumbers(log, sizeOf(state));
      double value = 0;
      Meter meter(state, numbers.size());
      for (auto _ : state) {
        ++value;
        meter.measure([&] {
          for (auto const& number : numbers) number->setValue(value);
        });
      }
      benchmark::DoNotOptimize(changes);
    };
  };
  auto const listening = [](int count) {
    return [=](State& state) {
      std::size_t changes = 0;
      plinth::Model const model = plinth::Model::create();
      auto const numbers = bench::makeNumbers(model, sizeOf(state));
      std::vector<plinth::ListenerRegistration> registrations;
      for (int i = 0; i < count; ++i) {
        registrations.push_back(
            model.addListener([&](plinth::ChangeSet const& changeSet) { changes += changeSet.changed().size(); }));
      }
      double value = 0;
      Meter meter(state, numbers.size());
      for (auto _ : state) {
        ++value;
        meter.measure([&] {
          for (auto const& number : numbers) number->setValue(value);
        });
      }
      benchmark::DoNotOptimize(changes);
    };
  };
  compare("set in its own transaction, 1 listener, plain has 0")
      .aims(120 / 11.0, 34 / 11.0)
      .baseline(told(0))
      .library(listening(1));
  compare("set in its own transaction, 10 listeners").baseline(told(10)).library(listening(10));
}

void describeReading() {
  auto const property = [] {
    return plinth::meta::Property(data::DoubleParamData::metaClass()->findProperty(u"Value"));
  };
  compare("get")
      .baseline(onPlain(
          nothing, [](plain::Number& number, double) { benchmark::DoNotOptimize(number.getValue()); }, nothing))
      .library(onElements(
          nothing, [](data::DoubleParamData const& number, double) { benchmark::DoNotOptimize(number->getValue()); },
          nothing));
  compare("reflective get")
      .aims(45 / 2.2, 13 / 2.2)
      .baseline(onPlain(
          nothing,
          [](plain::Number& number, double) {
            benchmark::DoNotOptimize(std::get<double>(number.get(plain::Number::VALUE)));
          },
          nothing))
      .library([=](State& state) {
        plinth::meta::Property const value = property();
        onElements(
            nothing,
            [&](data::DoubleParamData const& number, double) {
              benchmark::DoNotOptimize(number->getPropertyValue(value).getValue<double>());
            },
            nothing)(state);
      });
  // A reflective set is the set of the first row and what reflection adds to it.
  compare("reflective set in its own transaction")
      .aims((60 + 15) / 11.0, (29 + 5) / 11.0)
      .baseline(onPlain(
          nothing, [](plain::Number& number, double value) { number.set(plain::Number::VALUE, value); }, nothing))
      .library([=](State& state) {
        plinth::meta::Property const value = property();
        plinth::ValueMeta const meta(value);
        onElements(
            nothing,
            [&](data::DoubleParamData const& number, double next) {
              number->setPropertyValue(value, plinth::Value::make<double>(meta, next));
            },
            nothing)(state);
      });
}

void describeTrees() {
  // The aims of a parameter with data in a map by key, which is the same work.
  compare("entry with data by builders")
      .aims(1000 / 495.0, 495 / 495.0)
      .baseline([](State& state) {
        auto const keys = bench::makeKeys(sizeOf(state));
        plain::UndoLog log;
        Meter meter(state, keys.size());
        for (auto _ : state) {
          plain::Profile profile;
          meter.measure([&] { profile = bench::makePlainProfile(keys, log); });
        }
      })
      .library([](State& state) {
        auto const keys = bench::makeKeys(sizeOf(state));
        data::DoubleParamData::metaClass();
        Meter meter(state, keys.size());
        for (auto _ : state) {
          plinth::Model const model = plinth::Model::create();
          meter.measure([&] { bench::buildProfile(model, keys); });
        }
      });
  compare("tear an entry with data down")
      .sizes(GROWTH)
      .baseline([](State& state) {
        auto const keys = bench::makeKeys(sizeOf(state));
        plain::UndoLog log;
        Meter meter(state, keys.size());
        for (auto _ : state) {
          plain::Profile profile = bench::makePlainProfile(keys, log);
          meter.measure([&] { profile.clear(); });
        }
      })
      .library([](State& state) {
        auto const keys = bench::makeKeys(sizeOf(state));
        Meter meter(state, keys.size());
        for (auto _ : state) {
          plinth::Model const model = plinth::Model::create();
          ext::ConfigProfile profile = bench::makeProfile(model, keys);
          meter.measure([&] {
            profile->destroy();
            profile = {};
          });
        }
      });
}

}  // namespace

int main(int argc, char** argv) {
  describeCreation();
  describeSetters();
  describeRollback();
  describeListeners();
  describeReading();
  describeTrees();
  return bench::run(argc, argv);
}
