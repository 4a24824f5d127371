// Properties that hold many elements: sequences, sets and maps, contained or referred to, and derived views.
// Ownership: the element owns the collection, which is made when somebody first asks for it.
// Thread rule: the model's thread; a getter may resolve proxies in place.
#pragma once

#include <memory>

#include "plinth/ReferenceCollection.hpp"
#include "plinth/collections/ElementMap.hpp"
#include "plinth/collections/ElementSequence.hpp"
#include "plinth/collections/SubsettedElementSet.hpp"
#include "plinth/collections/UnorderedElementSet.hpp"
#include "tessel_config_datamodel/frame/Collection.hpp"

namespace tessel::frame {

/// What every kind of element collection does; a typed kind only makes the collection.
class TESSEL_EXPORT ElementCollectionKind : public CollectionKind {
 public:
  using PropertyKind::build;
  FieldGroup group() const noexcept final { return FieldGroup::COLLECTION; }
  plinth::Value get(Element& element, Row const& row, Tag const& tag) const final;
  bool isUnchanged(Element const& element, ElementStorage const& storage, Row const& row) const final;

  void collectContained(Element const& element, Row const& row,
                        std::vector<plinth::ModelElementImpl*>& children) const final;
  void destroyContained(Element& element, Row const& row, bool flag1, bool flag2) const final;
  void disassociate(Element& element, Row const& row) const final;
  void basicDisassociate(Element& element, Row const& row) const final;
  void inverseAdd(Element& element, Row const& row, plinth::ModelElementImpl& far) const final;
  void inverseRemove(Element& element, Row const& row, plinth::ModelElementImpl& far) const final;
  bool containsProxyTo(Element& element, Row const& row, plinth::ModelElementImpl& far) const final;
  void convertToProxies(Element& element, Row const& row, bool convert,
                        boost::optional<plinth::ProxyId>& id) const final;
  void replaceByProxy(Element& element, Row const& row, plinth::ModelElementImpl& far,
                      plinth::ModelElement const& proxy) const final;

  bool build(ElementBuilder& builder, Row const& row, plinth::Value const& value) const final;
  bool build(ElementBuilder& builder, Row const& row, std::unique_ptr<plinth::ModelElementBuilder>& child) const final;
  void link(Element& element, ElementBuilder& builder, Row const& row) const final;
  void cascade(Element& element, ElementBuilder& builder, Row const& row, plinth::CascadeSteps& steps) const final;
  void attach(Element& element, Row const& row, plinth::ModelElement const& child) const final;

  plinth::ReferenceCollection& require(Element& element, Row const& row) const {
    return static_cast<plinth::ReferenceCollection&>(requireAny(element, row));
  }

 protected:
  ~ElementCollectionKind() = default;
  virtual void reserve(plinth::ReferenceCollection& collection, std::size_t count) const;
};

/// A sequence or a set; C is the collection's class.
template <class C>
class TypedCollectionKind final : public ElementCollectionKind {
 protected:
  CollectionField make(Element& element, Row const& row) const override {
    return std::make_unique<C>(plinth::CollectionPrivateTag(), &element, row.property, row.property->opposite());
  }
  void reserve(plinth::ReferenceCollection& collection, std::size_t count) const override {
    static_cast<C&>(collection).reserve(count);
  }
};

/// A map; `KEY` is the member of T::Impl that gives the key.
template <class T, auto KEY>
class MapKind final : public ElementCollectionKind {
 protected:
  CollectionField make(Element& element, Row const& row) const override {
    return std::make_unique<plinth::ElementMap<std::u16string, T>>(plinth::CollectionPrivateTag(), &keyOf, &element,
                                                                   row.property, row.property->opposite());
  }

 private:
  static std::u16string const& keyOf(plinth::ModelElementImpl const& element) {
    return (static_cast<typename T::Impl const&>(element).*KEY)();
  }
};

/// A derived view on another collection of the same element; `SOURCE` is that one's position among the class's
/// properties.
template <class V, class P, std::size_t SOURCE>
class SubsetKind final : public ElementCollectionKind {
 public:
  /// Raises CannotSetReadOnlyProperty.
  void set(Element& element, Row const& row, plinth::Value const& value, Tag const& tag) const override;
  bool has(Element const& element, Row const& row) const override;

 protected:
  CollectionField make(Element& element, Row const& row) const override;
};

/// Raises CannotSetReadOnlyProperty for the row's property.
[[noreturn]] TESSEL_EXPORT void reportReadOnly(PropertyDescriptor const& row);
/// The row `SOURCE` places into the table that `row` stands in.
TESSEL_EXPORT PropertyDescriptor const& siblingRow(PropertyDescriptor const& row, std::size_t position);
TESSEL_EXPORT plinth::ReferenceCollection& requireCollection(Element& element, PropertyDescriptor const& row);
/// The getter of an element collection: raises CannotModifyProxy for a proxy. That of a map takes in what its proxies
/// name, if it can be had, as a step of its own: listeners are told. A frozen model's proxies stay.
TESSEL_EXPORT plinth::ReferenceCollection* readCollection(Element const& self, PropertyDescriptor const& row);

template <class C>
C* getCollection(Element const& self, PropertyDescriptor const& row) {
  return static_cast<C*>(readCollection(self, row));
}

template <class V, class P, std::size_t SOURCE>
void SubsetKind<V, P, SOURCE>::set(Element&, Row const& row, plinth::Value const&, Tag const&) const {
  reportReadOnly(row);
}

template <class V, class P, std::size_t SOURCE>
bool SubsetKind<V, P, SOURCE>::has(Element const& element, Row const& row) const {
  Row const& source = siblingRow(row, SOURCE);
  if (!source.kind->has(element, source)) return false;
  return !require(const_cast<Element&>(element), row).empty();
}

template <class V, class P, std::size_t SOURCE>
CollectionField SubsetKind<V, P, SOURCE>::make(Element& element, Row const& row) const {
  auto& parent = static_cast<P&>(requireCollection(element, siblingRow(row, SOURCE)));
  return std::make_unique<V>(parent, &element, row.property);
}

template <class T>
inline constexpr TypedCollectionKind<plinth::ElementSequence<T>> sequenceKind{};
template <class T>
inline constexpr TypedCollectionKind<plinth::UnorderedElementSet<T>> setKind{};
template <class T, auto KEY>
inline constexpr MapKind<T, KEY> mapKind{};
template <class S, class P, std::size_t SOURCE>
inline constexpr SubsetKind<plinth::SubsettedElementSet<S, P>, P, SOURCE> subsetKind{};

}  // namespace tessel::frame
