#include "plinth/bridge/Construct.hpp"

#include "ModelErrors.hpp"
#include "corvid/HostError.hpp"
#include "kestrel/Array.hpp"
#include "plinth/bridge/ElementBinding.hpp"

namespace plinth::bridge {

using corvid::factory::impl::Invoker;

namespace {

corvid::Identifier shortName(meta::Class const& metaClass) { return memberName(*metaClass.impl()); }

Model requireModel(kestrel_array const& argument) {
  Model model = corvid::factory::impl::selfOf<Model>(argument);
  if (!model) reportException(messages::CannotCreateWithoutModel());
  return model;
}

/// The optional arguments in whatever order they come.
struct Initial {
  std::unique_ptr<ModelElementBuilder> builder;
  boost::optional<boost::uuids::uuid> uuid;
};

[[noreturn]] void refuseArgument(meta::Class const& metaClass, std::size_t index, kestrel_array const& argument) {
  reportInvalidValue(
      "'" + shortName(metaClass).text() +
      "' takes one struct of initial values and one UUID, each at most once, behind the model; argument " +
      std::to_string(index + 1) + " is " + corvid::describeValue(argument) + ".");
}

Initial readInitial(corvid::MethodCall const& call, Model const& model, meta::Class const& metaClass) {
  Initial initial;
  for (std::size_t i = 1; i < call.inputCount(); ++i) {
    if (call.isLeftOut(i)) continue;
    kestrel_array const& argument = call.input(i);
    if (detail::isInitialStruct(argument) && initial.builder == nullptr) {
      initial.builder = detail::createBuilderFromStruct(argument, 0, model, metaClass);
    } else if (!initial.uuid) {
      initial.uuid = detail::extractUuid(argument);
      if (!initial.uuid) refuseArgument(metaClass, i, argument);
    } else {
      refuseArgument(metaClass, i, argument);
    }
  }
  if (initial.builder == nullptr) initial.builder = metaClass->instantiateBuilder(model);
  return initial;
}

}  // namespace

Construct::Construct(meta::Class metaClass)
    : CorvidConstructor(shortName(metaClass),
                        Invoker::createSignature("model opt_init opt_uuid", metaClass->narrowName(),
                                                 {Model::metaClass()->narrowName(), "any", "any"}, 2)),
      m_metaClass(std::move(metaClass)) {}

void Construct::invoke(corvid::MethodCall& call) const {
  Model const model = requireModel(call.input(0));
  Initial const initial = readInitial(call, model, m_metaClass);
  ModelElement const element = initial.builder->create(initial.uuid.value_or(boost::uuids::uuid{}));
  bindConstructed(element, call.newObject());
}

}  // namespace plinth::bridge
