#include "plinth/meta/Property.hpp"

#include <boost/optional.hpp>

namespace plinth::meta {

void TypedElementImpl::setType(Type const& type) {
  requireNew();
  m_type = type.impl();
}

void TypedElementImpl::setIsOrdered(bool ordered) {
  requireNew();
  m_ordered = ordered;
}

std::u16string TypedElementImpl::qualifiedName() const {
  return (m_owningType == nullptr ? std::u16string() : m_owningType->getQualifiedName() + u".") + getName();
}

void PropertyImpl::setIsUnique(bool unique) {
  requireNew();
  m_unique = unique;
}

void PropertyImpl::setDefaultValue(boost::optional<std::u16string> text) {
  requireNew();
  m_hasDefault = text.has_value();
  m_default = text ? std::move(*text) : std::u16string();
}

boost::optional<std::u16string> PropertyImpl::defaultValue() const {
  return m_hasDefault ? boost::optional<std::u16string>(m_default) : boost::none;
}

void PropertyImpl::setIsDerived(bool derived) {
  requireNew();
  m_derived = derived;
}

void PropertyImpl::setIsTransient(bool transient) {
  requireNew();
  m_transient = transient;
}

void PropertyImpl::setIsCorvidHidden(bool hidden) {
  requireNew();
  m_corvidHidden = hidden;
}

void PropertyImpl::setIndex(int index) {
  requireNew();
  m_index = index;
}

void PropertyImpl::setQualifiedBy(Property const& qualifier) {
  requireNew();
  m_qualifiedBy = qualifier.impl();
}

void PropertyImpl::setIsQualificationUnique(bool unique) {
  requireNew();
  m_qualificationUnique = unique;
}

void PropertyImpl::setOpposite(Property const& opposite) {
  requireNew();
  m_opposite = opposite.impl();
}

void PropertyImpl::setOwningType(Type const& owner) {
  requireNew();
  m_position = owner->m_properties.size();
  owner->m_properties.push_back(this);
  m_owningType = owner.impl();
  becomePartOf(*m_owningType);
}

void OperationImpl::setIsAbstract(bool value) {
  requireNew();
  m_traits.isAbstract = value;
}

void OperationImpl::setIsStatic(bool value) {
  requireNew();
  m_traits.isStatic = value;
}

void OperationImpl::setIsPublic(bool value) {
  requireNew();
  m_traits.isPublic = value;
}

void OperationImpl::setIsEvent(bool value) {
  requireNew();
  m_traits.isEvent = value;
}

void OperationImpl::setLower(int lower) {
  requireNew();
  m_traits.lower = lower;
}

void OperationImpl::setUpper(int upper) {
  requireNew();
  m_traits.upper = upper;
}

void OperationImpl::setOwningType(Type const& owner) {
  requireNew();
  owner->m_operations.push_back(this);
  m_owningType = owner.impl();
  becomePartOf(*m_owningType);
}

}  // namespace plinth::meta
