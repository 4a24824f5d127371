#include "plinth/meta/Package.hpp"

#include <algorithm>

namespace plinth::meta {

Package Package::create(Model const& model, boost::uuids::uuid const& uuid) {
  Package package;
  static_cast<ModelElement&>(package) = ModelElement(new PackageImpl(model, uuid), Adopt{});
  core(*package).notifyCreated();
  return package;
}

void PackageImpl::setUri(std::u16string uri) {
  requireNew();
  m_uri = std::move(uri);
}

void PackageImpl::setParentPackage(Package const& parent) {
  requireNew();
  parent->m_packages.push_back(this);
  m_parent = parent.impl();
  becomePartOf(*m_parent);
}

ImportedURIs& PackageImpl::getImportedPackageURIsMutable() {
  requireNew();
  return m_imported;
}

void ImportedURIs::insert(std::vector<std::u16string> const& uris) {
  for (std::u16string const& uri : uris) {
    if (std::find(m_uris.begin(), m_uris.end(), uri) == m_uris.end()) m_uris.push_back(uri);
  }
}

void PackageImpl::basicDisassociateAll() {
  m_parent = nullptr;
  m_packages.clear();
  m_types.clear();
}

void PackageImpl::doDestroy(bool flag1, bool flag2) {
  for (PackageImpl* package : m_packages) package->destroyRecursively(flag1, false, flag2);
  for (TypeImpl* type : m_types) core(*type).destroyRecursively(flag1, false, flag2);
}

}  // namespace plinth::meta
