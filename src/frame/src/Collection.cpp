#include "tessel_config_datamodel/frame/Collection.hpp"

namespace tessel::frame {

using plinth::OldCollection;

bool holdsAny(CollectionField const& field) noexcept { return field != nullptr && !field->empty(); }

plinth::AbstractOwnedCollection& CollectionKind::requireAny(Element& element, Row const& row) const {
  auto& field = fieldOf<CollectionField>(element, row);
  if (field == nullptr) field = make(element, row);
  return *field;
}

plinth::AbstractOwnedCollection* CollectionKind::collection(Element const& element, Row const& row) const {
  return fieldOf<CollectionField>(element, row).get();
}

bool CollectionKind::has(Element const& element, Row const& row) const {
  return holdsAny(fieldOf<CollectionField>(element, row));
}

void CollectionKind::keepOld(Element const& element, ElementStorage& storage, Row const& row) const {
  // The journal of the collection tells what it held; the slot only knows whom to ask.
  fillSlot<OldCollection>(storage, row).note(requireAny(const_cast<Element&>(element), row));
}

void CollectionKind::dropOld(ElementStorage& storage, Row const& row) const noexcept {
  slotOf<OldCollection>(storage, row).~OldCollection();
}

void CollectionKind::moveOld(ElementStorage& from, ElementStorage& to, Row const& row) const noexcept {
  fillSlot<OldCollection>(to, row).moveFrom(slotOf<OldCollection>(from, row));
}

plinth::Value CollectionKind::oldValue(ElementStorage& storage, Row const& row) const {
  return plinth::Value(plinth::ValueMeta(*row.property), slotOf<OldCollection>(storage, row).contents());
}

void CollectionKind::sealOld(ElementStorage& storage, Row const& row) const noexcept {
  slotOf<OldCollection>(storage, row).seal();
}

}  // namespace tessel::frame
