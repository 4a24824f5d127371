// The descriptions of the foundation's script classes, and what they share.
// Thread rule: the host's thread.
#pragma once

#include <initializer_list>
#include <string_view>

#include "corvid/CorvidClass.hpp"
#include "corvid/factory/CorvidMethod.hpp"
#include "corvid/factory/SelfTraits.hpp"
#include "corvid/factory/StringDataTypes.hpp"
#include "plinth/bridge/ElementBinding.hpp"
#include "plinth/bridge/EmptyParentPackage.hpp"

namespace plinth::bridge {

// Data types that the signatures of these classes share.
constexpr std::string_view ELEMENT = "plinth.ModelElement";
constexpr std::string_view ELEMENTS = "plinth.ModelElement vector";
constexpr std::string_view TEXT = "CorvidFactoryString scalar";
constexpr std::string_view TRUTH = "logical scalar";
constexpr std::string_view COUNT = "uint64 scalar";

/// Adds the classes of "plinth".
void addElementClass(corvid::CorvidPackage& package);
void addModelClasses(corvid::CorvidPackage& package);
void addCollectionClasses(corvid::CorvidPackage& package);

/// Adds methods whose self is a T; makes the host know the string types that their signatures may name.
template <class T>
class MethodAdder {
 public:
  using Self = typename corvid::factory::SelfTraits<T>::Self;
  using Body = void (*)(Self const& self, corvid::MethodCall& call);

  explicit MethodAdder(corvid::CorvidClass& hostClass) : m_class(hostClass) {
    corvid::factory::detail::initStringDataTypes();
  }

  /// `inputs` are those behind self, the last `optional` of them to be left out.
  void add(std::string_view name, std::string_view result, std::initializer_list<std::string_view> inputs, Body body,
           std::size_t optional = 0, unsigned attributes = 0) const {
    namespace impl = corvid::factory::impl;
    auto signature = impl::Invoker::createSignature("", result, {m_class.getFullName().text()});
    for (std::string_view const input : inputs) signature->addInput(corvid::internal::makeInterned(input));
    signature->setOptionalTrailing(optional);
    m_class.addMethod(std::make_unique<impl::FunctionMethod>(corvid::internal::makeInterned(name),
                                                             corvid::factory::MethodAttributes(attributes),
                                                             std::move(signature), [body](corvid::MethodCall& call) {
                                                               Self const self = impl::selfOf<T>(call.input(0));
                                                               impl::validateSelfPointer<T>(self);
                                                               body(self, call);
                                                             }));
  }
  /// A method that only looks.
  void read(std::string_view name, std::string_view result, std::initializer_list<std::string_view> inputs, Body body,
            std::size_t optional = 0) const {
    add(name, result, inputs, body, optional, corvid::MethodAttribute::PURE);
  }

 private:
  corvid::CorvidClass& m_class;
};

/// A class of the metamodel by its object or its name; raises NoSuchType and InvalidValue.
meta::Class readClass(kestrel_array const& value);

}  // namespace plinth::bridge
