#include "real_model.hpp"

#include <algorithm>
#include <tessel_config_datamodel/expr/NumericOperation.hpp>
#include <tessel_config_datamodel/ext/ConfigEntry.hpp>
#include <tessel_config_datamodel/ext/ConfigProfile.hpp>
#include <tessel_config_datamodel/ext/ConfigStore.hpp>
#include <tessel_config_datamodel/runtime/CategoryState.hpp>
#include <tessel_config_datamodel/runtime/ConfigurationState.hpp>
#include <tessel_config_datamodel/runtime/ParamState.hpp>
#include <tessel_config_datamodel/runtime/PerspectiveState.hpp>
#include <tessel_config_datamodel/runtime/TagState.hpp>

#include "plinth/Builder.hpp"
#include "plinth/Value.hpp"

namespace collections_test {

using plinth::ModelElement;
using namespace tessel::internal;

namespace {

struct KindRow {
  plinth::meta::Class const& (*metaClass)();
  char16_t const* key;
};
KindRow const kinds[] = {{&ext::ConfigStore::metaClass, nullptr},
                         {&ext::ConfigProfile::metaClass, u"Id"},
                         {&ext::ConfigEntry::metaClass, u"Key"},
                         {&config::runtime::ConfigurationState::metaClass, nullptr},
                         {&config::runtime::CategoryState::metaClass, u"Key"},
                         {&config::runtime::ParamState::metaClass, u"Key"},
                         {&config::runtime::TagState::metaClass, u"Id"},
                         {&config::runtime::PerspectiveState::metaClass, u"Id"},
                         {&config::expr::NumericOperation::metaClass, nullptr}};

}  // namespace

bool isShown(PlainModel const& plain, int id, View const& view) {
  Kind const kind = plain.items.at(id < 0 ? ~id : id).kind;
  return kind == view.kind && (id < 0 || plain.isLive(id));
}

char16_t const* nameOf(Feature feature) {
  constexpr char16_t const* names[] = {u"Categories", u"Operands", u"Contents",     u"Tags",   u"Profiles", u"Values",
                                       u"Params",     u"Tags",     u"Perspectives", u"Tagged", u"Members"};
  return names[static_cast<std::size_t>(feature)];
}

plinth::meta::Class const& classOf(Kind kind) { return kinds[at(kind)].metaClass(); }

plinth::meta::Property propertyOf(ModelElement const& element, char16_t const* name) {
  return plinth::meta::Property(element->getMetaClass()->findProperty(name));
}

boost::uuids::uuid uuidOf(int id) {
  boost::uuids::uuid uuid{};
  uuid.data[6] = 0x40;
  uuid.data[14] = static_cast<std::uint8_t>(id >> 8);
  uuid.data[15] = static_cast<std::uint8_t>(id);
  return uuid;
}

int idOf(boost::uuids::uuid const& uuid) { return uuid.data[14] << 8 | uuid.data[15]; }

int idOf(ModelElement const& element) {
  if (element.isEmpty()) return -1;
  int const id = idOf(element->getUuid());
  return element->isProxy() ? ~id : id;
}

ModelElement createElement(plinth::Model const& model, Kind kind, int id) {
  return classOf(kind)->instantiateBuilder(model)->create(uuidOf(id));
}

bool hasKey(Kind kind) { return kinds[at(kind)].key != nullptr; }

void setKey(ModelElement const& element, Kind kind, std::u16string const& key) {
  if (!hasKey(kind)) return;
  auto const property = propertyOf(element, kinds[at(kind)].key);
  element->setPropertyValue(property, plinth::Value::createPrimitiveValue(property, key));
}

Numbers numbersIn(plinth::ReferenceCollection const* collection, Feature feature, std::set<int>* proxies) {
  Numbers numbers;
  if (collection == nullptr) return numbers;
  for (ModelElement const& member : collection->getAllValuesAndProxies()) {
    int const id = idOf(member);
    if (id >= 0 || isSequence(feature)) {
      numbers.push_back(id);
    } else if (proxies != nullptr) {
      proxies->insert(~id);
    }
  }
  if (!isSequence(feature) && !isMap(feature)) std::sort(numbers.begin(), numbers.end());
  return numbers;
}

}  // namespace collections_test
