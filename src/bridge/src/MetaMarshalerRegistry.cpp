#include "plinth/bridge/MetaMarshalerRegistry.hpp"

#include "HostArrayMarshaler.hpp"
#include "plinth/Messages.hpp"
#include "plinth/bridge/TypedValueMarshaler.hpp"

namespace plinth::bridge {

MetaMarshalerRegistry& MetaMarshalerRegistry::getInstance() {
  static auto* const instance = new MetaMarshalerRegistry;
  return *instance;
}

MetaMarshalerRegistry::MetaMarshalerRegistry() {
  auto const add = [this](std::unique_ptr<ValueMarshaler> marshaler) {
    meta::TypeImpl const* const type = marshaler->type().impl();
    m_marshalers.emplace(type, std::move(marshaler));
  };
  add(std::make_unique<TypedValueMarshaler<bool>>(meta::Type(StandardTypes::booleanMeta())));
  add(std::make_unique<TypedValueMarshaler<std::u16string>>(meta::Type(StandardTypes::stringMeta())));
  add(std::make_unique<TypedValueMarshaler<double>>(meta::Type(StandardTypes::realMeta())));
  add(std::make_unique<TypedValueMarshaler<int>>(meta::Type(StandardTypes::integerMeta())));
  add(std::make_unique<TypedValueMarshaler<long>>(meta::Type(StandardTypes::integer64Meta())));
  add(std::make_unique<TypedValueMarshaler<unsigned long>>(meta::Type(StandardTypes::uInteger64Meta())));
  add(std::make_unique<TypedValueMarshaler<unsigned int>>(meta::Type(StandardTypes::unlimitedNaturalMeta())));
  add(std::make_unique<HostArrayMarshaler>(meta::Type(StandardTypes::kestrelArrayMeta())));
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
