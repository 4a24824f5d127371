// Properties that hold one element: plain references, references with an opposite, and containments.
// Ownership: the field holds a counted handle. What makes a child owned is its container link.
// Thread rule: the model's thread; a getter may resolve a proxy in place.
#pragma once

#include "tessel_config_datamodel/frame/FieldKind.hpp"
#include "tessel_config_datamodel/frame/Fields.hpp"

namespace tessel::frame {

/// Deals with what is rare in a field, a dead target or a proxy, and gives what the getter shows.
TESSEL_EXPORT ElementField const& refreshElement(Element& self, ElementField& field, PropertyDescriptor const& row);

/// The getter: a dead target of this model stays, one of another is dropped, a proxy is resolved if it can be and, with
/// an opposite, if the far end lists this element.
inline ElementField const& readElement(Element const& self, ElementField const& field, PropertyDescriptor const& row) {
  auto const* const target = field.impl();
  if (target != nullptr && (!target->isLive() || target->isProxy())) {
    return refreshElement(const_cast<Element&>(self), const_cast<ElementField&>(field), row);
  }
  return field;
}

template <class T>
T getElement(Element const& self, ElementField const& field, PropertyDescriptor const& row) {
  return static_cast<T const&>(readElement(self, field, row));
}

/// The raw store: no notice, no transaction.
inline void basicSetElement(ElementField& field, plinth::ModelElement const& target) noexcept { field = target; }

/// The bare store for whoever knows the property only by reflection. Raises NoSuchProperty for one that doesn't hold
/// one element.
TESSEL_EXPORT void basicSet(plinth::ModelElement const& element, plinth::meta::Property const& property,
                            plinth::ModelElement const& target);

// The setters. Each raises CannotModifyProxy and what checkCompatibleModel raises, before any change; a target that is
// in the field already, resolved, changes nothing.
TESSEL_EXPORT void setReference(Element& self, ElementField& field, plinth::ModelElement const& target,
                                PropertyDescriptor const& row);
TESSEL_EXPORT void setOppositeReference(Element& self, ElementField& field, plinth::ModelElement const& target,
                                        PropertyDescriptor const& row);
TESSEL_EXPORT void setContainment(Element& self, ElementField& field, plinth::ModelElement const& target,
                                  PropertyDescriptor const& row);

/// Has the far end of a link let go of `self`, which leaves its model: within the model the link just goes; in another
/// one `convert` leaves a proxy with `id`, which is computed when it is first needed.
TESSEL_EXPORT void leaveFarEnd(Element& self, plinth::ModelElement const& member, plinth::meta::PropertyImpl& opposite,
                               bool convert, boost::optional<plinth::ProxyId>& id);

/// What all three kinds share.
class TESSEL_EXPORT SingleElementKind : public FieldKind<ElementField> {
 public:
  FieldGroup group() const noexcept final { return FieldGroup::SINGLE_ELEMENT; }
  bool has(Element const& element, Row const& row) const final;
  plinth::Value get(Element& element, Row const& row, Tag const& tag) const final;
  void set(Element& element, Row const& row, plinth::Value const& value, Tag const& tag) const final;
  plinth::Value oldValue(ElementStorage& storage, Row const& row) const final;
  void basicDisassociate(Element& element, Row const& row) const final;
  void inverseAdd(Element& element, Row const& row, plinth::ModelElementImpl& far) const override;
  void inverseRemove(Element& element, Row const& row, plinth::ModelElementImpl& far) const final;
  void replaceByProxy(Element& element, Row const& row, plinth::ModelElementImpl& far,
                      plinth::ModelElement const& proxy) const final;

 protected:
  ~SingleElementKind() = default;
  virtual void store(Element& element, Row const& row, plinth::ModelElement const& target) const = 0;
};

/// What references share, with an opposite or without.
class TESSEL_EXPORT ReferenceKind : public SingleElementKind {
 public:
  using PropertyKind::build;
  void disassociate(Element& element, Row const& row) const final;
  bool containsProxyTo(Element& element, Row const& row, plinth::ModelElementImpl& far) const final;
  bool build(ElementBuilder& builder, Row const& row, plinth::Value const& value) const final;
  void link(Element& element, ElementBuilder& builder, Row const& row) const final;

 protected:
  ~ReferenceKind() = default;
};

class TESSEL_EXPORT OneWayReferenceKind final : public ReferenceKind {
 public:
  void convertToProxies(Element& element, Row const& row, bool convert,
                        boost::optional<plinth::ProxyId>& id) const override;

 protected:
  void store(Element& element, Row const& row, plinth::ModelElement const& target) const override;
};

class TESSEL_EXPORT OppositeReferenceKind final : public ReferenceKind {
 public:
  void inverseAdd(Element& element, Row const& row, plinth::ModelElementImpl& far) const override;
  void convertToProxies(Element& element, Row const& row, bool convert,
                        boost::optional<plinth::ProxyId>& id) const override;

 protected:
  void store(Element& element, Row const& row, plinth::ModelElement const& target) const override;
};

class TESSEL_EXPORT ContainmentKind final : public SingleElementKind {
 public:
  using PropertyKind::build;
  void collectContained(Element const& element, Row const& row,
                        std::vector<plinth::ModelElementImpl*>& children) const override;
  void destroyContained(Element& element, Row const& row, bool flag1, bool flag2) const override;
  bool build(ElementBuilder& builder, Row const& row,
             std::unique_ptr<plinth::ModelElementBuilder>& child) const override;
  void cascade(Element& element, ElementBuilder& builder, Row const& row, plinth::CascadeSteps& steps) const override;
  void attach(Element& element, Row const& row, plinth::ModelElement const& child) const override;

 protected:
  void store(Element& element, Row const& row, plinth::ModelElement const& target) const override;
};

inline constexpr OneWayReferenceKind referenceKind{};
inline constexpr OppositeReferenceKind oppositeReferenceKind{};
inline constexpr ContainmentKind containmentKind{};

}  // namespace tessel::frame
