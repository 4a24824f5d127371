// Counts what the program takes from the heap. Linking this in replaces the global operator new and delete, and with
// them those of every library of the process.
// Thread rule: counters of the calling thread.
#pragma once

#include <cstdint>

namespace bench {

struct Allocations {
  std::uint64_t count = 0;  ///< allocations made so far
  std::int64_t bytes = 0;   ///< bytes in use, with what the allocator adds to each block
};

Allocations allocations() noexcept;

}  // namespace bench
