#include "tessel_config_datamodel/bridge/EntryPoints.hpp"

#include <mutex>
#include <tessel_config_datamodel/bridge/Packages.hpp>
#include <tessel_form_datamodel/bridge/Packages.hpp>
#include <tessel_utils_datamodel/bridge/Packages.hpp>

#include "corvid/CorvidClass.hpp"
#include "corvid/Host.hpp"
#include "plinth/bridge/FoundationPackage.hpp"

namespace {

using corvid::internal::makeInterned;

// The sibling models lie in this library: nobody else registers their packages.
void registerSiblings() {
  plinth::bridge::registerFoundation();
  bridge::register_tessel_utils_datamodel();
  bridge::register_tessel_form_datamodel();
}

// Classes of the model refer to classes of the siblings, which have to be there first.
void initializeBridge() {
  registerSiblings();
  corvid::CorvidClass::getClass(makeInterned("tessel.internal.script.AnnotatedScript"));
  corvid::CorvidClass::getClass(makeInterned("vellum.internal.form.model.AbstractFileSelector"));
  bridge::register_tessel_config_datamodel();
}

}  // namespace

extern "C" {

void MLInitialize_tessel_config_datamodel() {
  if (corvid::isServiceManaged()) return initializeBridge();
  // New in each call: a host that calls the entry again gets the registration again.
  std::once_flag once;
  std::call_once(once, &initializeBridge);
}

void MLTerminate_tessel_config_datamodel() {}
}
