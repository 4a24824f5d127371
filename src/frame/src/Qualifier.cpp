#include "tessel_config_datamodel/frame/Qualifier.hpp"

#include "plinth/collections/ElementMapBase.hpp"
#include "plinth/diagnostics/TakenKey.hpp"
#include "tessel_config_datamodel/frame/ElementCollection.hpp"

namespace tessel::frame {
namespace {

/// Whether `self` lies in a map that is keyed by the row's property.
bool liesInMap(Element const& self, PropertyDescriptor const& row) noexcept {
  auto const* const feature = core(self).basicContainmentFeature();
  return feature != nullptr && feature->qualifiedBy() == row.property;
}

void refuseTakenKey(Element& self, std::u16string const& value, PropertyDescriptor const& row) {
  if (!liesInMap(self, row)) return;
  auto& owner = static_cast<Element&>(*core(self).basicContainer());
  auto const* const mapRow = findDescriptor(owner.classTable(), *core(self).basicContainmentFeature());
  auto const* const map = static_cast<plinth::ElementMapBase*>(readCollection(owner, *mapRow));
  if (map->findElement(value)) plinth::reportTakenKey(value, &owner, core(self).basicContainmentFeature());
}

/// Runs `store` in one transaction, with the element out of its map meanwhile.
template <class Store>
void rekey(Element& self, PropertyDescriptor const& row, Store const& store) {
  bool const inMap = liesInMap(self, row);
  plinth::Step step(self.model(), inMap ? plinth::Step::WHOLE : plinth::Step::STORE);
  auto* const container = core(self).basicContainer();
  auto* const feature = core(self).basicContainmentFeature();
  if (inMap) core(self)._inverseRemoveThis(container, *feature);
  store();
  if (inMap) core(self)._inverseAddThis(container, *feature, true);
  step.commit();
}

}  // namespace

void setQualifier(Element& self, std::u16string& field, std::u16string const& value, PropertyDescriptor const& row) {
  core(self).requireModifiable();
  if (field == value) return;
  refuseTakenKey(self, value, row);
  core(self).requireModifiable();  // a loader may have destroyed it
  rekey(self, row, [&] {
    core(self).notifyModifying(row.index);
    field = value;
  });
}

void overrideQualifier(Element& self, std::u16string const& value, PropertyDescriptor const& row) {
  auto& field = fieldOf<std::u16string>(self, row);
  if (field == value) return;
  refuseTakenKey(self, value, row);
  // A proxy is refused by the setter, inside the transaction. A destroyed element may have no model to begin one in.
  if (!self.isProxy()) core(self).requireModifiable();
  rekey(self, row, [&] { setAttribute(self, field, value, row); });
}

void QualifierKind::set(Element& element, Row const& row, plinth::Value const& value, Tag const&) const {
  setQualifier(element, fieldOf<std::u16string>(element, row), value.getValue<std::u16string>(), row);
}

}  // namespace tessel::frame
