// What the debugger is shown in the test of its printers: handles in each state, and values.
#include <cstdio>
#include <tessel_config_datamodel/ext/ConfigEntry.hpp>
#include <tessel_config_datamodel/ext/ConfigProfile.hpp>

#include "groundwork/NameUuid.hpp"
#include "plinth/Model.hpp"
#include "plinth/ProxyId.hpp"

namespace ext = tessel::internal::ext;

namespace {

/// Where the debugger stops: one frame above it everything is in sight.
[[gnu::noinline]] void inspect() { std::puts("inspected"); }

}  // namespace

int main() {
  auto const model = plinth::Model::create();
  boost::uuids::uuid const uuid = groundwork::nameUuid("sample");
  ext::ConfigEntry empty;
  ext::ConfigEntry live = ext::ConfigEntry::create(model, uuid);
  live->setKey(u"text");
  plinth::ModelElement const base = live;
  ext::ConfigProfile destroyed = ext::ConfigProfile::create(model, {});
  destroyed->destroy();
  plinth::ModelElement const proxy = model->createProxy(live->getMetaClass(), live->getPersistentProxyId(true));
  std::u16string const text = live->getKey();
  plinth::meta::Property const keyProperty(live->getMetaClass()->ownProperties()[0]);
  plinth::Value const value = live->getPropertyValue(keyProperty);
  inspect();
}
