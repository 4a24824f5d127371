#include "HostArrayMarshaler.hpp"

#include "kestrel/array.hpp"
#include "plinth/Messages.hpp"
#include "tessel_config_datamodel/frame/HostArray.hpp"

namespace plinth::bridge {

using tessel::frame::HostArray;

namespace {

[[noreturn]] void refuse(meta::Type const& type) {
  reportException(messages::CannotCastIncompatibleTypes(type->getQualifiedName(), "collection"));
}

}  // namespace

kestrel::OwnedArray HostArrayMarshaler::fromCollection(AbstractPrimitiveCollection const&) const { refuse(type()); }

kestrel::OwnedArray HostArrayMarshaler::fromValueVector(std::vector<Value> const&) const { refuse(type()); }

std::vector<Value> HostArrayMarshaler::toValueVector(kestrel_array const&) const { refuse(type()); }

Value HostArrayMarshaler::toUnmanagedSequence(kestrel_array const&) const { refuse(type()); }

Value HostArrayMarshaler::toUnmanagedSetValue(kestrel_array const&) const { refuse(type()); }

kestrel::OwnedArray HostArrayMarshaler::toHost(Value const& value) const {
  value.checkCompatible<HostArray>();
  auto const* const content = static_cast<HostArray const*>(value.content());
  kestrel_array const* const array = content != nullptr ? content->get() : nullptr;
  return array != nullptr ? kestrel::deepCopy(array) : kestrel::createEmpty(kestrel::ClassId::Double);
}

Value HostArrayMarshaler::fromHost(kestrel_array const& array) const {
  bool const isNothing = kestrel::isEmpty(array) &&
                         kestrel::classIdentifier(array) == static_cast<std::uint32_t>(kestrel::ClassId::Double);
  return Value::make(metaOf(meta::SINGLE), isNothing ? HostArray() : HostArray(&array));
}

corvid::Identifier HostArrayMarshaler::dataType() const {
  static corvid::Identifier const any = corvid::internal::makeInterned("any");
  return any;
}

}  // namespace plinth::bridge
