#include "plinth/bridge/ValueMarshaler.hpp"

#include "corvid/CorvidClass.hpp"
#include "corvid/CorvidTypeRepository.hpp"
#include "corvid/HostError.hpp"
#include "plinth/bridge/PrimitiveProperty.hpp"
#include "tessel_config_datamodel/frame/PropertyDescriptor.hpp"

namespace plinth::bridge {

using corvid::CorvidTypeRepository;
using corvid::Identifier;

namespace {

bool converts(Identifier dataType, kestrel_array const& array) {
  try {
    kestrel::OwnedArray made;
    CorvidTypeRepository::coerce(dataType, array, made);
    return true;
  } catch (corvid::HostError const&) {
    return false;
  }
}

}  // namespace

ValueMarshaler::~ValueMarshaler() = default;

std::unique_ptr<corvid::CorvidPropInfo> ValueMarshaler::makeProperty(
    tessel::frame::PropertyDescriptor const& row) const {
  return std::make_unique<PrimitiveProperty>(row);
}

kestrel::OwnedArray ValueMarshaler::toKestrelArray(Value const& value) const {
  bool const hasType = value.meta().type() != nullptr;
  return hasType ? toHost(value) : kestrel::createEmpty(kestrel::ClassId::Double);
}

void ValueMarshaler::fillCollection(AbstractPrimitiveCollection& collection, kestrel_array const& array) const {
  std::vector<Value> const values = toValueVector(array);
  collection.clear();
  for (Value const& value : values) collection.genericAdd(value);
}

bool ValueMarshaler::isCorrectType(kestrel_array const& array) const {
  return converts(rowDataType(), array) || converts(dataType(), array);
}

namespace detail {

kestrel_array const& coerceToClass(Identifier className, kestrel_array const& array, kestrel::OwnedArray& made) {
  corvid::CorvidClass::requireClass(className);
  return CorvidTypeRepository::coerce(className, array, made);
}

kestrel_array const& coerceToOne(Identifier className, kestrel_array const& array, kestrel::OwnedArray& made) {
  bool const isNothing = kestrel::isEmpty(array) && kestrel::baseClass(array) != kestrel::ClassId::Char;
  if (isNothing) return coerceToClass(className, array, made);
  corvid::CorvidClass::requireClass(className);
  return CorvidTypeRepository::coerce(corvid::internal::makeInterned(className.text() + " scalar"), array, made);
}

kestrel::OwnedArray memberFromText(Identifier enumeration, kestrel_array const& text) {
  corvid::CorvidClass::requireClass(enumeration);
  auto const* const converter = CorvidTypeRepository::getConversion("any", enumeration.text());
  return converter != nullptr ? converter->convert(text) : nullptr;
}

}  // namespace detail
}  // namespace plinth::bridge
