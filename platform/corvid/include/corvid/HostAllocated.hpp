// The host's allocator: what is described to the host is allocated by it, because the host frees it.
// Thread rule: any thread.
#pragma once

#include <cstddef>

#include "groundwork/export.hpp"

namespace corvid {

/// Base of every description handed to the host. Blocks are counted, so that a leak shows in liveDescriptionCount.
class TESSEL_EXPORT HostAllocated {
 public:
  /// Raises what groundwork::except::bad_alloc raises when there is no memory.
  static void* operator new(std::size_t size);
  static void operator delete(void* block) noexcept;

 protected:
  HostAllocated() = default;
  HostAllocated(HostAllocated const&) = default;
  HostAllocated& operator=(HostAllocated const&) = default;
  ~HostAllocated() = default;
};

/// How many descriptions exist in the process.
TESSEL_EXPORT std::ptrdiff_t liveDescriptionCount() noexcept;

}  // namespace corvid
