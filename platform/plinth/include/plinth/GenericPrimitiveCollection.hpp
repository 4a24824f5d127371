// Untyped views of collections of plain values, for reflective code that doesn't know the value's type.
// Ownership: a collection owns its view. Thread rule: the model's thread.
#pragma once

#include <cstdint>
#include <vector>

#include "plinth/Value.hpp"

namespace plinth {

/// What a primitive collection is.
enum class PrimitiveKind : int { SEQUENCE = 1, SET = 4, MAP = 5 };

/// Every operation that takes a value raises CannotCastIncompatibleTypes, before any change, for one that is no single
/// value of the collection's type; one with no content is the type's default.
class TESSEL_EXPORT GenericPrimitiveCollectionInterface {
 public:
  virtual ~GenericPrimitiveCollectionInterface();
  virtual PrimitiveKind getKind() const noexcept = 0;
  virtual std::uint32_t genericSize() const = 0;
  /// The values in order. Linear.
  virtual std::vector<Value> genericValues() const = 0;
  virtual void genericAdd(Value const& value) = 0;
  /// Removes the first value that equals it.
  virtual void genericRemove(Value const& value) = 0;
  virtual void genericClear() = 0;
  /// True for a GenericPrimitiveSequenceInterface.
  bool isSequenceInterface() const noexcept { return getKind() == PrimitiveKind::SEQUENCE; }
  /// True for a GenericPrimitiveAssociativeInterface.
  bool isMapInterface() const noexcept { return getKind() == PrimitiveKind::MAP; }
};

/// The caller has checked the indexes.
class TESSEL_EXPORT GenericPrimitiveSequenceInterface : public GenericPrimitiveCollectionInterface {
 public:
  static constexpr std::uint32_t ABSENT = 0xFFFFFFFFU;

  virtual Value genericAt(std::uint32_t index) const = 0;
  /// The first position of the value, or ABSENT. Linear.
  virtual std::uint32_t genericIndexOf(Value const& value) const = 0;
  /// Does nothing where a unique sequence holds the value already, here and below.
  virtual void genericReplace(Value const& value, std::uint32_t index) = 0;
  virtual void genericInsert(Value const& value, std::uint32_t index) = 0;
  virtual void genericRemoveAt(std::uint32_t index) = 0;
};

class TESSEL_EXPORT GenericPrimitiveAssociativeInterface : public GenericPrimitiveCollectionInterface {
 public:
  /// The value of that key; one with no content where there is none. Raises CannotCastIncompatibleTypes for a key of
  /// another type.
  virtual Value genericGet(Value const& key) const = 0;
  /// The keys in order. Linear.
  virtual std::vector<Value> genericKeys() const = 0;
  virtual meta::Type getQualifierType() const = 0;
};

}  // namespace plinth
