// The root of every generated implementation class: each operation of the foundation, once, as a walk over the rows of
// the element's class and then of its bases. Ownership and thread rule: see plinth/ModelElement.hpp.
#pragma once

#include "plinth/ModelElement.hpp"
#include "tessel_config_datamodel/frame/PropertyDescriptor.hpp"

namespace tessel::frame {

class ElementStorage;

/// What an element is made with; only the scheme makes one.
class Creation {
 private:
  friend class Scheme;
  friend class Element;
  Creation(plinth::ModelImpl& model, boost::uuids::uuid const& uuid) noexcept : m_model(model), m_uuid(uuid) {}

  plinth::ModelImpl& m_model;
  boost::uuids::uuid const& m_uuid;
};

class TESSEL_EXPORT Element : public plinth::ModelElementImpl {
 public:
  using Tag = plinth::ReflectionPrivateTag;
  using Storage = ElementStorage;
  using ModelElementImpl::getPropertyValue;
  using ModelElementImpl::hasPropertyValue;
  using ModelElementImpl::setPropertyValue;

  explicit Element(Creation const& creation) : ModelElementImpl(creation.m_model, creation.m_uuid) {}

  virtual ClassTable const& classTable() const noexcept = 0;

  plinth::meta::Class const& getMetaClass() const final { return *classTable().handle; }

  bool hasPropertyValue(plinth::meta::Property const& property, Tag const& tag) const final;
  plinth::Value getPropertyValue(plinth::meta::Property const& property, Tag const& tag) const final;
  void setPropertyValue(plinth::meta::Property const& property, plinth::Value const& value, Tag const& tag) final;
  plinth::meta::Property getPropertyByIndex(unsigned long index) const final;

 protected:
  plinth::Changes* createChanges() const final;
  plinth::Storage* createStorage() const final;
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
};

}  // namespace tessel::frame
