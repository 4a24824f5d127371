// The root of every generated meta package: brings a model's metamodel up from its rows, once in a process.
//
// Everything happens under the registry's recursive mutex, with the registry's model thawed, and in one transaction: a
// failure leaves nothing behind, and the next attempt starts anew. Ownership: a meta package is never destroyed. Thread
// rule: immutable once it stands.
#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <unordered_map>

#include "tessel_config_datamodel/meta/MetaRows.hpp"

namespace tessel::metamodel {

/// The class whose handle stands at SLOT of meta package P, which is built at the first call.
template <class P, plinth::meta::Class P::*SLOT>
plinth::meta::Class const& classOf() {
  return P::getInstance().*SLOT;
}

class TESSEL_EXPORT ModelMetaPackage : public plinth::meta::AbstractMetaPackage {
 public:
  /// The handles of a datatype's properties, in declared order.
  std::vector<plinth::meta::Property const*> handlesOf(DatatypeRow const& row);

 protected:
  using MetaRegistry = plinth::meta::MetaRegistry;
  using PropertySerializerRegistry = plinth::meta::PropertySerializerRegistry;

  /// The one instance of meta package P, built at the first call. Callers that come meanwhile wait; a build that fails
  /// is tried again by the next call. The registry's mutex is the only lock, so that meta packages which need each
  /// other can be asked for in any order.
  template <class P>
  static P& instance() {
    static std::atomic<P*> built{nullptr};
    if (P* const present = built.load(std::memory_order_acquire)) return *present;
    std::lock_guard const lock(MetaRegistry::getInstance().mutex());
    if (built.load(std::memory_order_relaxed) == nullptr) built.store(new P(), std::memory_order_release);
    return *built.load(std::memory_order_relaxed);
  }
  /// Replaces an older incarnation of the model, makes and weaves all packages, commits, and registers the root.
  void initialize(RootRow const& root);
  /// Makes a package, its types, properties, operations and literals, unconnected. Raises NoSuchType.
  void instantiate(PackageRow const& package, MetaRegistry& registry);
  /// Connects what was made: owners, superclasses, types, opposites, qualifiers, factories, serializers. Raises
  /// NoSuchType.
  void weave(PackageRow const& package, MetaRegistry& registry, PropertySerializerRegistry& serializers);

 private:
  class Maker;
  class Weaver;

  /// The handle at a row's place.
  template <class Handle>
  Handle& handleAt(std::size_t slot) noexcept {
    return *reinterpret_cast<Handle*>(reinterpret_cast<std::byte*>(this) + slot);
  }
  virtual void instantiateAll(MetaRegistry& registry) = 0;
  virtual void weaveAll(MetaRegistry& registry, PropertySerializerRegistry& serializers) = 0;

  /// While the model is made: what rows may name of it, by qualified name.
  std::unordered_map<std::u16string, plinth::meta::Type> m_types;
  std::unordered_map<std::string, plinth::meta::Property> m_properties;
};

}  // namespace tessel::metamodel
