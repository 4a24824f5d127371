// The host as a whole: the mode its class store runs in, the census of what scripts hold, and its end.
// Thread rule: the host's thread.
#pragma once

#include <cstddef>

#include "corvid/HostAllocated.hpp"
#include "groundwork/export.hpp"

namespace corvid {

/// Whether the class store is run as a service that calls each library's entry once by itself. False unless it was set.
TESSEL_EXPORT bool isServiceManaged() noexcept;
TESSEL_EXPORT void setServiceManaged(bool managed) noexcept;

/// How many script objects exist, bound or stale.
TESSEL_EXPORT std::ptrdiff_t liveObjectCount() noexcept;

/// Forgets every package, class, conversion and data type and frees their descriptions: the host is as it was before
/// the first registration. Raises HostInUse, and forgets nothing, while script objects exist.
TESSEL_EXPORT void shutDown();

}  // namespace corvid
