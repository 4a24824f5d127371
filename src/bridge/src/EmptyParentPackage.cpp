#include "plinth/bridge/EmptyParentPackage.hpp"

#include "plinth/bridge/MetaMarshalerRegistry.hpp"

namespace plinth::bridge {

using corvid::CorvidPackage;
using corvid::Identifier;
using corvid::internal::makeInterned;

EmptyParentPackage::EmptyParentPackage(std::string const& fullName) : m_name(fullName) {
  std::size_t const dot = fullName.rfind('.');
  if (dot == std::string::npos) return;
  m_name = fullName.substr(dot + 1);
  m_parentName = fullName.substr(0, dot);
}

void EmptyParentPackage::registerPackage(std::unique_ptr<EmptyParentPackage> package) {
  std::string const& parentName = package->m_parentName;
  std::string const fullName = parentName.empty() ? package->m_name : parentName + "." + package->m_name;
  // The entry of a library may run again: what the host has of it by then may be in use.
  if (CorvidPackage::getPackage(makeInterned(fullName)) != nullptr) return;
  if (parentName.empty()) {
    CorvidPackage::addPackage(std::move(package));
    return;
  }
  Identifier const parent = makeInterned(parentName);
  if (CorvidPackage::getPackage(parent) == nullptr) registerPackage(std::make_unique<EmptyParentPackage>(parentName));
  CorvidPackage::getPackage(parent)->addSubpackage(std::move(package));
}

void EmptyParentPackage::initializePackage(CorvidPackage*) {}

void EmptyParentPackage::Registrar::registerTypeMarshaler(meta::Type const& type,
                                                          std::unique_ptr<ValueMarshaler> marshaler) {
  MetaMarshalerRegistry::getInstance().registerTypeMarshaler(type, std::move(marshaler));
}

void EmptyParentPackage::Registrar::unregisterTypeMarshaler(meta::Type const& type) {
  MetaMarshalerRegistry::getInstance().unregisterTypeMarshaler(type);
}

}  // namespace plinth::bridge
