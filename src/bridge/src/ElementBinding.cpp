#include "plinth/bridge/ElementBinding.hpp"

#include <unordered_map>

#include "corvid/CorvidClass.hpp"
#include "corvid/factory/BindingRegistry.hpp"
#include "groundwork/Unicode.hpp"
#include "kestrel/ObjectArray.hpp"

namespace plinth::bridge {

using corvid::Identifier;
using corvid::factory::basic::BindingRegistry;
using corvid::internal::makeInterned;

namespace {

void hold(ModelElementImpl const& element) noexcept {
  element.model().addRef();
  core(element).addRef();
}

void letGo(ModelElementImpl& element) noexcept {
  ModelImpl& model = element.model();
  core(element).removeRef();
  model.removeRef();
}

/// Not every class of the metamodel is one of the host: an element shows itself as the nearest one above that is.
Identifier scriptClassOf(ModelElement const& element) {
  meta::ClassImpl const* metaClass = element->getMetaClass().impl();
  while (corvid::CorvidClass::getClass(hostName(*metaClass)) == nullptr && metaClass->superclass() != nullptr)
    metaClass = metaClass->superclass();
  return hostName(*metaClass);
}

char const* scriptClassOf(ReferenceCollection const& collection) {
  auto const* const view = const_cast<ReferenceCollection&>(collection).getGenericInterface();
  if (view == nullptr) return "plinth.Set";
  if (view->isSequenceInterface()) return "plinth.Sequence";
  if (view->isMapInterface()) return "plinth.Map";
  return view->isMultimapInterface() ? "plinth.Multimap" : "plinth.Set";
}

}  // namespace

Identifier hostName(meta::TypeImpl const& type) {
  // Metamodel objects stay readable until the process ends, so their addresses name them for good.
  static auto& names = *new std::unordered_map<meta::TypeImpl const*, Identifier>;
  auto const found = names.find(&type);
  return found != names.end() ? found->second : names.emplace(&type, makeInterned(type.narrowName())).first->second;
}

Identifier memberName(meta::MetaElementImpl const& member) {
  return makeInterned(groundwork::toUtf8(member.getName()));
}

kestrel::OwnedArray announceElement(ModelElement const& element, Identifier declared) {
  if (element.isEmpty()) return kestrel::createObjects(declared, kestrel::EMPTY);
  bool isNew = false;
  auto array = BindingRegistry::announce(element.impl(), scriptClassOf(element), isNew);
  if (isNew) hold(*element);
  return array;
}

kestrel::OwnedArray announceModel(Model const& model) {
  bool isNew = false;
  auto array = BindingRegistry::announce(model.impl(), hostName(*Model::metaClass().impl()), isNew);
  if (isNew) model.addRef();
  return array;
}

kestrel::OwnedArray announceCollection(ReferenceCollection const* collection) {
  if (collection == nullptr) return kestrel::createObjects(makeInterned("plinth.Set"), kestrel::EMPTY);
  bool isNew = false;
  auto array = BindingRegistry::announce(const_cast<ReferenceCollection*>(collection),
                                         makeInterned(scriptClassOf(*collection)), isNew);
  if (isNew) hold(*collection->owner());
  return array;
}

void bindConstructed(ModelElement const& element, kestrel_array& self) {
  if (BindingRegistry::announceForConstructor(element.impl(), scriptClassOf(element), self, true)) hold(*element);
}

void releaseElement(void* native) noexcept {
  if (BindingRegistry::remove(native)) letGo(*static_cast<ModelElementImpl*>(native));
}

void releaseCollection(void* native) noexcept {
  ModelElementImpl& owner = *static_cast<ReferenceCollection*>(native)->owner();
  if (BindingRegistry::remove(native)) letGo(owner);
}

}  // namespace plinth::bridge

namespace corvid::factory {

using plinth::Model;
using plinth::meta::Class;

Identifier SelfTraits<Class>::className() {
  static Identifier const name = internal::makeInterned("plinth.meta.Class");
  return name;
}

Class SelfTraits<Class>::fromNative(void* native) {
  return Class(static_cast<Class::Impl*>(static_cast<plinth::ModelElementImpl*>(native)));
}

Identifier SelfTraits<Model>::className() {
  static Identifier const name = plinth::bridge::hostName(*Model::metaClass().impl());
  return name;
}

Model SelfTraits<Model>::fromNative(void* native) { return Model(static_cast<plinth::ModelImpl*>(native)); }

}  // namespace corvid::factory
