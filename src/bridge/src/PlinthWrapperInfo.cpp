#include "plinth/bridge/PlinthWrapperInfo.hpp"

#include "corvid/CorvidClass.hpp"
#include "corvid/factory/CorvidMethod.hpp"
#include "corvid/factory/StringDataTypes.hpp"
#include "plinth/bridge/CreateInto.hpp"
#include "plinth/bridge/RowProperties.hpp"

namespace plinth::bridge::detail {

using corvid::factory::MethodAttributes;
using corvid::factory::impl::FunctionMethod;
using corvid::factory::impl::Invoker;
using corvid::internal::makeInterned;

void describeClass(corvid::CorvidClass& hostClass, tessel::frame::ClassTable const& table) {
  meta::Class const& metaClass = table.metaClass();
  meta::ClassImpl const* const base = metaClass->superclass();
  hostClass.addSuperclass(hostName(base != nullptr ? *base : *ModelElement::metaClass().impl()), 1, 0, 1);
  corvid::factory::detail::initStringDataTypes();
  if (!metaClass->isAbstract()) hostClass.addMethod(std::make_unique<Construct>(metaClass));
  for (bool const isMany : {false, true}) {
    for (Row const& row : table)
      if (row.property->isMany() == isMany) hostClass.addProperty(makeProperty(row));
  }
  for (Row const& row : table)
    if (row.property->isComposite()) hostClass.addMethod(std::make_unique<CreateInto>(meta::Property(row.property)));
  addStaticMetaClass(hostClass, table.metaClass);
}

void addStaticMetaClass(corvid::CorvidClass& hostClass, meta::Class const& (*metaClass)()) {
  auto const announce = [metaClass](corvid::MethodCall& call) {
    call.setOutput(announceElement(metaClass(), corvid::factory::SelfTraits<meta::Class>::className()));
  };
  MethodAttributes const attributes(corvid::MethodAttribute::STATIC | corvid::MethodAttribute::HIDDEN);
  hostClass.addMethod(std::make_unique<FunctionMethod>(
      makeInterned("StaticMetaClass"), attributes, Invoker::createSignature("", "plinth.meta.Class", {}), announce));
}

}  // namespace plinth::bridge::detail
