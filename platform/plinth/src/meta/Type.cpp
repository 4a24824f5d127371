#include "plinth/meta/Type.hpp"

#include <atomic>

#include "groundwork/Unicode.hpp"
#include "plinth/Builder.hpp"
#include "plinth/meta/Enum.hpp"
#include "plinth/meta/Package.hpp"
#include "plinth/meta/Property.hpp"

namespace plinth::meta {

TypeImpl::TypeImpl(Model const& model, boost::uuids::uuid const& uuid, CoreClass coreClass, std::string qualifiedName)
    : MetaElementImpl(model, uuid, coreClass),
      m_qualifiedName(groundwork::toUtf16(qualifiedName)),
      m_narrowName(std::move(qualifiedName)) {}

void TypeImpl::setOwningPackage(Package const& package) {
  requireNew();
  package->m_types.push_back(this);
  m_owningPackage = package.impl();
  becomePartOf(*m_owningPackage);
}

void TypeImpl::setIsCorvidHidden(bool hidden) {
  requireNew();
  m_corvidHidden = hidden;
}

void TypeImpl::basicDisassociateAll() {
  m_owningPackage = nullptr;
  m_properties.clear();
  m_operations.clear();
}

void TypeImpl::doDestroy(bool flag1, bool flag2) {
  for (PropertyImpl* property : m_properties) core(*property).destroyRecursively(flag1, false, flag2);
  for (OperationImpl* operation : m_operations) core(*operation).destroyRecursively(flag1, false, flag2);
}

std::uint32_t ClassImpl::nextOrdinal() noexcept {
  static std::atomic<std::uint32_t> next{0};
  return next.fetch_add(1, std::memory_order_relaxed);
}

void ClassImpl::setSuperclass(Class const& superclass) {
  requireNew();
  m_superclass = superclass.impl();
}

bool ClassImpl::conformsTo(TypeImpl const& type) const noexcept {
  for (ClassImpl const* each = this; each != nullptr; each = each->m_superclass) {
    if (each == &type) return true;
  }
  return false;
}

std::unique_ptr<ModelElementBuilder> ClassImpl::instantiateBuilder(Model const& model) const {
  if (m_builderFactory == nullptr) reportException(messages::CannotCreateAbstractClass(getQualifiedName()));
  return m_builderFactory(model);
}

std::vector<PropertyImpl*> ClassImpl::allProperties() const {
  std::vector<PropertyImpl*> all =
      m_superclass == nullptr ? std::vector<PropertyImpl*>() : m_superclass->allProperties();
  all.insert(all.end(), ownProperties().begin(), ownProperties().end());
  return all;
}

PropertyImpl* ClassImpl::findProperty(std::u16string const& name) const noexcept {
  for (ClassImpl const* each = this; each != nullptr; each = each->m_superclass) {
    for (PropertyImpl* property : each->ownProperties()) {
      if (property->getName() == name) return property;
    }
  }
  return nullptr;
}

void EnumLiteralImpl::setParentEnum(Enum const& parent) {
  requireNew();
  parent->m_literals.push_back(this);
  m_parentEnum = parent.impl();
  becomePartOf(*m_parentEnum);
}

void EnumLiteralImpl::setPublicIdentifier(std::u16string identifier) {
  requireNew();
  m_publicIdentifier = std::move(identifier);
}

EnumLiteralImpl const* EnumImpl::findByValue(int value) const noexcept {
  for (EnumLiteralImpl const* literal : m_literals) {
    if (literal->value() == value) return literal;
  }
  return nullptr;
}

EnumLiteralImpl const* EnumImpl::findByName(std::u16string const& name) const noexcept {
  for (EnumLiteralImpl const* literal : m_literals) {
    if (literal->getName() == name) return literal;
  }
  return nullptr;
}

EnumLiteralImpl const* EnumImpl::findByPublicIdentifier(std::u16string const& identifier) const noexcept {
  for (EnumLiteralImpl const* literal : m_literals) {
    auto const& own = literal->publicIdentifier();
    if ((own.empty() ? literal->getName() : own) == identifier) return literal;
  }
  return nullptr;
}

void EnumImpl::setUnderlyingType(Type const& type) {
  requireNew();
  m_underlyingType = type.impl();
}

void EnumImpl::basicDisassociateAll() {
  TypeImpl::basicDisassociateAll();
  m_literals.clear();
}

void EnumImpl::doDestroy(bool flag1, bool flag2) {
  for (EnumLiteralImpl* literal : m_literals) core(*literal).destroyRecursively(flag1, false, flag2);
}

}  // namespace plinth::meta
