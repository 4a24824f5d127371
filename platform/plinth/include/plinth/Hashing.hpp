// Hashes of value contents and of elements: the same on every run of one build.
// Thread rule: pure functions.
#pragma once

#include <boost/uuid/uuid.hpp>
#include <cstdint>
#include <cstring>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include "plinth/ModelElement.hpp"

namespace plinth {

/// Folds the hash `k` into `state`: the 64-bit hash combine.
constexpr void combineHash(std::uint64_t& state, std::uint64_t k) noexcept {
  constexpr std::uint64_t MULTIPLIER = 0xc6a4a7935bd1e995ULL;
  k *= MULTIPLIER;
  k ^= k >> 47U;
  k *= MULTIPLIER;
  state = (state ^ k) * MULTIPLIER + 0xe6546b64ULL;
}

/// Hash of a UUID: random ones are their own hash, name-based ones are digests.
inline std::size_t hashOf(boost::uuids::uuid const& uuid) noexcept {
  std::uint64_t low = 0;
  std::uint64_t high = 0;
  std::memcpy(&low, uuid.data, sizeof low);
  std::memcpy(&high, uuid.data + sizeof low, sizeof high);
  return static_cast<std::size_t>((low ^ (high * 0x9E3779B97F4A7C15ULL)) * 0xD6E8FEB86659FD93ULL);
}

namespace detail {
constexpr std::size_t BYTES_SEED = 0xc70f6907UL;
}

template <class T, class = void>
struct ValueHash {
  std::uint64_t operator()(T const& value) const { return std::hash<T>()(value); }
};
template <class T>
struct ValueHash<T, std::enable_if_t<std::is_integral_v<T> || std::is_enum_v<T>>> {
  std::uint64_t operator()(T value) const noexcept { return static_cast<std::uint64_t>(value); }
};
template <>
struct ValueHash<double> {
  std::uint64_t operator()(double value) const noexcept {
    return value == 0.0 ? 0 : std::_Hash_bytes(&value, sizeof value, detail::BYTES_SEED);
  }
};
template <>
struct ValueHash<std::u16string> {
  std::uint64_t operator()(std::u16string const& value) const noexcept {
    return std::_Hash_bytes(value.data(), value.size() * sizeof(char16_t), detail::BYTES_SEED);
  }
};
template <class T>
struct ValueHash<boost::optional<T>> {
  std::uint64_t operator()(boost::optional<T> const& value) const { return value ? ValueHash<T>()(*value) : 0; }
};
template <class T>
struct ValueHash<std::vector<T>> {
  std::uint64_t operator()(std::vector<T> const& values) const {
    std::uint64_t state = 0;
    for (auto const& value : values) combineHash(state, ValueHash<T>()(value));
    return state;
  }
};
template <class T>
struct ValueHash<std::set<T>> {
  std::uint64_t operator()(std::set<T> const& values) const {
    std::uint64_t state = 0;
    for (auto const& value : values) combineHash(state, ValueHash<T>()(value));
    return state;
  }
};

template <class T>
std::uint64_t hashValue(T const& value) {
  return ValueHash<T>()(value);
}

template <class T>
struct ValueHash<T, std::enable_if_t<std::is_base_of_v<ModelElement, T>>> {
  std::uint64_t operator()(T const& element) const noexcept { return services::hashers::PlinthHasher()(element); }
};

}  // namespace plinth
