#include "ArrayBlock.hpp"

#include <atomic>
#include <new>
#include <utility>

namespace kestrel::detail {
namespace {

// A memory checker has to see each array come and go.
#if defined(__SANITIZE_ADDRESS__)
constexpr std::size_t KEPT_BLOCKS = 0;
#else
constexpr std::size_t KEPT_BLOCKS = 32;
#endif

struct FreeBlock {
  FreeBlock* next;
};

// What one thread has: written by that thread alone, its count read by others. A thread that ends leaves its slot, with
// the count, to a later one.
struct alignas(64) Slot {
  std::atomic<std::ptrdiff_t> count{0};
  FreeBlock* kept = nullptr;
  std::size_t keptCount = 0;
  std::atomic<bool> taken{true};
  Slot* next = nullptr;

  void add(std::ptrdiff_t change) noexcept {
    count.store(count.load(std::memory_order_relaxed) + change, std::memory_order_relaxed);
  }
  void dropKept() noexcept {
    while (kept != nullptr) ::operator delete(std::exchange(kept, kept->next));
    keptCount = 0;
  }
};

// All slots there ever were; they live as long as the process.
std::atomic<Slot*> slots{nullptr};

// Counts for threads that have no slot any more, or found no memory for one.
std::atomic<std::ptrdiff_t> homelessCount{0};

// Trivial, so that reaching it needs no test for its initialisation; and at a fixed place in each thread's storage,
// which takes one instruction where the general way takes a call. The price is that all thread storage of the library
// has to fit what loaders keep in reserve for libraries that are opened at run time, a few hundred bytes for all of
// them together: a large thread_local anywhere in the library, and it can't be opened any more.
[[gnu::tls_model("initial-exec")]] thread_local Slot* ownSlot = nullptr;
[[gnu::tls_model("initial-exec")]] thread_local bool threadEnds = false;

struct SlotReturn {
  ~SlotReturn() {
    threadEnds = true;
    if (ownSlot == nullptr) return;
    ownSlot->dropKept();
    ownSlot->taken.store(false, std::memory_order_release);
    ownSlot = nullptr;
  }
};

Slot* unusedSlot() noexcept {
  for (Slot* slot = slots.load(std::memory_order_acquire); slot != nullptr; slot = slot->next) {
    bool expected = false;
    if (slot->taken.compare_exchange_strong(expected, true, std::memory_order_acquire)) return slot;
  }
  return nullptr;
}

Slot* newSlot() noexcept {
  Slot* const slot = new (std::nothrow) Slot;
  if (slot == nullptr) return nullptr;
  slot->next = slots.load(std::memory_order_relaxed);
  while (!slots.compare_exchange_weak(slot->next, slot, std::memory_order_release)) {
  }
  return slot;
}

// Null while the thread ends, and without memory.
[[gnu::noinline]] Slot* findSlot() noexcept {
  if (threadEnds) return nullptr;
  thread_local SlotReturn const giveBack;
  static_cast<void>(giveBack);
  ownSlot = unusedSlot();
  if (ownSlot == nullptr) ownSlot = newSlot();
  return ownSlot;
}

Slot* slotOfThread() noexcept { return ownSlot != nullptr ? ownSlot : findSlot(); }

}  // namespace

void* ArrayBlock::take(std::size_t size) {
  Slot* const slot = slotOfThread();
  if (slot != nullptr && slot->kept != nullptr) {
    FreeBlock* const block = slot->kept;
    slot->kept = block->next;
    --slot->keptCount;
    slot->add(1);
    return block;
  }
  void* const block = ::operator new(size);
  if (slot != nullptr) {
    slot->add(1);
  } else {
    homelessCount.fetch_add(1, std::memory_order_relaxed);
  }
  return block;
}

void ArrayBlock::give(void* block) noexcept {
  if (block == nullptr) return;
  Slot* const slot = slotOfThread();
  if (slot == nullptr) {
    homelessCount.fetch_sub(1, std::memory_order_relaxed);
    return ::operator delete(block);
  }
  slot->add(-1);
  if (slot->keptCount >= KEPT_BLOCKS) return ::operator delete(block);
  slot->kept = new (block) FreeBlock{slot->kept};
  ++slot->keptCount;
}

std::ptrdiff_t ArrayBlock::total() noexcept {
  std::ptrdiff_t sum = homelessCount.load(std::memory_order_relaxed);
  for (Slot const* slot = slots.load(std::memory_order_acquire); slot != nullptr; slot = slot->next)
    sum += slot->count.load(std::memory_order_relaxed);
  return sum;
}

}  // namespace kestrel::detail
