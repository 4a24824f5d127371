#include "tessel_config_datamodel/frame/ElementCollection.hpp"

#include "plinth/CascadeSteps.hpp"
#include "plinth/Messages.hpp"
#include "plinth/ProxyId.hpp"
#include "tessel_config_datamodel/frame/SingleElement.hpp"

namespace tessel::frame {

using plinth::ModelElement;
using plinth::ModelElementImpl;
using plinth::ReferenceCollection;

namespace {

ReferenceCollection* present(Element const& element, PropertyDescriptor const& row) {
  return static_cast<ReferenceCollection*>(fieldOf<CollectionField>(element, row).get());
}

}  // namespace

void ElementCollectionKind::reserve(ReferenceCollection&, std::size_t) const {}

ReferenceCollection& requireCollection(Element& element, PropertyDescriptor const& row) {
  return static_cast<ElementCollectionKind const*>(row.kind)->require(element, row);
}

ReferenceCollection* readCollection(Element const& self, PropertyDescriptor const& row) {
  core(self).requireReal();
  auto& collection = requireCollection(const_cast<Element&>(self), row);
  if (row.property->qualifiedBy() != nullptr && self.isLive() && self.model().mayResolveOnRead()) {
    collection.resolveAll();
  }
  return &collection;
}

void reportReadOnly(PropertyDescriptor const& row) {
  plinth::reportException(plinth::messages::CannotSetReadOnlyProperty(row.property->qualifiedName()));
}

PropertyDescriptor const& siblingRow(PropertyDescriptor const& row, std::size_t position) {
  return *(&row - row.property->position() + position);
}

plinth::Value ElementCollectionKind::get(Element& element, Row const& row, Tag const& tag) const {
  core(element).requireReal();
  ReferenceCollection& collection = require(element, row);
  if (tag.resolvesProxies()) collection.resolveAll();
  return plinth::Value(plinth::ValueMeta(*row.property), collection);
}

bool ElementCollectionKind::isUnchanged(Element const& element, ElementStorage const& storage, Row const& row) const {
  auto const* const collection = present(element, row);
  if (!collection->isChanged()) return true;
  std::size_t const size = collection->rawSize();
  if (size > 1 || collection->oldSize() != size) return false;
  // Also where no real member is left: the proxies of a set or map are not counted, and belong to the value.
  auto& old = const_cast<plinth::OldCollection&>(slotOf<plinth::OldCollection>(storage, row)).contents();
  return collection->hasSameMembers(static_cast<ReferenceCollection&>(old));
}

void ElementCollectionKind::collectContained(Element const& element, Row const& row,
                                             std::vector<ModelElementImpl*>& children) const {
  auto const* const collection = present(element, row);
  if (collection == nullptr || row.index == 0 || !collection->isComposite()) return;
  collection->forEachReal([&](ModelElementImpl& child) { children.push_back(&child); });
}

void ElementCollectionKind::destroyContained(Element& element, Row const& row, bool flag1, bool flag2) const {
  auto* const collection = present(element, row);
  if (collection == nullptr || row.index == 0 || !collection->isComposite()) return;
  std::vector<ModelElementImpl*> children;  // the collection holds them, and afterwards the undo log
  children.reserve(collection->rawSize());
  collection->forEachReal([&](ModelElementImpl& child) { children.push_back(&child); });
  for (ModelElementImpl* child : children) core(*child).destroyRecursively(flag1, false, flag2);
  core(element)._basicClear(collection);
}

void ElementCollectionKind::disassociate(Element& element, Row const& row) const {
  auto* const collection = present(element, row);
  if (collection == nullptr || row.index == 0 || collection->isComposite()) return;
  if (auto* const opposite = collection->opposite()) {
    for (ModelElement const& far : collection->getAllValuesAndProxies()) {
      if (far) core(element)._inverseRemoveThis(far.impl(), *opposite);
    }
  }
  core(element)._basicClear(collection);
}

void ElementCollectionKind::basicDisassociate(Element& element, Row const& row) const {
  if (row.index == 0) return;
  if (auto* const collection = present(element, row)) core(element)._basicClear(collection);
}

void ElementCollectionKind::inverseAdd(Element& element, Row const& row, ModelElementImpl& far) const {
  ReferenceCollection& collection = require(element, row);
  core(element).notifyJournaling(row.index);
  core(element)._basicAdd(&collection, ModelElement(&far));
}

void ElementCollectionKind::inverseRemove(Element& element, Row const& row, ModelElementImpl& far) const {
  // No notice here: the collection gives its own when it removes.
  if (auto* const collection = present(element, row)) core(element)._basicRemove(collection, ModelElement(&far));
}

bool ElementCollectionKind::containsProxyTo(Element& element, Row const& row, ModelElementImpl& far) const {
  auto* const collection = present(element, row);
  return collection != nullptr && collection->opposite() != nullptr &&
         core(element)._basicContainsProxyTo(collection, far);
}

void ElementCollectionKind::convertToProxies(Element& element, Row const& row, bool convert,
                                             boost::optional<plinth::ProxyId>& id) const {
  auto* const collection = present(element, row);
  if (collection == nullptr || row.index == 0 || collection->isComposite()) return;
  if (auto* const opposite = collection->opposite()) {
    for (ModelElement const& member : collection->getAllValuesAndProxies()) {
      leaveFarEnd(element, member, *opposite, convert, id);
    }
  }
  core(element)._basicClear(collection);
}

void ElementCollectionKind::replaceByProxy(Element& element, Row const& row, ModelElementImpl& far,
                                           ModelElement const& proxy) const {
  if (auto* const collection = present(element, row)) collection->convertToProxy(far, proxy);
}

bool ElementCollectionKind::build(ElementBuilder& builder, Row const& row, plinth::Value const& value) const {
  if (row.index == 0 || row.property->isComposite()) return false;
  ModelElement const target = elementFrom(value, row);
  if (!target.isEmpty()) builderFieldOf<ReferenceTargets>(builder, row).push_back(target);
  return true;
}

bool ElementCollectionKind::build(ElementBuilder& builder, Row const& row,
                                  std::unique_ptr<plinth::ModelElementBuilder>& child) const {
  if (row.index == 0 || !row.property->isComposite()) return false;
  builderFieldOf<ChildBuilders>(builder, row).add(std::move(child));
  return true;
}

void ElementCollectionKind::link(Element& element, ElementBuilder& builder, Row const& row) const {
  if (row.property->isComposite()) return;
  auto const& targets = builderFieldOf<ReferenceTargets>(builder, row);
  if (targets.empty()) return;
  ReferenceCollection& collection = require(element, row);
  reserve(collection, targets.size());
  for (ModelElement const& target : targets) {
    ReferenceCollection::requireExisting(target);
    collection.genericAdd(target);
  }
}

void ElementCollectionKind::cascade(Element& element, ElementBuilder& builder, Row const& row,
                                    plinth::CascadeSteps& steps) const {
  if (!row.property->isComposite()) return;
  auto const& children = builderFieldOf<ChildBuilders>(builder, row).all();
  if (children.empty()) return;
  reserve(require(element, row), children.size());
  for (auto const& child : children) steps.push_back({row.property, child.get()});
}

void ElementCollectionKind::attach(Element& element, Row const& row, ModelElement const& child) const {
  require(element, row).genericAdd(child);
}

}  // namespace tessel::frame
