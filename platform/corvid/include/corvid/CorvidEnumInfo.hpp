// The description of one member of an enumeration class.
// Thread rule: the host's thread.
#pragma once

#include "corvid/HostAllocated.hpp"
#include "corvid/Identifier.hpp"
#include "groundwork/export.hpp"
#include "kestrel/ArrayBase.hpp"

namespace corvid {

class TESSEL_EXPORT CorvidEnumInfo : public HostAllocated {
 public:
  virtual ~CorvidEnumInfo();

  virtual Identifier getName() const = 0;
  /// The member: a 1 by 1 array of the enumeration's class over its underlying type. Borrowed from the description.
  virtual kestrel_array const& getValue() const = 0;
};

}  // namespace corvid
