// Packages: the tree of names that types stand in.
// Ownership and thread rule: see Element.hpp.
#pragma once

#include <string>
#include <vector>

#include "plinth/meta/Type.hpp"

namespace plinth::meta {

class TESSEL_EXPORT Package : public ModelElement {
 public:
  using Impl = PackageImpl;
  Package() noexcept = default;
  explicit Package(PackageImpl* impl) noexcept;
  static Class const& metaClass();
  /// A new package, inside the open transaction of `model`.
  static Package create(Model const& model, boost::uuids::uuid const& uuid);
  PackageImpl* impl() const noexcept;
  PackageImpl* operator->() const noexcept { return impl(); }
};

/// The URIs of imported packages, each once, in the order in which they came.
class TESSEL_EXPORT ImportedURIs {
 public:
  /// Appends those that are not there yet.
  void insert(std::vector<std::u16string> const& uris);
  std::vector<std::u16string> const& values() const noexcept { return m_uris; }

 private:
  std::vector<std::u16string> m_uris;
};

class TESSEL_EXPORT PackageImpl : public MetaElementImpl {
 public:
  PackageImpl(Model const& model, boost::uuids::uuid const& uuid) : MetaElementImpl(model, uuid, CoreClass::PACKAGE) {}

  std::u16string const& uri() const noexcept { return m_uri; }
  void setUri(std::u16string uri);
  PackageImpl* parentPackage() const noexcept { return m_parent; }
  void setParentPackage(Package const& parent);
  std::vector<PackageImpl*> const& subPackages() const noexcept { return m_packages; }
  /// In the order of weaving, which is that of creation.
  std::vector<TypeImpl*> const& types() const noexcept { return m_types; }
  std::vector<std::u16string> const& getImportedPackageURIs() const noexcept { return m_imported.values(); }
  /// For the transaction that makes the package. Raises as the setters do.
  ImportedURIs& getImportedPackageURIsMutable();

  void basicDisassociateAll() override;
  void doDestroy(bool flag1, bool flag2) override;

 private:
  friend class TypeImpl;
  std::u16string m_uri;
  PackageImpl* m_parent = nullptr;
  std::vector<PackageImpl*> m_packages;
  std::vector<TypeImpl*> m_types;
  ImportedURIs m_imported;
};

inline Package::Package(PackageImpl* impl) noexcept : ModelElement(impl) {}
inline PackageImpl* Package::impl() const noexcept { return static_cast<PackageImpl*>(ModelElement::impl()); }

}  // namespace plinth::meta
