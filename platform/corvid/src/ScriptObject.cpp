#include "ScriptObject.hpp"

#include "corvid/Host.hpp"
#include "corvid/Invocation.hpp"
#include "kestrel/Array.hpp"

namespace corvid {
namespace {

std::ptrdiff_t liveObjects = 0;

}  // namespace

std::ptrdiff_t liveObjectCount() noexcept { return liveObjects; }

ScriptObject::ScriptObject(CorvidClass& hostClass) : m_class(&hostClass) { ++liveObjects; }

ScriptObject::~ScriptObject() {
  // The class still finds this object in the registry when it lets go of the native.
  if (m_native != nullptr) m_class->getInfo().destroyInstance(m_native);
  --liveObjects;
}

void* ScriptObject::native(Identifier className) const noexcept {
  return m_native != nullptr && m_class->isSubclassOf(className) ? m_native : nullptr;
}

bool ScriptObject::isLive() const noexcept { return m_native != nullptr && m_class->getInfo().isLive(m_native); }

void ScriptObject::bind(CorvidClass& hostClass, void* native) noexcept {
  m_class = &hostClass;
  m_native = native;
}

void ScriptObject::bindValue(CorvidClass& hostClass, void* native, Copier copier) noexcept {
  bind(hostClass, native);
  m_copier = copier;
  m_ownsValue = true;
}

kestrel::ObjectRef ScriptObject::copyForContainment() {
  if (!m_ownsValue || m_native == nullptr) return kestrel::ObjectRef(this);
  boost::intrusive_ptr<ScriptObject> copy(new ScriptObject(*m_class));
  void* const value = m_copier != nullptr ? m_copier(m_native) : m_class->getInfo().copyInstance(m_native);
  if (value == nullptr) return kestrel::ObjectRef(this);
  copy->bindValue(*m_class, value, m_copier);
  return copy;
}

bool ScriptObject::equals(kestrel::Object const& other) const {
  if (this == &other) return true;
  Identifier const eq = internal::makeInterned("eq");
  if (!m_ownsValue || other.className() != className() || m_class->getMethods(eq).empty()) return false;
  auto const arrayOf = [](kestrel::Object const& object) {
    return kestrel::createObject(kestrel::ObjectRef(const_cast<kestrel::Object*>(&object)));
  };
  kestrel::OwnedArray const left = arrayOf(*this);
  kestrel::OwnedArray const right = arrayOf(other);
  kestrel::OwnedArray const result = invoke(*m_class, eq, {left.get(), right.get()});
  return result != nullptr && kestrel::element<bool>(*result);
}

}  // namespace corvid
