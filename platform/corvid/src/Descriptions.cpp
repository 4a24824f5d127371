// What the abstract descriptions have of their own: their place in the library, and little else.
#include <algorithm>

#include "corvid/CorvidClassInfo.hpp"
#include "corvid/CorvidEnumInfo.hpp"
#include "corvid/CorvidMethodInfo.hpp"
#include "corvid/CorvidPackage.hpp"
#include "corvid/CorvidPropInfo.hpp"
#include "corvid/CorvidTypeRepository.hpp"
#include "corvid/HostError.hpp"

namespace corvid {

CorvidPackageInfo::~CorvidPackageInfo() = default;
CorvidClassInfo::~CorvidClassInfo() = default;
CorvidPropInfo::~CorvidPropInfo() = default;
CorvidMethodInfo::~CorvidMethodInfo() = default;
CorvidEnumInfo::~CorvidEnumInfo() = default;
CorvidTypeConverter::~CorvidTypeConverter() = default;

void CorvidMethodSignature::setArgumentNames(std::string_view names) {
  m_argumentNames.clear();
  while (!names.empty()) {
    std::size_t const end = std::min(names.find(' '), names.size());
    if (end != 0) m_argumentNames.emplace_back(names.substr(0, end));
    names.remove_prefix(std::min(end + 1, names.size()));
  }
}

std::size_t CorvidMethodSignature::minimumInputs() const noexcept {
  return m_inputs.size() - std::min(m_optionalTrailing, m_inputs.size());
}

kestrel_array const& MethodCall::input(std::size_t index) const {
  if (!isLeftOut(index)) return *m_inputs[index];
  if (m_leftOut == nullptr) m_leftOut = kestrel::createEmpty(kestrel::ClassId::Double);
  return *m_leftOut;
}

kestrel_array& MethodCall::newObject() const {
  if (m_newObject == nullptr)
    throw HostError(ErrorKey::BAD_DESCRIPTION, "Only a constructor is given a new object to bind.");
  return *m_newObject;
}

}  // namespace corvid
