// The process-wide registry of metamodels: types by name, root packages by URI, and the one model that holds all of it.
// Ownership: lives until the process ends.
// Thread rule: changes happen under `mutex()` with the model thawed; look-ups of what has been registered need no lock
// once the meta package that registered it has been built.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "plinth/Freezer.hpp"
#include "plinth/meta/Enum.hpp"
#include "plinth/meta/Package.hpp"
#include "plinth/meta/Property.hpp"

namespace plinth::meta {

class TESSEL_EXPORT MetaRegistry {
 public:
  static MetaRegistry& getInstance();
  MetaRegistry(MetaRegistry const&) = delete;
  MetaRegistry& operator=(MetaRegistry const&) = delete;

  /// The model of all metamodel objects; frozen except while somebody holds a thaw.
  Model const& model() const noexcept { return m_model; }
  Model::Freezer& freezer() noexcept { return m_freezer; }
  std::recursive_mutex& mutex() noexcept { return m_mutex; }

  void registerType(Type const& type, CollectionFactory collections, BuilderFactory builders);
  /// Makes the type known under each name that is not empty.
  void registerTypeNames(Type const& type, std::string const& nativeName, std::string const& dottedName,
                         std::string const& aliasName);
  /// The type of any registered name. Raises NoSuchType.
  Type getType(std::u16string const& name) const;
  /// The type of any registered name, or an empty handle.
  Type findType(std::string_view name) const;
  /// The primitive type of that name, or an empty handle.
  PrimitiveType getPrimitiveType(std::string_view name) const;

  std::vector<Package> rootPackages() const;

  /// The foundation's own classes: plinth.ModelElement, plinth.Model and those of the metamodel's objects.
  Class const& modelElementClass() const noexcept { return m_coreClasses.front(); }
  Class const& modelClass() const noexcept { return m_coreClasses[1]; }
  /// Of a metamodel's object, which can't be there without the registry.
  static Class const& coreClass(CoreClass which) noexcept {
    return s_current->m_coreClasses[2 + static_cast<std::size_t>(which)];
  }

 private:
  friend class AbstractMetaPackage;
  MetaRegistry();
  void buildCore();

  static MetaRegistry* s_current;

  Model m_model;
  Model::Freezer m_freezer;
  std::recursive_mutex m_mutex;
  std::vector<Class> m_coreClasses;
  std::map<std::string, Type, std::less<>> m_types;
  std::map<std::string, PrimitiveType, std::less<>> m_primitives;
  std::map<std::u16string, Package> m_rootPackages;
  std::vector<Package> m_retired;  ///< replaced metamodels, kept readable
};

}  // namespace plinth::meta

namespace plinth::internal {
/// The primitive type of that name. Raises NoSuchType.
TESSEL_EXPORT meta::PrimitiveType getPrimitiveTypeFromMetaRegistry(std::string_view name);
}  // namespace plinth::internal
