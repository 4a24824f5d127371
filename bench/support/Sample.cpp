#include "support/Sample.hpp"

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>

namespace bench {

std::vector<std::u16string> makeKeys(std::size_t count) {
  std::vector<std::u16string> keys;
  keys.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    std::string const number = std::to_string(1000000 + i);
    keys.push_back(u"module." + std::u16string(number.begin(), number.end()));
  }
  std::shuffle(keys.begin(), keys.end(), std::mt19937(1));
  return keys;
}

std::vector<std::size_t> makeOrder(std::size_t count) {
  std::vector<std::size_t> order(count);
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::shuffle(order.begin(), order.end(), std::mt19937(2));
  return order;
}

std::vector<data::DoubleParamData> makeNumbers(plinth::Model const& model, std::size_t count) {
  plinth::Transaction transaction = model.beginTransaction();
  std::vector<data::DoubleParamData> numbers;
  numbers.reserve(count);
  for (std::size_t i = 0; i < count; ++i) numbers.push_back(data::DoubleParamData::create(model));
  transaction.commit();
  return numbers;
}

std::vector<std::unique_ptr<plain::Number>> makePlainNumbers(plain::UndoLog& log, std::size_t count) {
  std::vector<std::unique_ptr<plain::Number>> numbers;
  numbers.reserve(count);
  for (std::size_t i = 0; i < count; ++i) numbers.push_back(std::make_unique<plain::Number>(log));
  return numbers;
}

ext::ConfigProfile makeProfile(plinth::Model const& model, std::vector<std::u16string> const& keys) {
  plinth::Transaction transaction = model.beginTransaction();
  ext::ConfigProfile profile = ext::ConfigProfile::create(model);
  auto* const values = profile->getValuesMutable();
  for (std::u16string const& key : keys) {
    ext::ConfigEntry const entry = ext::ConfigEntry::create(model);
    entry->setKey(key);
    entry->setData(data::DoubleParamData::create(model));
    values->insert(entry);
  }
  transaction.commit();
  return profile;
}

ext::ConfigProfile buildProfile(plinth::Model const& model, std::vector<std::u16string> const& keys) {
  ext::ConfigProfile::Builder builder(model);
  for (std::u16string const& key : keys) {
    auto entry = std::make_unique<ext::ConfigEntry::Builder>();
    entry->setKey(key).setData(std::make_unique<data::DoubleParamData::Builder>());
    builder.addValues(std::move(entry));
  }
  return plinth::element_cast<ext::ConfigProfile>(builder.create());
}

plain::Profile makePlainProfile(std::vector<std::u16string> const& keys, plain::UndoLog& log) {
  plain::Profile profile;
  for (std::u16string const& key : keys) plain::insertEntry(profile, key, log);
  return profile;
}

}  // namespace bench
