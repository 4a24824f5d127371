#include "plinth/bridge/PlinthWrapperInfo.hpp"

#include "corvid/factory/StringDataTypes.hpp"

namespace plinth::bridge::detail {

using corvid::factory::MethodAttributes;
using corvid::factory::impl::FunctionMethod;
using corvid::factory::impl::Invoker;
using corvid::internal::makeInterned;

void beginClass(corvid::CorvidClass& hostClass, meta::Class const& metaClass) {
  meta::ClassImpl const* const base = metaClass->superclass();
  hostClass.addSuperclass(hostName(base != nullptr ? *base : *ModelElement::metaClass().impl()), 1, 0, 1);
  corvid::factory::detail::initStringDataTypes();
  if (!metaClass->isAbstract()) hostClass.addMethod(std::make_unique<Construct>(metaClass));
}

void endClass(corvid::CorvidClass& hostClass, meta::Class const& (*metaClass)()) {
  auto const announce = [metaClass](corvid::MethodCall& call) {
    call.setOutput(announceElement(metaClass(), corvid::factory::SelfTraits<meta::Class>::className()));
  };
  MethodAttributes const attributes(corvid::MethodAttribute::STATIC | corvid::MethodAttribute::HIDDEN);
  hostClass.addMethod(std::make_unique<FunctionMethod>(
      makeInterned("StaticMetaClass"), attributes, Invoker::createSignature("", "plinth.meta.Class", {}), announce));
}

}  // namespace plinth::bridge::detail
