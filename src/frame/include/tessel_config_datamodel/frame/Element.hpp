// The root of every generated implementation class: each operation of the foundation, once, as a walk over the rows of
// the element's class and then of its bases. Ownership and thread rule: see plinth/ModelElement.hpp.
#pragma once

#include "plinth/Changes.hpp"
#include "plinth/Model.hpp"
#include "plinth/Value.hpp"
#include "tessel_config_datamodel/frame/ElementStorage.hpp"
#include "tessel_config_datamodel/frame/PropertyKind.hpp"

namespace tessel::frame {

class TESSEL_EXPORT Element : public plinth::ModelElementImpl {
 public:
  using Tag = plinth::ReflectionPrivateTag;
  using Storage = ElementStorage;
  using ModelElementImpl::getPropertyValue;
  using ModelElementImpl::hasPropertyValue;
  using ModelElementImpl::setPropertyValue;

  virtual ClassTable const& classTable() const noexcept = 0;

  plinth::meta::Class const& getMetaClass() const final { return *classTable().handle; }
  bool hasPropertyValue(plinth::meta::Property const& property, Tag const& tag) const final;
  plinth::Value getPropertyValue(plinth::meta::Property const& property, Tag const& tag) const final;
  void setPropertyValue(plinth::meta::Property const& property, plinth::Value const& value, Tag const& tag) final;
  plinth::meta::Property getPropertyByIndex(unsigned long index) const final;

  plinth::Changes* createChanges() const final;
  void copyValue(plinth::Storage* storage, unsigned long index) const final;
  void copyStateFromStorage(plinth::Storage* storage) final;

  void doDestroy(bool flag1, bool flag2) final;
  void disassociateIncoming() final;
  void basicDisassociateAll() final;
  void invalidate() final;
  void collectContained(std::vector<plinth::ModelElementImpl*>& children) const final;
  void inverseAdd(plinth::ModelElementImpl& element, plinth::meta::PropertyImpl& property) final;
  void inverseRemove(plinth::ModelElementImpl& element, plinth::meta::PropertyImpl& property) final;
  bool inverseContainsProxyTo(plinth::ModelElementImpl& element, plinth::meta::PropertyImpl& property) const final;
  void convertReferencesToProxies(bool convert, boost::optional<plinth::ProxyId>& id) final;
  void convertToProxy(plinth::meta::PropertyImpl& property, plinth::ProxyId const& id,
                      plinth::ModelElementImpl& element) final;
  plinth::ReferenceCollection* referenceCollection(plinth::meta::PropertyImpl const& property) const final;

 protected:
  using ModelElementImpl::ModelElementImpl;
  /// The change storage of the class: `makeStorage<Storage>()`.
  template <class S>
  S* makeStorage() const {
    return new (recordPool()) S(*this);
  }
};

/// The field at a row's place in `element`.
template <class T>
T& fieldOf(Element& element, PropertyDescriptor const& row) noexcept {
  return *reinterpret_cast<T*>(reinterpret_cast<std::byte*>(&element) + row.field);
}
template <class T>
T const& fieldOf(Element const& element, PropertyDescriptor const& row) noexcept {
  return *reinterpret_cast<T const*>(reinterpret_cast<std::byte const*>(&element) + row.field);
}

/// Calls `visit(row)` for each row of the class and its bases whose property holds elements: in the order of the
/// fields, the class itself first. Derived ones are left out.
template <class Visitor>
void forEachLink(ClassTable const& table, Visitor visit) {
  for (PropertyDescriptor const* row : table.chain->links) visit(*row);
}

}  // namespace tessel::frame
