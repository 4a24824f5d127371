#include "plinth/bridge/CreateInto.hpp"

#include "ModelErrors.hpp"
#include "corvid/HostError.hpp"
#include "corvid/factory/SelfTraits.hpp"
#include "plinth/Value.hpp"
#include "plinth/bridge/Construct.hpp"
#include "plinth/bridge/ElementBinding.hpp"

namespace plinth::bridge {

using corvid::factory::impl::Invoker;

namespace {

corvid::Identifier methodName(meta::Property const& property) {
  return corvid::internal::makeInterned("createInto" + memberName(*property.impl()).text());
}

meta::Class elementClass(meta::Property const& property) {
  return meta::Class(static_cast<meta::ClassImpl*>(property->type()));
}

}  // namespace

CreateInto::CreateInto(meta::Property property)
    : CorvidMethod(methodName(property), corvid::factory::MethodAttributes(),
                   Invoker::createSignature("", property->type()->narrowName(),
                                            {property->owningType()->narrowName(), "any", "char"}, 2)),
      m_property(std::move(property)),
      m_ownerClass(hostName(*m_property->owningType())) {}

void CreateInto::invoke(corvid::MethodCall& call) const {
  void* const native = corvid::factory::impl::nativeOf(call.input(0), m_ownerClass);
  ModelElement const self = corvid::factory::SelfTraits<ModelElement>::fromNative(native);
  if (!self) corvid::factory::impl::reportInvalidSelf(m_ownerClass);
  ModelElement const element = create(self, call);
  store(self, element);
  if (call.wantsOutput()) call.setOutput(announceElement(element, hostName(*m_property->type())));
}

ModelElement CreateInto::create(ModelElement const& self, corvid::MethodCall const& call) const {
  Model const model = self->getModel();
  meta::Class const metaClass = elementClass(m_property);
  // The first argument may be left out in front of the second.
  std::size_t const last = call.inputCount() - 1;
  std::size_t const first = last == 2 && call.isLeftOut(1) ? 2 : 1;
  bool const hasStruct = last >= first && kestrel::isStruct(call.input(first));
  bool const hasUuid = last > first || (last == first && !hasStruct);
  if (last > first && !hasStruct) refuseArgument(call, first, "a struct of initial values");
  auto const builder = hasStruct ? detail::createBuilderFromStructFirst(call.input(first), 0, model, metaClass)
                                 : metaClass->instantiateBuilder(model);
  if (!hasUuid) return builder->create(ElementImpl::generateNewUuid());
  auto const uuid = detail::extractUuid(call.input(last));
  if (!uuid) refuseArgument(call, last, last == 1 ? "a struct of initial values or a UUID" : "a UUID");
  return builder->create(*uuid);
}

void CreateInto::refuseArgument(corvid::MethodCall const& call, std::size_t index, char const* expected) const {
  reportInvalidValue("'" + getName().text() + "' takes " + expected + " as argument " + std::to_string(index) +
                     ", not " + corvid::describeValue(call.input(index)) + ".");
}

void CreateInto::store(ModelElement const& self, ModelElement const& element) const {
  if (!m_property->isMany()) return self->setPropertyValue(m_property, Value::createElementValue(m_property, element));
  core(*self).requireReal();
  self->getPropertyValue(m_property).referenceCollection().genericAdd(element);
}

}  // namespace plinth::bridge
