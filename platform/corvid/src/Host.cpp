#include "corvid/Host.hpp"

#include <atomic>
#include <cstdlib>
#include <string>

#include "HostState.hpp"
#include "corvid/HostError.hpp"
#include "corvid/Identifier.hpp"
#include "groundwork/Except.hpp"

namespace corvid {
namespace {

bool serviceManaged = false;
std::atomic<std::ptrdiff_t> liveDescriptions{0};

}  // namespace

namespace internal {

Identifier makeInterned(std::string_view text) { return kestrel::intern(text); }

}  // namespace internal

HostState& hostState() {
  static auto* const state = new HostState;
  return *state;
}

std::unordered_map<void*, ScriptObject*>& bindings() {
  static auto* const map = new std::unordered_map<void*, ScriptObject*>;
  return *map;
}

bool isServiceManaged() noexcept { return serviceManaged; }

void setServiceManaged(bool managed) noexcept { serviceManaged = managed; }

void shutDown() {
  std::ptrdiff_t const objects = liveObjectCount();
  if (objects != 0)
    throw HostError(ErrorKey::HOST_IN_USE,
                    "The host can't be shut down while " + std::to_string(objects) + " script objects exist.");
  HostState forgotten;
  std::swap(forgotten, hostState());
}

void* HostAllocated::operator new(std::size_t size) {
  void* const block = std::malloc(size);
  if (block == nullptr) groundwork::except::bad_alloc();
  liveDescriptions.fetch_add(1, std::memory_order_relaxed);
  return block;
}

void HostAllocated::operator delete(void* block) noexcept {
  if (block == nullptr) return;
  liveDescriptions.fetch_sub(1, std::memory_order_relaxed);
  std::free(block);
}

std::ptrdiff_t liveDescriptionCount() noexcept { return liveDescriptions.load(std::memory_order_relaxed); }

}  // namespace corvid
