// The description of one property of a class.
// Thread rule: the host's thread.
#pragma once

#include <string>

#include "corvid/HostAllocated.hpp"
#include "corvid/Identifier.hpp"
#include "groundwork/export.hpp"
#include "kestrel/ArrayBase.hpp"

namespace corvid {

/// The shape of a property's value: an optional one may be empty where its data type asks for a scalar.
enum class Multiplicity { Optional, Single, Many };

/// Flag of a property that works as any other, and is left out of listings.
constexpr unsigned HIDDEN_PROPERTY = 0x800;

class TESSEL_EXPORT CorvidPropInfo : public HostAllocated {
 public:
  virtual ~CorvidPropInfo();

  virtual Identifier getName() const = 0;
  virtual std::string const& getDescription() const = 0;
  virtual unsigned getFlags() const = 0;
  /// The host data type of the value, such as "double scalar", a class name or "any".
  virtual Identifier getDataType() const = 0;
  virtual Multiplicity getMultiplicity() const { return Multiplicity::Single; }
  virtual bool isReadOnly() const { return false; }

  /// `self` has the object whose property it is as its one element.
  virtual kestrel::OwnedArray getValue(kestrel_array const& self) const = 0;
  /// `value` is of the property's data type already.
  virtual void setValue(kestrel_array const& self, kestrel_array const& value) const = 0;
  /// A further check on a value of the data type "any".
  virtual bool isCorrectType(kestrel_array const&) const { return true; }
  /// For sentences: what is wanted of a value of the data type "any".
  virtual Identifier getValueType() const { return getDataType(); }
};

}  // namespace corvid
