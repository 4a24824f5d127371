// The marshaler of host arrays themselves: they cross as they are.
#pragma once

#include "plinth/bridge/ValueMarshaler.hpp"

namespace plinth::bridge {

class HostArrayMarshaler final : public ValueMarshaler {
 public:
  using ValueMarshaler::ValueMarshaler;

  /// Host arrays have no collections: each row of these raises CannotCastIncompatibleTypes.
  kestrel::OwnedArray fromCollection(AbstractPrimitiveCollection const& collection) const override;
  kestrel::OwnedArray fromValueVector(std::vector<Value> const& values) const override;
  std::vector<Value> toValueVector(kestrel_array const& array) const override;
  Value toUnmanagedSequence(kestrel_array const& array) const override;
  Value toUnmanagedSetValue(kestrel_array const& array) const override;

  /// No array at all reads as an empty one.
  kestrel::OwnedArray toHost(Value const& value) const override;
  /// An empty plain array stands for no value.
  Value fromHost(kestrel_array const& array) const override;
  /// Raises WrongType for an array that holds, at whatever depth, a handle on a model or on what is in one.
  Value fromKestrelArray(kestrel_array const& array) const override;
  corvid::Identifier dataType() const override;
  corvid::Identifier rowDataType() const override { return dataType(); }
};

}  // namespace plinth::bridge
