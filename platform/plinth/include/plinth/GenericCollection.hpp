// Untyped views of element collections, for reflective code and the script bridge.
// Ownership: a collection owns its view. Thread rule: the model's thread.
#pragma once

#include <cstdint>
#include <vector>

#include "plinth/Value.hpp"

namespace plinth {

/// Every operation that takes an element returns without effect for an empty or dead handle, and raises
/// CannotAddIncompatibleTypes for an element of a class that doesn't fit, except the two that only look.
class TESSEL_EXPORT GenericCollectionInterface {
 public:
  virtual ~GenericCollectionInterface();
  virtual std::uint32_t genericSize() const = 0;
  virtual void genericAdd(ModelElement const& element) = 0;
  /// Sees to it that the element is there, in a sequence at that index.
  virtual void genericEnsureAt(ModelElement const& element, std::uint32_t index);
  virtual void genericRemove(ModelElement const& element) = 0;
  virtual void genericClear() = 0;
  virtual void genericBasicClear() = 0;
  virtual bool genericContains(ModelElement const& element) const = 0;
  virtual bool isSequenceInterface() const noexcept { return false; }
  virtual bool isMapInterface() const noexcept { return false; }
  virtual bool isMultimapInterface() const noexcept { return false; }
};

class TESSEL_EXPORT GenericSequenceInterface : public GenericCollectionInterface {
 public:
  static constexpr std::uint32_t ABSENT = 0xFFFFFFFFU;

  bool isSequenceInterface() const noexcept override { return true; }
  /// The element at the index, resolved if it can be. The caller has checked the index, here and below.
  virtual ModelElement genericAt(std::uint32_t index) = 0;
  virtual void genericInsert(ModelElement const& element, std::uint32_t index) = 0;
  /// Raises CannotAddSecondObject when a unique sequence holds the element elsewhere.
  virtual void genericReplace(ModelElement const& element, std::uint32_t index) = 0;
  virtual void genericRemoveAt(std::uint32_t index) = 0;
  /// The first position of the element, or ABSENT.
  virtual std::uint32_t genericIndexOf(ModelElement const& element) const = 0;
};

class TESSEL_EXPORT GenericMapInterface : public GenericCollectionInterface {
 public:
  bool isMapInterface() const noexcept override { return true; }
  /// The element of that key, or an empty handle. Raises CannotCastIncompatibleTypes for a key of another type.
  virtual ModelElement genericGet(Value const& key) const = 0;
  /// The keys in order.
  virtual std::vector<Value> genericKeys() const = 0;
  virtual meta::Type getQualifierType() const = 0;
};

}  // namespace plinth
