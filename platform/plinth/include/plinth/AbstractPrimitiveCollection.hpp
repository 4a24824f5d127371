// The root of collections of plain values, without their type.
// Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include <typeinfo>
#include <vector>

#include "plinth/AbstractOwnedCollection.hpp"
#include "plinth/GenericPrimitiveCollection.hpp"

namespace plinth {

class TESSEL_EXPORT AbstractPrimitiveCollection : public AbstractOwnedCollection {
 public:
  ~AbstractPrimitiveCollection() override;

  /// The untyped view; made at the first call. A sequence's is a GenericPrimitiveSequenceInterface, a map's a
  /// GenericPrimitiveAssociativeInterface.
  GenericPrimitiveCollectionInterface* getGenericInterface();
  virtual PrimitiveKind getKind() const noexcept = 0;
  /// The values in order, each as a managed value of the property's type. Linear.
  virtual std::vector<Value> getAllValues() const = 0;
  /// The container that holds the values, or null where it is of another type.
  virtual void const* valuesAs(std::type_info const& container) const noexcept = 0;
  /// Adds the content of the value. Raises CannotCastIncompatibleTypes for a value of another type.
  virtual void genericAdd(Value const& value) = 0;
  /// Removes the first value that equals it. Raises CannotCastIncompatibleTypes.
  virtual void genericRemove(Value const& value) = 0;
  virtual void clear() = 0;
  /// Becomes a copy of `other`, which is of the same class; null empties it.
  virtual void copyValues(AbstractPrimitiveCollection const* other) = 0;
  /// Whether both hold equal values in the same order.
  virtual bool equals(AbstractPrimitiveCollection const& other) const = 0;

 protected:
  AbstractPrimitiveCollection(ModelElementImpl* owner, meta::PropertyImpl* property) noexcept
      : AbstractOwnedCollection(owner, property, nullptr) {}

  virtual std::unique_ptr<GenericPrimitiveCollectionInterface> makeGenericInterface() = 0;
  /// The shape of one value of the collection.
  template <class T>
  ValueMeta elementMeta() const {
    return ValueMeta(property() != nullptr ? property()->type() : MetaTypeOf<T>::type(), meta::SINGLE);
  }

 private:
  std::unique_ptr<GenericPrimitiveCollectionInterface> m_generic;
};

namespace detail {

/// What the untyped views of all shapes do alike.
template <class Interface>
class PrimitiveView : public Interface {
 public:
  explicit PrimitiveView(AbstractPrimitiveCollection& collection) noexcept : m_collection(&collection) {}
  PrimitiveKind getKind() const noexcept final { return m_collection->getKind(); }
  std::uint32_t genericSize() const final { return static_cast<std::uint32_t>(m_collection->rawSize()); }
  std::vector<Value> genericValues() const final { return m_collection->getAllValues(); }
  void genericAdd(Value const& value) final { m_collection->genericAdd(value); }
  void genericRemove(Value const& value) final { m_collection->genericRemove(value); }
  void genericClear() final { m_collection->clear(); }

 private:
  AbstractPrimitiveCollection* m_collection;
};

}  // namespace detail

}  // namespace plinth
