// What a property does, by kind: each kind of property is one class derived from PropertyKind, each operation of the
// scheme one virtual function here. The operations of an element are folds of these over the rows of its class.
// Ownership: kinds are static objects without state.
// Thread rule: the thread of the element's model.
#pragma once

#include <memory>
#include <vector>

#include "plinth/Builder.hpp"
#include "plinth/Value.hpp"
#include "tessel_config_datamodel/frame/PropertyDescriptor.hpp"

namespace tessel::frame {

class ElementStorage;
class ElementBuilder;

/// The fields of an element stand in this order, whatever the order of the property indexes.
enum class FieldGroup { ATTRIBUTE, SINGLE_ELEMENT, COLLECTION };

class TESSEL_EXPORT PropertyKind {
 public:
  using Row = PropertyDescriptor;
  using Tag = plinth::ReflectionPrivateTag;

  constexpr PropertyKind() = default;
  PropertyKind(PropertyKind const&) = delete;
  PropertyKind& operator=(PropertyKind const&) = delete;

  virtual FieldGroup group() const noexcept = 0;

  // Reflection.
  virtual bool has(Element const& element, Row const& row) const = 0;
  virtual plinth::Value get(Element& element, Row const& row, Tag const& tag) const = 0;
  /// Raises NoSuchProperty where the kind can't be set by value.
  virtual void set(Element& element, Row const& row, plinth::Value const& value, Tag const& tag) const;

  // Change storage. A slot is constructed by `keepOld` and ends with `dropOld`.
  virtual void keepOld(Element const& element, ElementStorage& storage, Row const& row) const;
  /// Puts the old value back into the field; what is in the slot afterwards doesn't matter. Must not fail.
  virtual void restoreOld(Element& element, ElementStorage& storage, Row const& row) const noexcept;
  virtual void dropOld(ElementStorage& storage, Row const& row) const noexcept;
  virtual void moveOld(ElementStorage& from, ElementStorage& to, Row const& row) const noexcept;
  virtual plinth::Value oldValue(ElementStorage& storage, Row const& row) const;
  virtual bool isUnchanged(Element const& element, ElementStorage const& storage, Row const& row) const;
  virtual void sealOld(ElementStorage& storage, Row const& row) const noexcept;

  // Teardown and links; nothing to do for plain values.
  virtual void collectContained(Element const& element, Row const& row,
                                std::vector<plinth::ModelElementImpl*>& children) const;
  virtual void destroyContained(Element& element, Row const& row, bool flag1, bool flag2) const;
  virtual void disassociate(Element& element, Row const& row) const;
  virtual void basicDisassociate(Element& element, Row const& row) const;
  virtual plinth::AbstractOwnedCollection* collection(Element const& element, Row const& row) const;
  virtual void inverseAdd(Element& element, Row const& row, plinth::ModelElementImpl& far) const;
  virtual void inverseRemove(Element& element, Row const& row, plinth::ModelElementImpl& far) const;
  virtual bool containsProxyTo(Element& element, Row const& row, plinth::ModelElementImpl& far) const;
  virtual void convertToProxies(Element& element, Row const& row, bool convert,
                                boost::optional<plinth::ProxyId>& id) const;
  virtual void replaceByProxy(Element& element, Row const& row, plinth::ModelElementImpl& far,
                              plinth::ModelElement const& proxy) const;

  // Builders.
  /// Takes the content of `value`; false where the kind takes no values.
  virtual bool build(ElementBuilder& builder, Row const& row, plinth::Value const& value) const;
  /// Takes the child builder; false where the kind contains nothing.
  virtual bool build(ElementBuilder& builder, Row const& row,
                     std::unique_ptr<plinth::ModelElementBuilder>& child) const;
  /// The field of a new element from the builder.
  virtual void initialize(Element& element, ElementBuilder& builder, Row const& row) const;
  /// Links from the builder, through the full setter or the collection.
  virtual void link(Element& element, ElementBuilder& builder, Row const& row) const;
  virtual void cascade(Element& element, ElementBuilder& builder, Row const& row, plinth::CascadeSteps& steps) const;
  virtual void attach(Element& element, Row const& row, plinth::ModelElement const& child) const;
  /// A type stamp, on a new element or in a builder.
  virtual void stamp(Element& element, Row const& row, int value) const;
  virtual void stamp(ElementBuilder& builder, Row const& row, int value) const;

 protected:
  ~PropertyKind() = default;
};

/// The element in `value`, empty where it has none. Raises CannotCastIncompatibleTypes unless the value is one element
/// of a class that fits the row's property.
TESSEL_EXPORT plinth::ModelElement elementFrom(plinth::Value const& value, PropertyDescriptor const& row);

}  // namespace tessel::frame
