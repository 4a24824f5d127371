// What of the registered metamodels is printed: packages in the order in which they came to be, parents first, and
// types in metamodel order. Names are UTF-8. Ownership: refers to the metamodel, which lives as long as the process.
// Thread rule: read only.
#pragma once

#include <plinth/meta/MetaRegistry.hpp>
#include <string>
#include <vector>

namespace metamodel {

namespace meta = plinth::meta;

struct Selection {
  std::vector<meta::PackageImpl const*> packages;
  /// In no package: the foundation's classes and primitive types that the packages build on, by name.
  std::vector<meta::ClassImpl const*> coreClasses;
  std::vector<meta::TypeImpl const*> primitives;
};

/// The packages of the configuration model; with `all`, then those of the models it builds on, and what is in no
/// package.
Selection select(bool all);

/// Dotted; the root's is empty.
std::string qualifiedName(meta::PackageImpl const& package);
std::string name(meta::MetaElementImpl const& element);
std::string uuid(plinth::ModelElementImpl const& element);
/// The name of a type outside `home` in full, of one inside it by itself.
std::string nameFrom(meta::PackageImpl const* home, meta::TypeImpl const& type);

/// The types of class T among those of the package, in metamodel order.
template <class T>
std::vector<T const*> typesOf(meta::PackageImpl const& package) {
  std::vector<T const*> found;
  for (meta::TypeImpl const* type : package.types()) {
    if (auto const* wanted = dynamic_cast<T const*>(type)) found.push_back(wanted);
  }
  return found;
}

}  // namespace metamodel
