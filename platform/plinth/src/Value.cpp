#include "plinth/Value.hpp"

#include <cstring>

#include "groundwork/unicode.hpp"
#include "plinth/ElementDirectory.hpp"
#include "plinth/FailurePoint.hpp"
#include "plinth/meta/MetaRegistry.hpp"

namespace plinth {

Value::Value(Value const& other) : m_meta(other.m_meta), m_functions(other.m_functions) {
  if (other.m_content == nullptr || !m_meta.isManaged()) {
    m_content = other.m_content;
  } else if (m_functions->copyInPlace != nullptr) {
    m_functions->copyInPlace(m_inPlace, other.m_content);
    m_content = m_inPlace;
  } else {
    failurePoint("value-copy");
    m_content = m_functions->cloner(other.m_content);
  }
}

Value::Value(Value&& other) noexcept
    : m_meta(other.m_meta), m_content(other.m_content), m_functions(other.m_functions) {
  if (m_content == other.m_inPlace) {
    // What stands in place is at most a word that doesn't know its address: moving it is moving its bytes.
    std::memcpy(m_inPlace, other.m_inPlace, IN_PLACE);
    m_content = m_inPlace;
  }
  other.m_content = nullptr;
}

Value& Value::operator=(Value other) noexcept {
  reset();
  return *::new (this) Value(std::move(other));
}

void Value::reset() noexcept {
  if (m_content == nullptr || !m_meta.isManaged()) return;
  if (m_content == m_inPlace) {
    m_functions->destroyInPlace(m_content);
  } else {
    m_functions->deleter(m_content);
  }
  m_content = nullptr;
}

bool operator==(Value const& left, Value const& right) {
  if (left.m_meta.type() != right.m_meta.type() || left.m_meta.flags() != right.m_meta.flags()) return false;
  if (left.m_functions == nullptr || right.m_functions == nullptr) return left.m_content == right.m_content;
  return left.m_functions->comparator(left.m_content, right.m_content);  // one type and shape: one C++ type
}

std::uint64_t Value::hash() const {
  if (m_content == nullptr) return 0;
  if (m_functions == nullptr) return reinterpret_cast<std::uintptr_t>(m_content);
  return m_functions->hasher(const_cast<void*>(m_content));
}

ValueMeta Value::metaOf(meta::Property const& property) {
  if (property.isEmpty()) reportException(messages::NoSuchProperty(u"", u""));
  return ValueMeta(property);
}

void Value::reportIncompatible(meta::TypeImpl const* expected) const {
  reportException(
      messages::CannotCastIncompatibleTypes(m_meta.type() == nullptr ? u"" : m_meta.type()->getQualifiedName(),
                                            expected == nullptr ? "" : expected->narrowName()));
}

namespace {

meta::TypeImpl* standardType(char const* name) {
  meta::PrimitiveType const type = meta::MetaRegistry::getInstance().getPrimitiveType(name);
  if (type.isEmpty()) reportException(messages::NoSuchType(groundwork::toUtf16(name)));
  return type.impl();
}

}  // namespace

meta::TypeImpl* StandardTypes::booleanMeta() {
  static meta::TypeImpl* const type = standardType("Boolean");
  return type;
}
meta::TypeImpl* StandardTypes::stringMeta() {
  static meta::TypeImpl* const type = standardType("String");
  return type;
}
meta::TypeImpl* StandardTypes::realMeta() {
  static meta::TypeImpl* const type = standardType("Real");
  return type;
}
meta::TypeImpl* StandardTypes::integerMeta() {
  static meta::TypeImpl* const type = standardType("Integer");
  return type;
}
meta::TypeImpl* StandardTypes::integer64Meta() {
  static meta::TypeImpl* const type = standardType("Integer64");
  return type;
}
meta::TypeImpl* StandardTypes::uInteger64Meta() {
  static meta::TypeImpl* const type = standardType("UInteger64");
  return type;
}
meta::TypeImpl* StandardTypes::unlimitedNaturalMeta() {
  static meta::TypeImpl* const type = standardType("UnlimitedNatural");
  return type;
}
meta::TypeImpl* StandardTypes::kestrelArrayMeta() {
  static meta::TypeImpl* const type = standardType("KestrelArray");
  return type;
}

namespace internal {
bool isEnumType(meta::Type const& type) {
  return !type.isEmpty() && dynamic_cast<meta::EnumImpl const*>(type.impl()) != nullptr;
}
}  // namespace internal

namespace services::hashers {
std::size_t PlinthHasher::operator()(boost::uuids::uuid const& uuid) const noexcept { return hashOf(uuid); }
}  // namespace services::hashers

}  // namespace plinth
