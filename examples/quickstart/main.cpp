#include <iostream>
#include <plinth/Model.hpp>
#include <tessel_config_datamodel/data/DoubleParamData.hpp>
#include <tessel_config_datamodel/ext/ConfigEntry.hpp>
#include <tessel_config_datamodel/ext/ConfigProfile.hpp>
#include <tessel_config_datamodel/ext/ConfigStore.hpp>

using namespace tessel::internal;

int main() {
  auto model = plinth::Model::create();
  auto store = ext::ConfigStore::create(model);
  auto profile = ext::ConfigProfile::create(model);
  profile->setId(u"main");
  store->getProfilesMutable()->insert(profile);

  auto gain = config::data::DoubleParamData::create(model);
  gain->setValue(1.5);
  auto entry = ext::ConfigEntry::create(model);
  entry->setKey(u"gain");
  entry->setData(gain);
  profile->getValuesMutable()->insert(entry);

  {
    auto attempt = model.beginTransaction();
    gain->setValue(3.0);
    std::cout << "inside the transaction: " << gain->getValue() << '\n';
  }  // ends without attempt.commit(): what it changed is put back
  std::cout << "after it ended:         " << gain->getValue() << '\n';
}
