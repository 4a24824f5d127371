// Memory for change records: free lists by size, so that a transaction's records cost no heap allocation once the pool
// is warm. Ownership: the pool owns its blocks and outlives every record made from it. Thread rule: the model's thread.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

#include "groundwork/export.hpp"

namespace plinth {

class TESSEL_EXPORT RecordPool {
 public:
  RecordPool() = default;
  RecordPool(RecordPool const&) = delete;
  RecordPool& operator=(RecordPool const&) = delete;

  /// Memory for `size` bytes, aligned for any type. Raises std::bad_alloc. O(1).
  void* allocate(std::size_t size);
  /// Gives back what `allocate` of any pool returned.
  static void release(void* memory) noexcept;
  /// Frees the blocks when there are many and no record is left in them, so that one large transaction's memory is not
  /// kept for good.
  void trim() noexcept {
    if (m_inUse == 0 && m_chunks.size() > KEPT_CHUNKS) clear();
  }

 private:
  /// Stands before each block that is handed out.
  struct alignas(std::max_align_t) Prefix {
    RecordPool* owner;  ///< null: from the heap
    std::size_t sizeClass;
  };
  struct Free {
    Free* next;
  };
  static constexpr std::size_t GRAIN = 64;
  static constexpr std::size_t CLASSES = 24;
  static constexpr std::size_t CHUNK = 16 * 1024;
  static constexpr std::size_t KEPT_CHUNKS = 16;

  void refill(std::size_t sizeClass);
  void clear() noexcept;

  std::array<Free*, CLASSES> m_free{};
  std::vector<std::unique_ptr<std::byte[]>> m_chunks;
  std::size_t m_inUse = 0;  ///< blocks of chunks
};

}  // namespace plinth
