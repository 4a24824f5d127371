#include "plinth/bridge/PlinthEnumInfo.hpp"

#include "corvid/Invocation.hpp"
#include "corvid/factory/CorvidMethod.hpp"
#include "corvid/factory/StringDataTypes.hpp"
#include "kestrel/Array.hpp"

namespace plinth::bridge::detail {

using corvid::CorvidClass;
using corvid::Identifier;
using corvid::MethodCall;
using corvid::factory::impl::FunctionMethod;
using corvid::factory::impl::Invoker;
using corvid::internal::makeInterned;

EnumConstructor::EnumConstructor(CorvidClass const& hostClass)
    : m_name(hostClass.getName()), m_className(hostClass.getFullName()) {
  m_signature.addInput(makeInterned("any"));
  m_signature.addOutput(m_className);
}

void EnumConstructor::invoke(MethodCall& call) const {
  corvid::Inputs const inputs{&call.input(0)};
  MethodCall inner(inputs, true);
  CorvidClass::requireClass(m_className).getMethods(m_name).front()->invoke(inner);
  call.setOutput(inner.takeOutput());
}

kestrel_array const& EnumValue::getValue() const {
  if (m_object == nullptr) {
    auto const number = kestrel::createScalar(m_value);
    m_object = corvid::construct(CorvidClass::requireClass(m_className), {number.get()});
  }
  return *m_object;
}

std::string withoutShape(std::string const& dataType) {
  std::string const ending = " scalar";
  bool const ends =
      dataType.size() >= ending.size() && dataType.compare(dataType.size() - ending.size(), ending.size(), ending) == 0;
  return ends ? dataType.substr(0, dataType.size() - ending.size()) : dataType;
}

std::int32_t numberOf(kestrel_array const& self, Identifier className) {
  bool const isMember = !kestrel::isEmpty(self) && kestrel::className(self) == className;
  return isMember ? kestrel::element<std::int32_t>(self) : 0;
}

void addEnumMethods(CorvidClass& hostClass, meta::EnumImpl const& type) {
  corvid::factory::detail::initStringDataTypes();
  Identifier const name = hostClass.getFullName();
  auto const add = [&](char const* method, char const* result, FunctionMethod::Function function) {
    corvid::factory::MethodAttributes const attributes(corvid::MethodAttribute::PURE |
                                                       corvid::MethodAttribute::LENIENT_SELF);
    hostClass.addMethod(std::make_unique<FunctionMethod>(
        makeInterned(method), attributes, Invoker::createSignature("", result, {name.text()}), std::move(function)));
  };
  // A text about the literal of self; the empty text for a number that is no literal.
  auto const textOf = [name, &type](std::u16string (*read)(meta::EnumLiteralImpl const&)) {
    return [name, &type, read](MethodCall& call) {
      auto const* const literal = type.findByValue(numberOf(call.input(0), name));
      call.setOutput(kestrel::createChar(literal != nullptr ? read(*literal) : std::u16string()));
    };
  };
  add("getValue", "int32 scalar",
      [name](MethodCall& call) { call.setOutput(kestrel::createScalar(numberOf(call.input(0), name))); });
  add("getLiteral", "CorvidFactoryString scalar",
      textOf([](meta::EnumLiteralImpl const& literal) { return literal.getName(); }));
  add("getPublicIdentifier", "CorvidFactoryString scalar", textOf([](meta::EnumLiteralImpl const& literal) {
        return literal.publicIdentifier().empty() ? literal.getName() : literal.publicIdentifier();
      }));
}

}  // namespace plinth::bridge::detail
