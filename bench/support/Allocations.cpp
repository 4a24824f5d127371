#include "support/Allocations.hpp"

#include <malloc.h>

#include <cstdlib>
#include <new>

namespace {

thread_local bench::Allocations counted;

/// What a block takes from the heap: what can be used, and the word before it.
std::int64_t costOf(void* block) noexcept {
  return static_cast<std::int64_t>(malloc_usable_size(block) + sizeof(void*));
}

void* counting(void* block) {
  if (block == nullptr) throw std::bad_alloc();
  ++counted.count;
  counted.bytes += costOf(block);
  return block;
}

void release(void* block) noexcept {
  if (block == nullptr) return;
  counted.bytes -= costOf(block);
  std::free(block);
}

}  // namespace

namespace bench {
Allocations allocations() noexcept { return counted; }
}  // namespace bench

void* operator new(std::size_t size) { return counting(std::malloc(size)); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  std::size_t const unit = static_cast<std::size_t>(alignment);
  return counting(std::aligned_alloc(unit, (size + unit - 1) / unit * unit));
}
void operator delete(void* block) noexcept { release(block); }
void operator delete(void* block, std::size_t) noexcept { release(block); }
void operator delete(void* block, std::align_val_t) noexcept { release(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { release(block); }
