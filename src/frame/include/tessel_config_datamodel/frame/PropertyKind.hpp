// What a property does, by kind: each kind of property is one class derived from PropertyKind, each operation of the
// scheme one virtual function here. The operations of an element are folds of these over the rows of its class.
// Ownership: kinds are static objects without state.
// Thread rule: the thread of the element's model.
#pragma once

#include <memory>
#include <vector>

#include "plinth/Builder.hpp"
#include "plinth/Value.hpp"
#include "plinth/meta/Property.hpp"
#include "tessel_config_datamodel/frame/PropertyDescriptor.hpp"

namespace tessel::frame {

class ElementStorage;
class ElementBuilder;

/// The fields of an element stand in this order, whatever the order of the property indexes.
enum class FieldGroup { ATTRIBUTE, SINGLE_ELEMENT, COLLECTION };

/// What may be refused raises the messages of the element's setters, before any change. Where an operation has a
/// default, it is that of a plain value without links: it does nothing, and gives null, false or an empty value.
class TESSEL_EXPORT PropertyKind {
 public:
  using Row = PropertyDescriptor;
  using Tag = plinth::ReflectionPrivateTag;

  constexpr PropertyKind() = default;
  PropertyKind(PropertyKind const&) = delete;
  PropertyKind& operator=(PropertyKind const&) = delete;

  virtual FieldGroup group() const noexcept = 0;

  // Reflection.
  /// Whether the field holds anything: always for a plain attribute, for the others a value, a live element, a member.
  virtual bool has(Element const& element, Row const& row) const = 0;
  /// A managed copy of an attribute, an unmanaged value that points at a collection. Resolves proxies if `tag` says so,
  /// which is why the element is not const.
  virtual plinth::Value get(Element& element, Row const& row, Tag const& tag) const = 0;
  /// Takes the steps of the typed setter. Raises what that raises, CannotCastIncompatibleTypes for a value of another
  /// type, and NoSuchProperty where the kind can't be set by value.
  virtual void set(Element& element, Row const& row, plinth::Value const& value, Tag const& tag) const;

  // Change records. A slot of a record is raw memory until `keepOld` and ends with `dropOld`; who calls them knows from
  // the record's bits which slots are constructed.
  struct Slot {
    std::size_t size = 0;
    std::size_t alignment = 1;
  };
  /// What the slot takes; nothing for a kind that keeps no old value.
  virtual Slot slot() const noexcept;
  /// Constructs the slot from the field. May run out of memory: the change has not begun.
  virtual void keepOld(Element const& element, ElementStorage& storage, Row const& row) const;
  /// Puts the old value back into the field; what is in the slot afterwards doesn't matter. Must not fail.
  virtual void restoreOld(Element& element, ElementStorage& storage, Row const& row) const noexcept;
  virtual void dropOld(ElementStorage& storage, Row const& row) const noexcept;
  /// Constructs the slot of `to`, an enclosing level's record that has none yet; the one of `from` is dropped later.
  virtual void moveOld(ElementStorage& from, ElementStorage& to, Row const& row) const noexcept;
  /// What a listener is given. Points at the slot where the value is a collection.
  virtual plinth::Value oldValue(ElementStorage& storage, Row const& row) const;
  /// Whether the field holds again what the slot holds. O(1) but for collections of values.
  virtual bool isUnchanged(Element const& element, ElementStorage const& storage, Row const& row) const;
  /// The record is about to be published: a slot that follows the live collection has to stand by itself from now on.
  virtual void sealOld(ElementStorage& storage, Row const& row) const noexcept;

  // Teardown and links.
  /// Appends the real elements that a containment holds.
  virtual void collectContained(Element const& element, Row const& row,
                                std::vector<plinth::ModelElementImpl*>& children) const;
  /// Sends the children of a containment into teardown and empties it. The flags are handed on as they came.
  virtual void destroyContained(Element& element, Row const& row, bool flag1, bool flag2) const;
  /// Lets go of what a reference refers to, so that the far end of an opposite no longer lists this element.
  virtual void disassociate(Element& element, Row const& row) const;
  /// Empties the field and nothing else: for an element that is gone for good.
  virtual void basicDisassociate(Element& element, Row const& row) const;
  /// The collection of a many-valued property, or null; none is made.
  virtual plinth::AbstractOwnedCollection* collection(Element const& element, Row const& row) const;
  /// The far end of a link has taken this element in: `far` goes into the field, with notice.
  virtual void inverseAdd(Element& element, Row const& row, plinth::ModelElementImpl& far) const;
  /// The far end has let go: `far` leaves the field. A single element's field is cleared whatever it holds.
  virtual void inverseRemove(Element& element, Row const& row, plinth::ModelElementImpl& far) const;
  /// Whether the field holds `far`, or a proxy that stands for it; such a proxy is replaced by it. References only.
  virtual bool containsProxyTo(Element& element, Row const& row, plinth::ModelElementImpl& far) const;
  /// Drops the references of an element that leaves memory. With `convert`, far ends in other models keep a proxy of
  /// this `id`, which the first of them fills in.
  virtual void convertToProxies(Element& element, Row const& row, bool convert,
                                boost::optional<plinth::ProxyId>& id) const;
  /// Puts `proxy` where the field holds `far`, which leaves memory.
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
  /// Appends a step for each child builder of a containment, in their order; the children are created after `element`.
  virtual void cascade(Element& element, ElementBuilder& builder, Row const& row, plinth::CascadeSteps& steps) const;
  /// A child that such a step created goes into its place.
  virtual void attach(Element& element, Row const& row, plinth::ModelElement const& child) const;
  /// A type stamp, on a new element or in a builder.
  virtual void stamp(Element& element, Row const& row, int value) const;
  virtual void stamp(ElementBuilder& builder, Row const& row, int value) const;

 protected:
  ~PropertyKind() = default;
};

/// The rows of a class and of its bases in one, for what is done often.
struct ClassChain {
  std::vector<PropertyDescriptor const*> byIndex;  ///< the row of each index; null at 0
  /// Rows of properties that hold elements, without the derived ones: in the order of the fields, the class itself
  /// first.
  std::vector<PropertyDescriptor const*> links;
  std::size_t recordSize = 0;  ///< bytes of a change record with room for each property
};

/// Ties the table to its class, which the metamodel has woven.
void bind(ClassTable& table, plinth::meta::Class const& metaClass);
/// Gathers the rows of the class and its bases, and lays out its change record: once.
void layOut(ClassTable& table);

/// The row of that index in the chain of `table`, or null. O(1).
inline PropertyDescriptor const* findDescriptor(ClassTable const& table, unsigned long index) noexcept {
  auto const& byIndex = table.chain->byIndex;
  return index < byIndex.size() ? byIndex[index] : nullptr;
}

/// The row of `property` in the chain of `table`, or null. Compares identities. O(1); for a derived one O(length of the
/// chain).
inline PropertyDescriptor const* findDescriptor(ClassTable const& table,
                                                plinth::meta::PropertyImpl const& property) noexcept {
  if (int const index = property.index(); index != 0) {
    auto const* const row = findDescriptor(table, static_cast<unsigned long>(index));
    return row != nullptr && row->property == &property ? row : nullptr;
  }
  std::size_t const position = property.position();
  for (ClassTable const* each = &table; each != nullptr; each = each->base) {
    if (position < each->count && each->properties[position].property == &property) return &each->properties[position];
  }
  return nullptr;
}

/// Calls `visit(row)` for each row of the class and its bases whose property holds elements: in the order of the
/// fields, the class itself first. Derived ones are left out.
template <class Visitor>
void forEachLink(ClassTable const& table, Visitor visit) {
  for (PropertyDescriptor const* row : table.chain->links) visit(*row);
}

/// The element in `value`, empty where it has none. Raises CannotCastIncompatibleTypes unless the value is one element
/// of a class that fits the row's property.
TESSEL_EXPORT plinth::ModelElement elementFrom(plinth::Value const& value, PropertyDescriptor const& row);

}  // namespace tessel::frame
