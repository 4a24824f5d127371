#include "plinth/ElementImpl.hpp"

#include <array>
#include <cstring>
#include <random>

namespace plinth {

void (*ElementImpl::m_callback)(ElementImpl*, AbstractOwnedCollection*) = nullptr;

ElementImpl::~ElementImpl() = default;

bool ElementImpl::tryAddRef() const noexcept {
  std::uint32_t count = m_refCount.load(std::memory_order_relaxed);
  while (count != 0 && (count & REFCOUNT_DELETING) == 0) {
    if (m_refCount.compare_exchange_weak(count, count + 1, std::memory_order_relaxed)) return true;
  }
  return false;
}

void ElementImpl::removeRef() noexcept {
  if (m_refCount.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
  // The destructors release fields that may reach this object again; from here on the count can't come back to zero.
  m_refCount.store(REFCOUNT_DELETING, std::memory_order_relaxed);
  std::atomic_thread_fence(std::memory_order_seq_cst);
  delete this;
}

namespace {

std::mt19937_64 makeEngine() {
  std::random_device source;
  std::array<std::uint32_t, 16> words{};
  for (std::uint32_t& word : words) word = source();
  std::seed_seq seeds(words.begin(), words.end());
  return std::mt19937_64(seeds);
}

}  // namespace

boost::uuids::uuid ElementImpl::generateNewUuid() {
  // Boost's generator draws 32 bits at a time through a distribution, which is a tenth of what making an element costs.
  thread_local std::mt19937_64 engine = makeEngine();
  std::array<std::uint64_t, 2> const bits{engine(), engine()};
  boost::uuids::uuid uuid{};
  static_assert(sizeof uuid.data == sizeof bits);
  std::memcpy(uuid.data, bits.data(), sizeof bits);
  uuid.data[6] = static_cast<std::uint8_t>((uuid.data[6] & 0x0FU) | 0x40U);  // version 4: random
  uuid.data[8] = static_cast<std::uint8_t>((uuid.data[8] & 0x3FU) | 0x80U);  // variant of RFC 4122
  return uuid;
}

}  // namespace plinth
