#include "corvid/factory/BindingRegistry.hpp"

#include "HostState.hpp"
#include "ScriptObject.hpp"
#include "corvid/HostError.hpp"
#include "kestrel/ObjectArray.hpp"

namespace corvid::factory::basic {
namespace {

using ScriptObjectRef = boost::intrusive_ptr<ScriptObject>;

ScriptObject* find(void* native) {
  auto const& known = bindings();
  auto const found = known.find(native);
  return found == known.end() ? nullptr : found->second;
}

// The object that a constructor was given, checked to take a native of that class.
ScriptObject& unboundObject(kestrel_array const& self, CorvidClass const& hostClass) {
  auto* const object = dynamic_cast<ScriptObject*>(kestrel::object(self).get());
  if (object == nullptr || object->isBound() || !hostClass.isSubclassOf(object->className()))
    throw HostError(ErrorKey::BAD_DESCRIPTION, "A constructor bound the class '" + hostClass.getFullName().text() +
                                                   "' to an object of the class '" + kestrel::className(self).text() +
                                                   "' that does not wait for it.");
  return *object;
}

}  // namespace

// In each operation the native goes into the object last, where nothing can fail any more: an object that dies on the
// way must not let go of a native that it was never given.

kestrel::OwnedArray BindingRegistry::announce(void* native, Identifier className, bool& isNew) {
  isNew = false;
  if (native == nullptr) return kestrel::createObjects(className, kestrel::EMPTY);
  if (ScriptObject* const known = find(native)) return kestrel::createObject(known);
  CorvidClass& hostClass = CorvidClass::requireClass(className);
  ScriptObjectRef const object(new ScriptObject(hostClass));
  kestrel::OwnedArray array = kestrel::createObject(object);
  bindings().emplace(native, object.get());
  object->bind(hostClass, native);
  isNew = true;
  return array;
}

bool BindingRegistry::announceForConstructor(void* native, Identifier className, kestrel_array& self, bool stored) {
  CorvidClass& hostClass = CorvidClass::requireClass(className);
  ScriptObject& object = unboundObject(self, hostClass);
  if (!stored) {
    object.bindValue(hostClass, native, nullptr);
  } else if (ScriptObject* const known = find(native)) {
    kestrel::setObjectClass(self, known->className());
    kestrel::setObject(self, 0, known);
    return false;
  } else {
    bindings().emplace(native, &object);
    object.bind(hostClass, native);
  }
  kestrel::setObjectClass(self, className);
  return true;
}

kestrel::OwnedArray BindingRegistry::announceWithoutStoring(void* native, Identifier className, Copier copier) {
  CorvidClass& hostClass = CorvidClass::requireClass(className);
  ScriptObjectRef const object(new ScriptObject(hostClass));
  kestrel::OwnedArray array = kestrel::createObject(object);
  object->bindValue(hostClass, native, copier);
  return array;
}

bool BindingRegistry::remove(void* native) noexcept {
  auto& known = bindings();
  auto const found = known.find(native);
  if (found == known.end()) return false;
  found->second->unbind();
  known.erase(found);
  return true;
}

}  // namespace corvid::factory::basic
