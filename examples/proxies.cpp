// Two models and proxies: a project refers to a profile of a library by a stand-in. The library is loaded when a getter
// first meets the stand-in, which then gives way to the profile itself.
#include <boost/uuid/uuid.hpp>
#include <groundwork/Unicode.hpp>
#include <iostream>
#include <plinth/Model.hpp>
#include <plinth/ModelDirectory.hpp>
#include <plinth/ProxyId.hpp>
#include <tessel_config_datamodel/ext/ConfigProfile.hpp>
#include <tessel_config_datamodel/ext/ConfigStore.hpp>

namespace ext = tessel::internal::ext;

namespace {

// What a loader would read from a file: a model of that name, with elements under the UUIDs that they were saved with.
plinth::Model loadLibrary(std::u16string const& name, boost::uuids::uuid const& profileUuid) {
  std::cout << "loading '" << groundwork::toUtf8(name) << "'\n";
  auto model = plinth::Model::create();
  model->setName(name);
  auto const profile = ext::ConfigProfile::create(model, profileUuid);
  profile->setId(u"night");
  return model;
}

}  // namespace

int main() {
  // A first session: the library exists, and its profile tells by what id others can find it.
  auto library = plinth::Model::create();
  library->setName(u"library");
  auto const saved = ext::ConfigProfile::create(library)->getPersistentProxyId(false);
  library = plinth::Model();  // the last handle: the model ends

  // A second one. The directory asks the loader for models that are not there; whoever loads a model keeps it.
  plinth::Model loaded;
  auto& directory = plinth::ModelDirectory::getInstance();
  directory.setLoader([&](std::u16string const& name) {
    loaded = loadLibrary(name, plinth::elementUuid(saved));
    return loaded;
  });

  auto const project = plinth::Model::create();
  auto const store = ext::ConfigStore::create(project);
  auto const proxy =
      plinth::element_cast<ext::ConfigProfile>(project->createProxy(ext::ConfigProfile::metaClass(), saved));
  store->setActiveProfile(proxy);
  std::cout << "the project holds a " << (proxy->isProxy() ? "proxy" : "profile") << '\n';

  ext::ConfigProfile const active = store->getActiveProfile();
  std::cout << "the active profile is '" << groundwork::toUtf8(active->getId()) << "', of the model '"
            << groundwork::toUtf8(active->getModel()->name()) << "'\n";

  // Each model has transactions of its own; a change of one is none of the other.
  {
    auto attempt = project.beginTransaction();
    store->setActiveProfile({});
    active->setId(u"day");
  }
  std::cout << "the project is as before: " << (store->getActiveProfile() == active ? "yes" : "no")
            << "; the library has '" << groundwork::toUtf8(active->getId()) << "'\n";
  directory.setLoader({});
}
