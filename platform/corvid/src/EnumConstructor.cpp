#include "EnumConstructor.hpp"

#include "Coercion.hpp"
#include "corvid/CorvidClass.hpp"
#include "corvid/CorvidTypeRepository.hpp"
#include "corvid/HostError.hpp"
#include "groundwork/Unicode.hpp"
#include "kestrel/Array.hpp"

namespace corvid {

EnumConstructor::EnumConstructor(CorvidClass const& hostClass) : m_class(hostClass) {
  m_signature.addInput(internal::makeInterned("any"));
  m_signature.addOutput(hostClass.getFullName());
}

Identifier EnumConstructor::getName() const { return m_class.getName(); }

void EnumConstructor::invoke(MethodCall& call) const {
  kestrel_array const& value = call.input(0);
  if (kestrel::className(value) == m_class.getFullName()) return call.setOutput(kestrel::deepCopy(&value));
  if (kestrel::isText(value)) {
    if (!kestrel::isOneText(value)) throw wrongType(dataType(m_class.getFullName()), Multiplicity::Single, value);
    std::string const literal = groundwork::toUtf8(kestrel::scalarText(value));
    CorvidEnumInfo const* const member = m_class.findEnumValue(internal::makeInterned(literal));
    if (member == nullptr) throw wrongType(dataType(m_class.getFullName()), Multiplicity::Single, value);
    return call.setOutput(kestrel::deepCopy(&member->getValue()));
  }
  kestrel::OwnedArray converted;
  kestrel_array const& number = CorvidTypeRepository::coerce(
      internal::makeInterned(m_class.getUnderlyingType().text() + " vector"), value, converted);
  call.setOutput(kestrel::createBuiltInBased(m_class.getFullName(), kestrel::deepCopy(&number)));
}

}  // namespace corvid
