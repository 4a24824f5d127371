#include "tessel_config_datamodel/frame/Element.hpp"

#include "plinth/Changes.hpp"
#include "plinth/Model.hpp"
#include "plinth/ReferenceCollection.hpp"
#include "plinth/Step.hpp"
#include "plinth/Value.hpp"
#include "tessel_config_datamodel/frame/ElementStorage.hpp"
#include "tessel_config_datamodel/frame/Fields.hpp"
#include "tessel_config_datamodel/frame/PropertyKind.hpp"

namespace tessel::frame {

bool Element::hasPropertyValue(plinth::meta::Property const& property, Tag const& tag) const {
  auto const* const row = property.isEmpty() ? nullptr : findDescriptor(classTable(), *property.impl());
  return row != nullptr ? row->kind->has(*this, *row) : ModelElementImpl::hasPropertyValue(property, tag);
}

plinth::Value Element::getPropertyValue(plinth::meta::Property const& property, Tag const& tag) const {
  auto const* const row = property.isEmpty() ? nullptr : findDescriptor(classTable(), *property.impl());
  if (row == nullptr) return ModelElementImpl::getPropertyValue(property, tag);
  return row->kind->get(const_cast<Element&>(*this), *row, tag);
}

void Element::setPropertyValue(plinth::meta::Property const& property, plinth::Value const& value, Tag const& tag) {
  auto const* const row = property.isEmpty() ? nullptr : findDescriptor(classTable(), *property.impl());
  if (row == nullptr) {
    ModelElementImpl::setPropertyValue(property, value, tag);
  } else {
    row->kind->set(*this, *row, value, tag);
  }
}

plinth::meta::Property Element::getPropertyByIndex(unsigned long index) const {
  auto const* const row = findDescriptor(classTable(), index);
  return row != nullptr ? plinth::meta::Property(row->property) : ModelElementImpl::getPropertyByIndex(index);
}

plinth::Changes* Element::createChanges() const {
  return new plinth::Changes(getUuid(), model(), *getMetaClass().impl(), classTable().lastIndex);
}

plinth::Storage* Element::createStorage() const { return ElementStorage::make(*this, recordPool()); }

void Element::copyValue(plinth::Storage* storage, unsigned long index) const {
  if (auto const* const row = findDescriptor(classTable(), index)) {
    row->kind->keepOld(*this, static_cast<ElementStorage&>(*storage), *row);
  } else {
    ModelElementImpl::copyValue(storage, index);
  }
}

void Element::copyStateFromStorage(plinth::Storage* storage) {
  auto& record = static_cast<ElementStorage&>(*storage);
  record.forEachChanged([&](PropertyDescriptor const& row) { row.kind->restoreOld(*this, record, row); });
  ModelElementImpl::copyStateFromStorage(storage);
}

void Element::doDestroy(bool flag1, bool flag2) {
  forEachLink(classTable(), [&](auto const& row) { row.kind->destroyContained(*this, row, flag1, flag2); });
  ModelElementImpl::doDestroy(flag1, flag2);
}

void Element::disassociateIncoming() {
  forEachLink(classTable(), [&](auto const& row) { row.kind->disassociate(*this, row); });
  ModelElementImpl::disassociateIncoming();
}

void Element::basicDisassociateAll() {
  forEachLink(classTable(), [&](auto const& row) { row.kind->basicDisassociate(*this, row); });
  ModelElementImpl::basicDisassociateAll();
}

void Element::invalidate() {
  if (m_callback != nullptr) {
    for (ClassTable const* each = &classTable(); each != nullptr; each = each->base) {
      // Element collections come first, then those of plain values.
      for (FieldGroup const group : {FieldGroup::COLLECTION, FieldGroup::ATTRIBUTE}) {
        for (PropertyDescriptor const& row : *each) {
          if (row.index == 0 || row.kind->group() != group) continue;
          if (auto* const collection = row.kind->collection(*this, row)) m_callback(this, collection);
        }
      }
    }
  }
  ModelElementImpl::invalidate();
}

void Element::collectContained(std::vector<plinth::ModelElementImpl*>& children) const {
  forEachLink(classTable(), [&](auto const& row) { row.kind->collectContained(*this, row, children); });
}

void Element::inverseAdd(plinth::ModelElementImpl& element, plinth::meta::PropertyImpl& property) {
  requireReal();
  if (auto const* const row = findDescriptor(classTable(), property)) {
    row->kind->inverseAdd(*this, *row, element);
  } else {
    ModelElementImpl::inverseAdd(element, property);
  }
}

void Element::inverseRemove(plinth::ModelElementImpl& element, plinth::meta::PropertyImpl& property) {
  requireReal();
  if (auto const* const row = findDescriptor(classTable(), property)) {
    row->kind->inverseRemove(*this, *row, element);
  } else {
    ModelElementImpl::inverseRemove(element, property);
  }
}

bool Element::inverseContainsProxyTo(plinth::ModelElementImpl& element, plinth::meta::PropertyImpl& property) const {
  auto const* const row = findDescriptor(classTable(), property);
  return row != nullptr ? row->kind->containsProxyTo(const_cast<Element&>(*this), *row, element)
                        : ModelElementImpl::inverseContainsProxyTo(element, property);
}

void Element::convertReferencesToProxies(bool convert, boost::optional<plinth::ProxyId>& id) {
  forEachLink(classTable(), [&](auto const& row) { row.kind->convertToProxies(*this, row, convert, id); });
  ModelElementImpl::convertReferencesToProxies(convert, id);
}

void Element::convertToProxy(plinth::meta::PropertyImpl& property, plinth::ProxyId const& id,
                             plinth::ModelElementImpl& element) {
  auto const* const row = findDescriptor(classTable(), property);
  if (row == nullptr) return;
  plinth::Step step(model());  // this far end may lie in another model than the one that is being changed
  row->kind->replaceByProxy(*this, *row, element, model().createProxy(element.getMetaClass(), id));
  step.commit();
}

plinth::ReferenceCollection* Element::referenceCollection(plinth::meta::PropertyImpl const& property) const {
  auto const* const row = findDescriptor(classTable(), property);
  if (row == nullptr || row->kind->group() != FieldGroup::COLLECTION) return nullptr;
  return static_cast<plinth::ReferenceCollection*>(row->kind->collection(*this, *row));
}

bool hasValue(Element const& element, PropertyDescriptor const& row) { return row.kind->has(element, row); }

}  // namespace tessel::frame
