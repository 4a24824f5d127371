#include "plinth/bridge/PrimitiveProperty.hpp"

#include "corvid/factory/SelfTraits.hpp"
#include "plinth/bridge/ElementBinding.hpp"
#include "plinth/bridge/MetaMarshalerRegistry.hpp"
#include "plinth/bridge/ValueShapes.hpp"

namespace plinth::bridge {

using corvid::Identifier;
using corvid::internal::makeInterned;

namespace {

ValueMarshaler const& marshalerOf(meta::Property const& property) {
  return MetaMarshalerRegistry::getInstance().getPropertyMarshaler(property->getType());
}

Identifier dataTypeOf(meta::Property const& property) {
  meta::TypeImpl const* const type = property->type();
  if (property->isMany() && type == StandardTypes::stringMeta()) return makeInterned("CorvidFactoryString vector");
  struct Row {
    meta::TypeImpl const* type;
    kestrel::ClassId id;
  };
  Row const rows[] = {{StandardTypes::booleanMeta(), kestrel::ClassId::Logical},
                      {StandardTypes::realMeta(), kestrel::ClassId::Double},
                      {StandardTypes::integerMeta(), kestrel::ClassId::Int32},
                      {StandardTypes::integer64Meta(), kestrel::ClassId::Int64},
                      {StandardTypes::uInteger64Meta(), kestrel::ClassId::UInt64},
                      {StandardTypes::unlimitedNaturalMeta(), kestrel::ClassId::UInt32}};
  for (Row const& row : rows)
    if (row.type == type) return kestrel::nameOf(row.id);
  return makeInterned("any");
}

}  // namespace

PrimitiveProperty::PrimitiveProperty(meta::Property property)
    : PropertyImplBase(memberName(*property.impl()), property->isCorvidHidden() ? corvid::HIDDEN_PROPERTY : 0),
      m_property(std::move(property)),
      m_ownerClass(hostName(*m_property->owningType())),
      m_dataType(dataTypeOf(m_property)) {
  marshalerOf(m_property).initializeDependencies();
}

corvid::Multiplicity PrimitiveProperty::getMultiplicity() const {
  return m_property->isMany() ? corvid::Multiplicity::Many : corvid::Multiplicity::Single;
}

ModelElement PrimitiveProperty::requireSelf(kestrel_array const& self) const {
  auto element =
      corvid::factory::SelfTraits<ModelElement>::fromNative(corvid::factory::impl::nativeOf(self, m_ownerClass));
  if (!element) corvid::factory::impl::reportInvalidSelf(m_ownerClass);
  return element;
}

kestrel::OwnedArray PrimitiveProperty::getValue(kestrel_array const& self) const {
  ModelElement const element = requireSelf(self);
  if (m_property->isMany()) element->requireReal();
  Value const value = element->getPropertyValue(m_property, ReflectionPrivateTag::PUBLIC_ACCESS);
  if (!m_property->isMany()) return marshalerOf(m_property).toKestrelArray(value);
  return marshalCollection(&value.primitiveCollection());
}

void PrimitiveProperty::setValue(kestrel_array const& self, kestrel_array const& value) const {
  ModelElement const element = requireSelf(self);
  ValueMarshaler const& marshaler = marshalerOf(m_property);
  if (!m_property->isMany()) {
    element->setPropertyValue(m_property, marshaler.fromKestrelArray(value), ReflectionPrivateTag::PUBLIC_ACCESS);
    return;
  }
  element->requireModifiable();
  Transaction transaction = element->model().beginTransaction(false);
  Value const collection = element->getPropertyValue(m_property, ReflectionPrivateTag::PUBLIC_ACCESS);
  marshaler.fillCollection(collection.primitiveCollection(), value);
  transaction.commit();
}

Identifier PrimitiveProperty::getValueType() const {
  ValueMarshaler const& marshaler = marshalerOf(m_property);
  return m_property->isMany() ? marshaler.rowDataType() : marshaler.dataType();
}

bool PrimitiveProperty::isCorrectType(kestrel_array const& value) const {
  return marshalerOf(m_property).isCorrectType(value);
}

}  // namespace plinth::bridge
