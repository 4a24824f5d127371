#include "plinth/Value.hpp"

#include <cstring>

#include "groundwork/Unicode.hpp"
#include "plinth/AbstractPrimitiveCollection.hpp"
#include "plinth/ElementDirectory.hpp"
#include "plinth/FailurePoint.hpp"
#include "plinth/ReferenceCollection.hpp"
#include "plinth/meta/MetaRegistry.hpp"

namespace plinth {
namespace {

std::u16string nameOf(ValueMeta const& meta) {
  return meta.type() == nullptr ? std::u16string() : meta.type()->getQualifiedName();
}

char const* shapeOf(ValueMeta const& meta) {
  if (meta.type() == nullptr) return "no type";
  switch (meta.flags()) {
    case meta::OPTIONAL:
      return "optional";
    case meta::SINGLE:
      return "single";
    case meta::SEQUENCE:
      return "sequence";
    case meta::SET:
      return "set";
    default:
      return "map";
  }
}

}  // namespace

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
  other.m_meta = ValueMeta();
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

void Value::release() noexcept {
  if (!m_meta.isManaged() && m_functions != nullptr && m_content != nullptr) m_functions->deleter(m_content);
  reset();
  m_content = nullptr;
  m_meta.forgetCollection();
}

Value::Value(ValueMeta const& meta, AbstractOwnedCollection& collection) noexcept
    : m_meta(meta), m_content(&collection) {
  m_meta.m_managed = false;
  m_meta.m_collection = true;
}

AbstractOwnedCollection& Value::requireCollection(bool ofElements) const {
  bool const fits = m_meta.isCollection() && m_meta.type()->isClass() == ofElements;
  if (!fits) {
    std::u16string const name = nameOf(m_meta);
    reportException(
        messages::CannotCastIncompatibleTypes(name, groundwork::toUtf8(name), shapeOf(m_meta),
                                              ofElements ? "collection of elements" : "collection of values"));
  }
  return *static_cast<AbstractOwnedCollection*>(m_content);
}

AbstractPrimitiveCollection& Value::primitiveCollection() const {
  return static_cast<AbstractPrimitiveCollection&>(requireCollection(false));
}

ReferenceCollection& Value::referenceCollection() const {
  return static_cast<ReferenceCollection&>(requireCollection(true));
}

void const* Value::collectionValues(std::type_info const& container) const {
  void const* const values = primitiveCollection().valuesAs(container);
  if (values == nullptr) reportIncompatible(m_meta);
  return values;
}

namespace {

bool haveEqualContents(Value const& left, Value const& right) {
  if (left.meta().type()->isClass()) {
    ReferenceCollection const& elements = left.referenceCollection();
    ReferenceCollection const& others = right.referenceCollection();
    return typeid(elements) == typeid(others) && elements.hasSameMembers(others);
  }
  AbstractPrimitiveCollection const& values = left.primitiveCollection();
  AbstractPrimitiveCollection const& others = right.primitiveCollection();
  return typeid(values) == typeid(others) && values.equals(others);
}

/// As a vector of the values hashes; elements of sets come in no order.
std::uint64_t hashOfContents(Value const& value) {
  std::uint64_t state = 0;
  if (value.meta().type()->isClass()) {
    for (ModelElement const& each : value.referenceCollection().getAllValuesAndProxies()) state += hashValue(each);
  } else {
    for (Value const& each : value.primitiveCollection().getAllValues()) combineHash(state, each.hash());
  }
  return state;
}

}  // namespace

bool operator==(Value const& left, Value const& right) {
  if (left.m_meta.type() != right.m_meta.type() || left.m_meta.flags() != right.m_meta.flags()) return false;
  if (left.m_meta.isCollection() != right.m_meta.isCollection()) return false;
  if (left.m_meta.isCollection()) return haveEqualContents(left, right);
  if (left.m_content == nullptr || right.m_content == nullptr) return left.m_content == right.m_content;
  return left.m_functions->comparator(left.m_content, right.m_content);  // one type and shape: one C++ type
}

std::uint64_t Value::hash() const {
  if (m_content == nullptr) return 0;
  return m_meta.isCollection() ? hashOfContents(*this) : m_functions->hasher(const_cast<void*>(m_content));
}

ValueMeta Value::metaOf(meta::Property const& property) {
  if (property.isEmpty()) reportException(messages::NoSuchProperty(u"", u""));
  return ValueMeta(property);
}

void Value::reportIncompatible(ValueMeta const& expected) const {
  reportException(messages::CannotCastIncompatibleTypes(nameOf(m_meta),
                                                        expected.type() == nullptr ? "" : expected.type()->narrowName(),
                                                        shapeOf(m_meta), shapeOf(expected)));
}

namespace {

meta::TypeImpl* standardType(char const* name) { return internal::getPrimitiveTypeFromMetaRegistry(name).impl(); }

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
