#include "plinth/bridge/MetaMarshalerRegistry.hpp"

#include "HostArrayMarshaler.hpp"
#include "plinth/Messages.hpp"
#include "plinth/bridge/RowProperties.hpp"
#include "plinth/bridge/TypedValueMarshaler.hpp"

namespace plinth::bridge {

MetaMarshalerRegistry& MetaMarshalerRegistry::getInstance() {
  static auto* const instance = new MetaMarshalerRegistry;
  return *instance;
}

MetaMarshalerRegistry::MetaMarshalerRegistry() {
  addPrimitives<bool, std::u16string, double, int, long, unsigned long, unsigned int>();
  meta::Type const arrays(StandardTypes::kestrelArrayMeta());
  registerTypeMarshaler(arrays, std::make_unique<HostArrayMarshaler>(arrays));
}

template <class... T>
void MetaMarshalerRegistry::addPrimitives() {
  (registerTypeMarshaler(meta::Type(MetaTypeOf<T>::type()), std::make_unique<FieldMarshaler<T, TypedValueMarshaler<T>>>(
                                                                meta::Type(MetaTypeOf<T>::type()))),
   ...);
}

void MetaMarshalerRegistry::registerTypeMarshaler(meta::Type const& type, std::unique_ptr<ValueMarshaler> marshaler) {
  m_marshalers.insert_or_assign(type.impl(), std::move(marshaler));
}

void MetaMarshalerRegistry::unregisterTypeMarshaler(meta::Type const& type) { m_marshalers.erase(type.impl()); }

ValueMarshaler const& MetaMarshalerRegistry::getPropertyMarshaler(meta::Type const& type) const {
  if (ValueMarshaler const* const found = findPropertyMarshaler(type)) return *found;
  reportException(messages::NoSuchType(type.isEmpty() ? std::u16string() : type->getQualifiedName()));
}

ValueMarshaler const* MetaMarshalerRegistry::findPropertyMarshaler(meta::Type const& type) const noexcept {
  auto const found = m_marshalers.find(type.impl());
  return found == m_marshalers.end() ? nullptr : found->second.get();
}

kestrel::OwnedArray marshalCollection(AbstractPrimitiveCollection const* collection) {
  if (collection == nullptr) return kestrel::createEmpty(kestrel::ClassId::Double);
  meta::Type const type = collection->property()->getType();
  return MetaMarshalerRegistry::getInstance().getPropertyMarshaler(type).fromCollection(*collection);
}

}  // namespace plinth::bridge
