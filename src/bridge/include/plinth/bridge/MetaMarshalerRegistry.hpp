// The marshalers of all types, by meta type. Those of the foundation's primitive types are there from the start; a
// library registers those of its own types while it is loaded.
// Ownership: owns the marshalers; lives until the process ends, so that exit handlers may still use it.
// Thread rule: changed while libraries load and unload; otherwise the host's thread.
#pragma once

#include <memory>
#include <unordered_map>

#include "groundwork/export.hpp"
#include "plinth/bridge/ValueMarshaler.hpp"

namespace plinth::bridge {

class TESSEL_EXPORT MetaMarshalerRegistry {
 public:
  static MetaMarshalerRegistry& getInstance();
  MetaMarshalerRegistry(MetaMarshalerRegistry const&) = delete;
  MetaMarshalerRegistry& operator=(MetaMarshalerRegistry const&) = delete;

  /// A marshaler registered earlier for the type is replaced.
  void registerTypeMarshaler(meta::Type const& type, std::unique_ptr<ValueMarshaler> marshaler);
  /// Does nothing for a type that has none.
  void unregisterTypeMarshaler(meta::Type const& type);

  /// Raises NoSuchType for a type without a marshaler.
  ValueMarshaler const& getPropertyMarshaler(meta::Type const& type) const;
  /// Null for a type without a marshaler.
  ValueMarshaler const* findPropertyMarshaler(meta::Type const& type) const noexcept;

 private:
  MetaMarshalerRegistry();
  template <class... T>
  void addPrimitives();

  std::unordered_map<meta::TypeImpl const*, std::unique_ptr<ValueMarshaler>> m_marshalers;
};

}  // namespace plinth::bridge
