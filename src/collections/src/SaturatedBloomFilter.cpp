#include "plinth/collections/SaturatedBloomFilter.hpp"

#include <algorithm>

#include "plinth/Hashing.hpp"

namespace plinth {

SaturatedBloomFilter::SaturatedBloomFilter(std::size_t expected) {
  std::size_t size = 64;
  while (size < expected + expected / 2) size *= 2;
  m_counters.resize(size);
}

std::size_t SaturatedBloomFilter::slot(boost::uuids::uuid const& uuid, int probe) const noexcept {
  std::size_t const hash = hashOf(uuid);
  return (hash + static_cast<std::size_t>(probe) * ((hash >> 32U) | 1U)) & (m_counters.size() - 1);
}

void SaturatedBloomFilter::add(boost::uuids::uuid const& uuid) noexcept {
  for (int probe = 0; probe < PROBES; ++probe) {
    auto& counter = m_counters[slot(uuid, probe)];
    if (counter != SATURATED) ++counter;
  }
}

void SaturatedBloomFilter::remove(boost::uuids::uuid const& uuid) noexcept {
  for (int probe = 0; probe < PROBES; ++probe) {
    auto& counter = m_counters[slot(uuid, probe)];
    if (counter != SATURATED && counter != 0) --counter;
  }
}

void SaturatedBloomFilter::clear() noexcept { std::fill(m_counters.begin(), m_counters.end(), std::uint8_t{0}); }

bool SaturatedBloomFilter::contains(boost::uuids::uuid const& uuid) const noexcept {
  for (int probe = 0; probe < PROBES; ++probe) {
    if (m_counters[slot(uuid, probe)] == 0) return false;
  }
  return true;
}

}  // namespace plinth
