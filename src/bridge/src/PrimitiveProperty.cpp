#include "plinth/bridge/PrimitiveProperty.hpp"

#include "plinth/bridge/MetaMarshalerRegistry.hpp"

namespace plinth::bridge {

using corvid::Identifier;
using corvid::internal::makeInterned;

namespace {

ValueMarshaler const& marshalerOf(meta::PropertyImpl const& property) {
  return MetaMarshalerRegistry::getInstance().getPropertyMarshaler(property.getType());
}

Identifier dataTypeOf(meta::PropertyImpl const& property) {
  meta::TypeImpl const* const type = property.type();
  if (property.isMany() && type == StandardTypes::stringMeta()) return makeInterned("CorvidFactoryString vector");
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

PrimitiveProperty::PrimitiveProperty(Row const& row)
    : PropertyImplBase(memberName(*row.property), row.property->isCorvidHidden() ? corvid::HIDDEN_PROPERTY : 0),
      m_row(row, dataTypeOf(*row.property)) {
  marshalerOf(*row.property).initializeDependencies();
}

corvid::Multiplicity PrimitiveProperty::getMultiplicity() const {
  return property().isMany() ? corvid::Multiplicity::Many : corvid::Multiplicity::Single;
}

kestrel::OwnedArray PrimitiveProperty::getValue(kestrel_array const& self) const {
  tessel::frame::Element& element = m_row.elementOf(self);
  if (property().isMany()) core(element).requireReal();
  Value const value = (*m_row).kind->get(element, *m_row, ReflectionPrivateTag::PUBLIC_ACCESS);
  if (!property().isMany()) return marshalerOf(property()).toKestrelArray(value);
  return marshalCollection(&value.primitiveCollection());
}

void PrimitiveProperty::setValue(kestrel_array const& self, kestrel_array const& value) const {
  tessel::frame::Element& element = m_row.elementOf(self);
  ValueMarshaler const& marshaler = marshalerOf(property());
  Row const& row = *m_row;
  ReflectionPrivateTag const& tag = ReflectionPrivateTag::PUBLIC_ACCESS;
  if (!property().isMany()) return row.kind->set(element, row, marshaler.fromKestrelArray(value), tag);
  core(element).requireModifiable();
  Transaction transaction = element.model().beginTransaction(false);
  marshaler.fillCollection(row.kind->get(element, row, tag).primitiveCollection(), value);
  transaction.commit();
}

Identifier PrimitiveProperty::getValueType() const {
  ValueMarshaler const& marshaler = marshalerOf(property());
  return property().isMany() ? marshaler.rowDataType() : marshaler.dataType();
}

bool PrimitiveProperty::isCorrectType(kestrel_array const& value) const {
  return marshalerOf(property()).isCorrectType(value);
}

}  // namespace plinth::bridge
