#include "plinth/bridge/PropertyRows.hpp"

#include "plinth/bridge/MetaMarshalerRegistry.hpp"

namespace plinth::bridge::detail {

using corvid::internal::makeInterned;

corvid::Identifier collectionClass(meta::PropertyImpl const& property) {
  return makeInterned(property.valueFlags() == meta::MAP ? "plinth.Map" : "plinth.Set");
}

corvid::Identifier valueCollectionType(meta::PropertyImpl const& property) {
  return MetaMarshalerRegistry::getInstance().getPropertyMarshaler(property.getType()).rowDataType();
}

void assignMembers(ReferenceCollection& sequence, std::size_t count,
                   ModelElement const& (*at)(void const* elements, std::size_t index), void const* elements) {
  Transaction transaction = sequence.owner()->model().beginTransaction(false);
  GenericCollectionInterface& view = *sequence.getGenericInterface();
  view.genericClear();
  for (std::size_t i = 0; i < count; ++i) view.genericAdd(at(elements, i));
  transaction.commit();
}

}  // namespace plinth::bridge::detail
