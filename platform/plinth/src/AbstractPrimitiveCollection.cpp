#include "plinth/AbstractPrimitiveCollection.hpp"

namespace plinth {

GenericPrimitiveCollectionInterface::~GenericPrimitiveCollectionInterface() = default;

AbstractPrimitiveCollection::~AbstractPrimitiveCollection() = default;

GenericPrimitiveCollectionInterface* AbstractPrimitiveCollection::getGenericInterface() {
  if (m_generic == nullptr) m_generic = makeGenericInterface();
  return m_generic.get();
}

}  // namespace plinth
