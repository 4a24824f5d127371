// Values: primitive sequences, value datatypes and the text forms of enumerations.
#include <plinth/meta/Serializers.hpp>
#include <tessel_config_datamodel/data/CompositeEntry.hpp>
#include <tessel_config_datamodel/data/DoubleArrayParamData.hpp>
#include <tessel_config_datamodel/data/EnumOption.hpp>
#include <tessel_config_datamodel/expr/Operator.hpp>
#include <tessel_config_datamodel/schema/ControllerDef.hpp>
#include <tessel_config_datamodel/schema/EvalDef.hpp>
#include <tessel_config_datamodel/schema/GlobalNodeRef.hpp>
#include <unordered_map>

#include "support/Comparison.hpp"
#include "support/Sample.hpp"

namespace {

using bench::compare;
using bench::Meter;
using benchmark::State;
namespace data = bench::data;
namespace schema = tessel::internal::config::schema;
using tessel::internal::config::expr::Operator;

std::size_t sizeOf(State const& state) { return static_cast<std::size_t>(state.range(0)); }

/// A model with a parameter whose value is a sequence of numbers.
struct NumberSequence {
  explicit NumberSequence(std::size_t size) {
    plinth::Transaction transaction = model.beginTransaction();
    owner = data::DoubleArrayParamData::create(model);
    values = owner->getValueMutable();
    values->assign(std::vector<double>(size, 1.0));
    transaction.commit();
  }
  plinth::Model model = plinth::Model::create();
  data::DoubleArrayParamData owner;
  plinth::PrimitiveSequence<double>* values = nullptr;
};

void describeSequences() {
  compare("append to a sequence of numbers, one transaction")
      .sizes({1000000})
      .baseline([](State& state) {
        Meter meter(state, sizeOf(state));
        for (auto _ : state) {
          std::vector<double> values;
          meter.measure([&] {
            for (std::size_t i = 0; i < sizeOf(state); ++i) values.push_back(static_cast<double>(i));
          });
          benchmark::DoNotOptimize(values.data());
        }
      })
      .library([](State& state) {
        Meter meter(state, sizeOf(state));
        for (auto _ : state) {
          NumberSequence sequence(0);
          meter.measure([&] {
            plinth::Transaction transaction = sequence.model.beginTransaction();
            for (std::size_t i = 0; i < sizeOf(state); ++i) sequence.values->push_back(static_cast<double>(i));
            transaction.commit();
          });
        }
      });
  compare("read a sequence of numbers by iterator")
      .sizes({1000000})
      .aims(1.1, 1.0)
      .baseline([](State& state) {
        std::vector<double> const values(sizeOf(state), 1.0);
        Meter meter(state, sizeOf(state));
        for (auto _ : state) {
          double sum = 0;
          meter.measure([&] {
            for (double const value : values) sum += value;
          });
          benchmark::DoNotOptimize(sum);
        }
      })
      .library([](State& state) {
        NumberSequence const sequence(sizeOf(state));
        Meter meter(state, sizeOf(state));
        for (auto _ : state) {
          double sum = 0;
          meter.measure([&] {
            for (double const value : *sequence.values) sum += value;
          });
          benchmark::DoNotOptimize(sum);
        }
      });
  // Plain: the old contents are copied once, as a structure that keeps old values has to.
  compare("commit that replaces and records a sequence, a number")
      .sizes({100000})
      .aims(1.5, 1.0)
      .baseline([](State& state) {
        std::vector<double> values(sizeOf(state), 1.0);
        std::vector<double> const replacement(sizeOf(state), 2.0);
        Meter meter(state, sizeOf(state));
        for (auto _ : state) {
          meter.measure([&] {
            std::vector<double> old = values;
            values = replacement;
            benchmark::DoNotOptimize(old.data());
          });
        }
      })
      .library([](State& state) {
        NumberSequence const sequence(sizeOf(state));
        std::vector<double> const replacement(sizeOf(state), 2.0);
        Meter meter(state, sizeOf(state));
        for (auto _ : state) {
          meter.measure([&] {
            plinth::Transaction transaction = sequence.model.beginTransaction();
            sequence.values->assign(replacement);
            transaction.commit();
          });
        }
      });
}

/// Hash and comparison of datatype T beside those of `fields`, the same contents in a tuple-like struct by hand.
template <class T>
void describeDatatype(std::string const& name, T const& value, std::vector<std::u16string> const& texts) {
  auto const plainHash = [](std::vector<std::u16string> const& fields) {
    std::size_t hash = 0;
    for (std::u16string const& field : fields) hash = hash * 31 + std::hash<std::u16string>()(field);
    return hash;
  };
  compare("hash of " + name)
      .baseline([=](State& state) {
        Meter meter(state, sizeOf(state));
        for (auto _ : state) {
          meter.measure([&] {
            for (std::size_t i = 0; i < sizeOf(state); ++i) benchmark::DoNotOptimize(plainHash(texts));
          });
        }
      })
      .library([=](State& state) {
        Meter meter(state, sizeOf(state));
        for (auto _ : state) {
          meter.measure([&] {
            for (std::size_t i = 0; i < sizeOf(state); ++i) benchmark::DoNotOptimize(std::hash<T>()(value));
          });
        }
      });
  compare("equality of " + name)
      .baseline([=](State& state) {
        std::vector<std::u16string> const other = texts;
        Meter meter(state, sizeOf(state));
        for (auto _ : state) {
          meter.measure([&] {
            for (std::size_t i = 0; i < sizeOf(state); ++i) benchmark::DoNotOptimize(texts == other);
          });
        }
      })
      .library([=](State& state) {
        T const other = value;
        Meter meter(state, sizeOf(state));
        for (auto _ : state) {
          meter.measure([&] {
            for (std::size_t i = 0; i < sizeOf(state); ++i) benchmark::DoNotOptimize(value == other);
          });
        }
      });
}

void describeDatatypes() {
  std::u16string const text = u"an identifier";
  data::CompositeEntry composite;
  composite.setField(text);
  composite.setCode(text);
  describeDatatype("CompositeEntry", composite, {text, text});
  data::EnumOption option;
  option.setValue(text);
  option.setDisplayValue(text);
  describeDatatype("EnumOption", option, {text, text});
  schema::ControllerDef controller;
  controller.setId(text);
  controller.setClass(text);
  describeDatatype("ControllerDef", controller, {text, text});
  schema::EvalDef evaluation;
  evaluation.setAttribute(text);
  evaluation.setCode(text);
  describeDatatype("EvalDef", evaluation, {text, text});
  schema::GlobalNodeRef node;
  node.setKey(text);
  describeDatatype("GlobalNodeRef", node, {text});
}

/// Plain: two tables, from the value to the text and back.
struct PlainTexts {
  PlainTexts(plinth::meta::PropertySerializer const& serializer, plinth::meta::Type const& type) {
    plinth::ValueMeta const meta(type.impl(), plinth::meta::SINGLE);
    for (int value = 1; value <= static_cast<int>(Operator::MESSAGE); ++value) {
      std::u16string const text = serializer.serializeValue(plinth::Value::make(meta, static_cast<Operator>(value)));
      toText.emplace(value, text);
      toValue.emplace(text, value);
    }
  }
  std::unordered_map<int, std::u16string> toText;
  std::unordered_map<std::u16string, int> toValue;
};

void describeEnumerations() {
  for (char const* const format : {"", "ID", "PublicID"}) {
    std::string const form = format[0] == 0 ? "name" : format;
    auto const run = [=](State& state, auto const& work) {
      bench::ext::ConfigStore::metaClass();
      plinth::meta::Type const type(plinth::MetaTypeOf<Operator>::type());
      auto const& serializer =
          *plinth::meta::PropertySerializerRegistry::getInstance().propertySerializer(type, format);
      PlainTexts const plainTexts(serializer, type);
      Meter meter(state, sizeOf(state));
      for (auto _ : state) {
        meter.measure([&] {
          for (std::size_t i = 0; i < sizeOf(state); ++i)
            work(serializer, type, plainTexts, static_cast<int>(1 + i % 20));
        });
      }
    };
    compare("text of an enumeration's value, form " + form)
        .baseline([=](State& state) {
          run(state, [](auto const&, auto const&, PlainTexts const& texts, int value) {
            benchmark::DoNotOptimize(std::u16string(texts.toText.at(value)));
          });
        })
        .library([=](State& state) {
          run(state, [](auto const& serializer, auto const& type, auto const&, int value) {
            plinth::ValueMeta const meta(type.impl(), plinth::meta::SINGLE);
            auto const content = plinth::Value::make(meta, static_cast<Operator>(value));
            benchmark::DoNotOptimize(serializer.serializeValue(content));
          });
        });
    compare("value of an enumeration's text, form " + form)
        .baseline([=](State& state) {
          run(state, [](auto const&, auto const&, PlainTexts const& texts, int value) {
            benchmark::DoNotOptimize(texts.toValue.at(texts.toText.at(value)));
          });
        })
        .library([=](State& state) {
          run(state, [](auto const& serializer, auto const& type, PlainTexts const& texts, int value) {
            benchmark::DoNotOptimize(serializer.parseValue(texts.toText.at(value), type));
          });
        });
  }
}

}  // namespace

int main(int argc, char** argv) {
  describeSequences();
  describeDatatypes();
  describeEnumerations();
  return bench::run(argc, argv);
}
