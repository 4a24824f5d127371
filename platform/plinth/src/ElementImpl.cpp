#include "plinth/ElementImpl.hpp"

#include <array>
#include <cstring>
#include <random>

namespace plinth {

void (*ElementImpl::m_callback)(ElementImpl*, AbstractOwnedCollection*) = nullptr;

ElementImpl::~ElementImpl() = default;

bool ElementImpl::tryAddRef() const noexcept {
  std::uint32_t count = m_refCount.load(std::memory_order_relaxed);
  while ((count & REFCOUNT_DELETING) == 0) {
    if (m_refCount.compare_exchange_weak(count, count + 1, std::memory_order_relaxed)) return true;
  }
  return false;
}

void ElementImpl::removeRef() noexcept {
  // The destructors release fields that may reach this object again. So the last reference becomes the mark in the same
  // step, before any field goes, and from then on the count can't come back to zero.
  std::uint32_t count = refCount();
  auto const next = [&] { return count == 1 ? REFCOUNT_DELETING : count - 1; };
  if (groundwork::isSingleThreaded()) {
    m_refCount.store(next(), std::memory_order_relaxed);
    if (count != 1) return;
  } else {
    while (!m_refCount.compare_exchange_weak(count, next(), std::memory_order_acq_rel, std::memory_order_relaxed)) {
    }
    if (count != 1) return;
    std::atomic_thread_fence(std::memory_order_seq_cst);
  }
  delete this;
}

namespace {

// xoshiro256**: 32 bytes of state for each thread, where the engines of the standard library that are as good take
// 2.5 KiB, which a library that is opened at run time can't have. All zero until it is seeded, a state that it never
// comes to by itself; so there is nothing to construct when a thread first asks.
class RandomBits {
 public:
  std::uint64_t next() noexcept {
    std::uint64_t const result = rotateLeft(m_state[1] * 5, 7) * 9;
    std::uint64_t const shifted = m_state[1] << 17;
    m_state[2] ^= m_state[0];
    m_state[3] ^= m_state[1];
    m_state[1] ^= m_state[2];
    m_state[0] ^= m_state[3];
    m_state[2] ^= shifted;
    m_state[3] = rotateLeft(m_state[3], 45);
    return result;
  }
  bool isSeeded() const noexcept { return (m_state[0] | m_state[1] | m_state[2] | m_state[3]) != 0; }
  [[gnu::noinline, gnu::cold]] void seed() {
    std::random_device source;
    std::array<std::uint64_t, 4> words{};
    for (std::uint64_t& word : words) word = std::uint64_t{source()} << 32 | source();
    m_state = words;
  }

 private:
  static std::uint64_t rotateLeft(std::uint64_t word, unsigned bits) noexcept {
    return word << bits | word >> (64 - bits);
  }

  std::array<std::uint64_t, 4> m_state{};
};

// At a fixed place in each thread's storage, as all of this library's is: reaching it takes no call.
[[gnu::tls_model("initial-exec")]] thread_local RandomBits randomBits;

}  // namespace

boost::uuids::uuid ElementImpl::generateNewUuid() {
  // Boost's generator draws 32 bits at a time through a distribution, which is a tenth of what making an element costs.
  RandomBits& random = randomBits;
  if (!random.isSeeded()) random.seed();
  std::array<std::uint64_t, 2> const bits{random.next(), random.next()};
  boost::uuids::uuid uuid{};
  static_assert(sizeof uuid.data == sizeof bits);
  std::memcpy(uuid.data, bits.data(), sizeof bits);
  uuid.data[6] = static_cast<std::uint8_t>((uuid.data[6] & 0x0FU) | 0x40U);  // version 4: random
  uuid.data[8] = static_cast<std::uint8_t>((uuid.data[8] & 0x3FU) | 0x80U);  // variant of RFC 4122
  return uuid;
}

}  // namespace plinth
