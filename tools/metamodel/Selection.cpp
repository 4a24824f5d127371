#include "Selection.hpp"

#include <algorithm>
#include <boost/uuid/uuid_io.hpp>
#include <groundwork/NameUuid.hpp>
#include <groundwork/Unicode.hpp>
#include <set>
#include <tessel_config_datamodel/meta/MetaPackageTessel_config_datamodel.hpp>

namespace metamodel {
namespace {

void appendTree(meta::PackageImpl const& root, std::vector<meta::PackageImpl const*>& packages) {
  packages.push_back(&root);
  for (meta::PackageImpl const* child : root.subPackages()) appendTree(*child, packages);
}

struct ByName {
  bool operator()(meta::TypeImpl const* left, meta::TypeImpl const* right) const {
    return left->narrowName() < right->narrowName();
  }
};
using Types = std::set<meta::TypeImpl const*, ByName>;

/// Notes the type, and the classes above it, if it lies in no package.
void note(meta::TypeImpl const* type, Types& found) {
  while (type != nullptr && type->owningPackage() == nullptr) {
    found.insert(type);
    auto const* const metaClass = dynamic_cast<meta::ClassImpl const*>(type);
    type = metaClass == nullptr ? nullptr : metaClass->superclass();
  }
}

void noteTyped(meta::TypedElementImpl const& element, Types& found) {
  note(element.type(), found);
  note(element.getMetaClass().impl(), found);
}

/// Notes what a type of a package builds on.
void noteAround(meta::TypeImpl const& type, Types& found) {
  note(type.getMetaClass().impl(), found);
  for (auto const* property : type.ownProperties()) noteTyped(*property, found);
  for (auto const* operation : type.ownOperations()) noteTyped(*operation, found);
  if (auto const* const metaClass = dynamic_cast<meta::ClassImpl const*>(&type)) note(metaClass->superclass(), found);
  if (auto const* const enumeration = dynamic_cast<meta::EnumImpl const*>(&type)) {
    note(enumeration->underlyingType(), found);
    for (auto const* literal : enumeration->getLiterals()) note(literal->getMetaClass().impl(), found);
  }
}

void appendCore(meta::MetaRegistry const& registry, Selection& selection) {
  Types found{registry.modelClass().impl()};
  for (auto const* package : selection.packages) {
    note(package->getMetaClass().impl(), found);
    for (auto const* type : package->types()) noteAround(*type, found);
  }
  for (auto const* type : Types(found)) note(type->getMetaClass().impl(), found);
  for (auto const* type : found) {
    if (auto const* const metaClass = dynamic_cast<meta::ClassImpl const*>(type)) {
      selection.coreClasses.push_back(metaClass);
    } else {
      selection.primitives.push_back(type);
    }
  }
}

}  // namespace

Selection select(bool all) {
  MetaPackageTessel_config_datamodel::getInstance();
  meta::MetaRegistry const& registry = meta::MetaRegistry::getInstance();
  auto const own = groundwork::nameUuid("tessel_config_datamodel");
  auto roots = registry.rootPackages();
  std::stable_partition(roots.begin(), roots.end(), [&](auto const& root) { return root->getUuid() == own; });
  Selection selection;
  for (meta::Package const& root : roots) {
    if (all || root->getUuid() == own) appendTree(*root.impl(), selection.packages);
  }
  if (all) appendCore(registry, selection);
  return selection;
}

std::string name(meta::MetaElementImpl const& element) { return groundwork::toUtf8(element.getName()); }

std::string qualifiedName(meta::PackageImpl const& package) {
  std::string result = name(package);
  for (auto const* parent = package.parentPackage(); parent != nullptr; parent = parent->parentPackage()) {
    if (!parent->getName().empty()) result.insert(0, name(*parent) + ".");
  }
  return result;
}

std::string uuid(plinth::ModelElementImpl const& element) { return boost::uuids::to_string(element.getUuid()); }

std::string nameFrom(meta::PackageImpl const* home, meta::TypeImpl const& type) {
  return home != nullptr && type.owningPackage() == home ? name(type) : type.narrowName();
}

}  // namespace metamodel
