#include "plinth/bridge/PlinthDatatypeInfo.hpp"

#include "corvid/factory/StringDataTypes.hpp"

namespace plinth::bridge::detail {

using corvid::factory::MethodAttributes;
using corvid::factory::impl::FunctionMethod;
using corvid::factory::impl::Invoker;
using corvid::internal::makeInterned;

void beginDatatype(corvid::CorvidClass& hostClass, Body construct) {
  corvid::factory::detail::initStringDataTypes();
  hostClass.addMethod(std::make_unique<FunctionMethod>(hostClass.getName(), MethodAttributes(),
                                                       Invoker::createSignature("", hostClass.getFullName().text(), {}),
                                                       construct));
}

void announceOperations(corvid::CorvidClass& hostClass, meta::TypeImpl const& type) {
  for (meta::OperationImpl const* operation : type.ownOperations())
    hostClass.announceOperation(memberName(*operation), nullptr, nullptr);
}

void addComparison(corvid::CorvidClass& hostClass, char const* name, Body compare) {
  std::string const& own = hostClass.getFullName().text();
  hostClass.addMethod(std::make_unique<FunctionMethod>(
      makeInterned(name), MethodAttributes(), Invoker::createSignature("", "logical scalar", {own, own}), compare));
}

}  // namespace plinth::bridge::detail
