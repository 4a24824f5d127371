#include "plinth/bridge/MarshalerRegistration.hpp"

#include "plinth/bridge/EmptyParentPackage.hpp"

namespace plinth::bridge {

MarshalerRegistration::MarshalerRegistration(std::vector<Row> const& rows) {
  for (Row const& row : rows) {
    EmptyParentPackage::Registrar::registerTypeMarshaler(row.type, row.make(row.type));
    m_types.push_back(row.type);
  }
}

MarshalerRegistration::~MarshalerRegistration() {
  for (meta::Type const& type : m_types) EmptyParentPackage::Registrar::unregisterTypeMarshaler(type);
}

}  // namespace plinth::bridge
