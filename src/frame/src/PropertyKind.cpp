#include "tessel_config_datamodel/frame/PropertyKind.hpp"

#include "plinth/Messages.hpp"
#include "tessel_config_datamodel/frame/ElementStorage.hpp"
#include "tessel_config_datamodel/frame/Queries.hpp"

namespace tessel::frame {

void bind(ClassTable& table, plinth::meta::Class const& metaClass) {
  table.handle = &metaClass;
  layOut(table);
}

void layOut(ClassTable& table) {
  if (table.chain != nullptr) return;
  if (table.base != nullptr) layOut(*table.base);
  auto chain = std::make_unique<ClassChain>();
  chain->byIndex.resize(table.lastIndex + 1);
  for (ClassTable const* each = &table; each != nullptr; each = each->base) {
    for (FieldGroup const group : {FieldGroup::ATTRIBUTE, FieldGroup::SINGLE_ELEMENT, FieldGroup::COLLECTION}) {
      for (PropertyDescriptor const& row : *each) {
        if (row.index == 0 || row.kind->group() != group) continue;
        chain->byIndex[row.index] = &row;
        if (group != FieldGroup::ATTRIBUTE) chain->links.push_back(&row);
      }
    }
  }
  chain->recordSize = ElementStorage::layOut(table);
  table.chain = chain.release();
}

plinth::ModelElement elementFrom(plinth::Value const& value, PropertyDescriptor const& row) {
  auto const* const metaClass = dynamic_cast<plinth::meta::ClassImpl const*>(value.meta().type());
  if (metaClass == nullptr || value.meta().flags() >= plinth::meta::SEQUENCE ||
      !metaClass->conformsTo(*row.property->type())) {
    value.reportIncompatible(plinth::ValueMeta(*row.property));
  }
  return value.isEmpty() ? plinth::ModelElement() : *static_cast<plinth::ModelElement const*>(value.content());
}

plinth::meta::Property propertyAt(ClassTable const& table, unsigned long index) {
  table.metaClass();
  return plinth::meta::Property(findDescriptor(table, index)->property);
}

// What a kind does not override has nothing to do for it.

void PropertyKind::set(Element&, Row const& row, plinth::Value const&, Tag const&) const {
  plinth::reportException(
      plinth::messages::NoSuchProperty(row.property->getName(), row.property->owningType()->getQualifiedName()));
}

PropertyKind::Slot PropertyKind::slot() const noexcept { return {}; }
void PropertyKind::keepOld(Element const&, ElementStorage&, Row const&) const {}
void PropertyKind::restoreOld(Element&, ElementStorage&, Row const&) const noexcept {}
void PropertyKind::dropOld(ElementStorage&, Row const&) const noexcept {}
void PropertyKind::moveOld(ElementStorage&, ElementStorage&, Row const&) const noexcept {}
plinth::Value PropertyKind::oldValue(ElementStorage&, Row const&) const { return {}; }
bool PropertyKind::isUnchanged(Element const&, ElementStorage const&, Row const&) const { return false; }
void PropertyKind::sealOld(ElementStorage&, Row const&) const noexcept {}
void PropertyKind::collectContained(Element const&, Row const&, std::vector<plinth::ModelElementImpl*>&) const {}
void PropertyKind::destroyContained(Element&, Row const&, bool, bool) const {}
void PropertyKind::disassociate(Element&, Row const&) const {}
void PropertyKind::basicDisassociate(Element&, Row const&) const {}
plinth::AbstractOwnedCollection* PropertyKind::collection(Element const&, Row const&) const { return nullptr; }
void PropertyKind::inverseAdd(Element&, Row const&, plinth::ModelElementImpl&) const {}
void PropertyKind::inverseRemove(Element&, Row const&, plinth::ModelElementImpl&) const {}
bool PropertyKind::containsProxyTo(Element&, Row const&, plinth::ModelElementImpl&) const { return false; }
void PropertyKind::convertToProxies(Element&, Row const&, bool, boost::optional<plinth::ProxyId>&) const {}
void PropertyKind::replaceByProxy(Element&, Row const&, plinth::ModelElementImpl&, plinth::ModelElement const&) const {}
bool PropertyKind::build(ElementBuilder&, Row const&, plinth::Value const&) const { return false; }
bool PropertyKind::build(ElementBuilder&, Row const&, std::unique_ptr<plinth::ModelElementBuilder>&) const {
  return false;
}
void PropertyKind::initialize(Element&, ElementBuilder&, Row const&) const {}
void PropertyKind::link(Element&, ElementBuilder&, Row const&) const {}
void PropertyKind::cascade(Element&, ElementBuilder&, Row const&, plinth::CascadeSteps&) const {}
void PropertyKind::attach(Element&, Row const&, plinth::ModelElement const&) const {}
void PropertyKind::stamp(Element&, Row const&, int) const {}
void PropertyKind::stamp(ElementBuilder&, Row const&, int) const {}

}  // namespace tessel::frame
