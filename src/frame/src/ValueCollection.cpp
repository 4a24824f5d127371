#include "tessel_config_datamodel/frame/ValueCollection.hpp"

namespace tessel::frame {

plinth::AbstractPrimitiveCollection* readValues(Element const& self, PropertyDescriptor const& row) {
  core(self).requireReal();
  return &static_cast<ValueCollectionKind const*>(row.kind)->require(const_cast<Element&>(self), row);
}

plinth::Value ValueCollectionKind::get(Element& element, Row const& row, Tag const&) const {
  core(element).requireReal();
  return plinth::Value(plinth::ValueMeta(*row.property), requireAny(element, row));
}

bool ValueCollectionKind::isUnchanged(Element const& element, ElementStorage const&, Row const& row) const {
  auto const* const present = collection(element, row);
  return !present->isChanged() || (present->empty() && present->oldSize() == 0);
}

}  // namespace tessel::frame
