// A counting filter over UUIDs for a fast negative test. Counters that reach their limit stay there: the filter may
// then say yes for what has gone, never no for what is in it. Ownership: plain value. Thread rule: the owner's thread.
#pragma once

#include <boost/uuid/uuid.hpp>
#include <cstdint>
#include <vector>

#include "groundwork/export.hpp"

namespace plinth {

class TESSEL_EXPORT SaturatedBloomFilter {
 public:
  /// A filter meant for about `expected` members: one byte and a half for each.
  explicit SaturatedBloomFilter(std::size_t expected);
  void add(boost::uuids::uuid const& uuid) noexcept;
  void remove(boost::uuids::uuid const& uuid) noexcept;
  void clear() noexcept;
  bool contains(boost::uuids::uuid const& uuid) const noexcept;

 private:
  static constexpr std::uint8_t SATURATED = 0xFF;
  static constexpr int PROBES = 3;
  std::size_t slot(boost::uuids::uuid const& uuid, int probe) const noexcept;

  std::vector<std::uint8_t> m_counters;
};

}  // namespace plinth
