// The factories that weaving registers for a type, collections by property and builders by model, and all else that the
// source of a generated class needs.
// Ownership: the caller owns what is made. Thread rule: the thread of the owner's model.
#pragma once

#include <memory>

#include "plinth/Builder.hpp"
#include "plinth/collections/ElementSequence.hpp"
#include "plinth/collections/PrimitiveSequence.hpp"
#include "plinth/collections/PrimitiveSet.hpp"
#include "plinth/collections/UnorderedElementSet.hpp"
#include "plinth/meta/Serializers.hpp"
#include "tessel_config_datamodel/frame/GeneratedClass.hpp"

namespace tessel::metamodel {

/// A sequence for an ordered property, a set for any other; no opposite, never a map.
template <class T>
plinth::AbstractOwnedCollection* elementCollection(plinth::ModelElement const& owner,
                                                   plinth::meta::Property const& property) {
  if (property->isOrdered())
    return new plinth::ElementSequence<T>(plinth::CollectionPrivateTag(), owner.impl(), property.impl());
  return new plinth::UnorderedElementSet<T>(plinth::CollectionPrivateTag(), owner.impl(), property.impl());
}

template <class T>
plinth::AbstractOwnedCollection* valueCollection(plinth::ModelElement const& owner,
                                                 plinth::meta::Property const& property) {
  if (property->isOrdered())
    return new plinth::PrimitiveSequence<T>(plinth::CollectionPrivateTag(), owner.impl(), property.impl());
  return new plinth::PrimitiveSet<T>(plinth::CollectionPrivateTag(), owner.impl(), property.impl());
}

template <class S>
std::unique_ptr<plinth::meta::DatatypeSerializer> serializer() {
  return std::make_unique<S>();
}

template <class T>
std::unique_ptr<plinth::ModelElementBuilder> builder(plinth::Model const& model) {
  return std::make_unique<typename T::Builder>(model);
}

}  // namespace tessel::metamodel
