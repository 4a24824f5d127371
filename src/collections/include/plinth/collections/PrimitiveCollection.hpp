// Collections of plain values: the untyped root and what a typed one adds to it.
// Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include <vector>

#include "plinth/AbstractOwnedCollection.hpp"
#include "plinth/Value.hpp"

namespace plinth {

/// What a primitive collection is.
enum class PrimitiveKind : int { SEQUENCE = 1, SET = 4, MAP = 5 };

class TESSEL_EXPORT AbstractPrimitiveCollection : public AbstractOwnedCollection {
 public:
  virtual PrimitiveKind getKind() const noexcept = 0;
  /// The values in order, each as a managed value of the property's type. Linear.
  virtual std::vector<Value> getAllValues() const = 0;
  /// Adds the content of the value. Raises CannotCastIncompatibleTypes for a value of another type.
  virtual void genericAdd(Value const& value) = 0;
  /// Removes the first value that equals it. Raises CannotCastIncompatibleTypes.
  virtual void genericRemove(Value const& value) = 0;
  virtual void clear() = 0;
  /// Becomes a copy of `other`, which is of the same class; null empties it.
  virtual void copyValues(AbstractPrimitiveCollection const* other) = 0;
  /// Whether both hold equal values in the same order.
  virtual bool equals(AbstractPrimitiveCollection const& other) const = 0;

  GenericCollectionInterface* getGenericInterface() override { return nullptr; }

 protected:
  AbstractPrimitiveCollection(ModelElementImpl* owner, meta::PropertyImpl* property) noexcept
      : AbstractOwnedCollection(owner, property, nullptr) {}

  /// The shape of one value of the collection.
  template <class T>
  ValueMeta elementMeta() const {
    return ValueMeta(property() != nullptr ? property()->type() : MetaTypeOf<T>::type(), meta::SINGLE);
  }
};

}  // namespace plinth
