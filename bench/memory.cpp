// What elements take from the heap: bytes of each class, of its change record, and of a parameter with its data.
#include <algorithm>
#include <cstdio>
#include <plinth/Builder.hpp>
#include <plinth/Changes.hpp>
#include <plinth/meta/MetaRegistry.hpp>
#include <tessel_config_datamodel/runtime/ConfigurationState.hpp>
#include <tessel_config_datamodel/runtime/ParamState.hpp>

#include "support/Allocations.hpp"
#include "support/Sample.hpp"

namespace {

constexpr int COUNT = 1000;
constexpr std::size_t PARAMETERS = 10000;
constexpr double FIRST_AIM = 1280;
constexpr double THEN_AIM = 1024;

/// What `work` leaves on the heap.
template <class Work>
bench::Allocations leftBy(Work const& work) {
  bench::Allocations const before = bench::allocations();
  work();
  bench::Allocations const after = bench::allocations();
  return {after.count - before.count, after.bytes - before.bytes};
}

void gather(plinth::meta::PackageImpl const& package, std::vector<plinth::meta::ClassImpl const*>& classes) {
  for (plinth::meta::TypeImpl const* type : package.types()) {
    auto const* const metaClass = dynamic_cast<plinth::meta::ClassImpl const*>(type);
    if (metaClass != nullptr && !metaClass->isAbstract()) classes.push_back(metaClass);
  }
  for (plinth::meta::PackageImpl const* inner : package.subPackages()) gather(*inner, classes);
}

void printClasses() {
  std::vector<plinth::meta::ClassImpl const*> classes;
  for (plinth::meta::Package const& root : plinth::meta::MetaRegistry::getInstance().rootPackages()) {
    gather(*root.impl(), classes);
  }
  std::printf("%-60s %14s %18s\n", "class", "bytes each", "allocations each");
  for (plinth::meta::ClassImpl const* metaClass : classes) {
    plinth::Model const model = plinth::Model::create();
    plinth::Transaction transaction = model.beginTransaction();
    auto const builder = metaClass->instantiateBuilder(model);
    builder->create();
    bench::Allocations const taken = leftBy([&] {
      for (int i = 0; i < COUNT; ++i) builder->create();
    });
    std::printf("%-60s %14.0f %18.2f\n", metaClass->narrowName().c_str(), static_cast<double>(taken.bytes) / COUNT,
                static_cast<double>(taken.count) / COUNT);
  }
}

void printParameters() {
  namespace runtime = tessel::internal::config::runtime;
  auto const keys = bench::makeKeys(PARAMETERS);
  plinth::Model const model = plinth::Model::create();
  runtime::ConfigurationState const root = runtime::ConfigurationState::create(model);
  bench::Allocations const ours = leftBy([&] {
    plinth::Transaction transaction = model.beginTransaction();
    for (std::u16string const& key : keys) {
      auto const parameter = runtime::ParamState::create(model);
      parameter->setKey(key);
      parameter->setData(bench::data::DoubleParamData::create(model));
      root->getParamsMutable()->insert(parameter);
    }
    transaction.commit();
  });
  plain::UndoLog log;
  std::map<plain::Text, std::unique_ptr<plain::Parameter>> map;
  bench::Allocations const plain = leftBy([&] {
    for (std::u16string const& key : keys) {
      auto parameter = std::make_unique<plain::Parameter>();
      parameter->key = key;
      parameter->data = std::make_unique<plain::Number>(log);
      map.emplace(key, std::move(parameter));
    }
  });
  auto const each = [](auto number) { return static_cast<double>(number) / PARAMETERS; };
  double const bytes = each(ours.bytes);
  std::printf(
      "\na parameter with numeric data in a map by key, heap: %.0f bytes in %.2f allocations, commit included\n", bytes,
      each(ours.count));
  std::printf("the same in plain structs: %.0f bytes in %.2f allocations\n", each(plain.bytes), each(plain.count));
  for (double const aim : {FIRST_AIM, THEN_AIM}) {
    std::printf("aim %.0f bytes: %s by %.0f %%\n", aim, bytes <= aim ? "reached" : "missed",
                std::max(bytes / aim - 1, 1 - bytes / aim) * 100);
  }
}

}  // namespace

int main() {
  tessel::internal::ext::ConfigStore::metaClass();
  printClasses();
  printParameters();
}
