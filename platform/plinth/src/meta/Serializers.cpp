#include "plinth/meta/Serializers.hpp"

namespace plinth::meta {

DatatypeSerializer::~DatatypeSerializer() = default;
PropertySerializer::~PropertySerializer() = default;

PropertySerializerRegistry& PropertySerializerRegistry::getInstance() {
  static PropertySerializerRegistry* const instance = new PropertySerializerRegistry();
  return *instance;
}

void PropertySerializerRegistry::registerDatatypeSerializer(DataType const& type,
                                                            std::unique_ptr<DatatypeSerializer> serializer) {
  m_datatypes[type.impl()] = std::move(serializer);
}

void PropertySerializerRegistry::registerPropertySerializer(Type const& type,
                                                            std::unique_ptr<PropertySerializer> serializer,
                                                            std::string const& formatName) {
  m_properties[{type.impl(), formatName}] = std::move(serializer);
}

DatatypeSerializer const* PropertySerializerRegistry::datatypeSerializer(Type const& type) const {
  auto const found = m_datatypes.find(type.impl());
  return found == m_datatypes.end() ? nullptr : found->second.get();
}

PropertySerializer const* PropertySerializerRegistry::propertySerializer(Type const& type,
                                                                         std::string const& formatName) const {
  auto const found = m_properties.find({type.impl(), formatName});
  return found == m_properties.end() ? nullptr : found->second.get();
}

}  // namespace plinth::meta
