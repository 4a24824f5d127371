// UUIDs of names: version 3, with no namespace before the name. A header without a source, since the generator, which
// is built before the library, needs it too. Thread rule: pure functions.
#pragma once

#include <boost/uuid/detail/md5.hpp>
#include <boost/uuid/uuid.hpp>
#include <cstdint>
#include <string_view>

namespace groundwork {

/// The MD5 digest of the UTF-8 bytes of `name`, stamped as a UUID of version 3: the same on every machine and in every
/// release. Linear in the length.
inline boost::uuids::uuid nameUuid(std::string_view name) {
  // Boost's name generator always hashes a namespace first, so only its digest is of use here.
  boost::uuids::detail::md5 hash;
  hash.process_bytes(name.data(), name.size());
  boost::uuids::detail::md5::digest_type digest;
  hash.get_digest(digest);

  boost::uuids::uuid uuid{};
  static_assert(sizeof digest == sizeof uuid.data && sizeof digest[0] == 4, "a digest in words, the first byte on top");
  for (std::size_t i = 0; i < sizeof uuid.data; ++i) {
    uuid.data[i] = static_cast<std::uint8_t>(digest[i / 4] >> (24U - 8U * (i % 4)));
  }
  uuid.data[6] = static_cast<std::uint8_t>((uuid.data[6] & 0x0FU) | 0x30U);
  uuid.data[8] = static_cast<std::uint8_t>((uuid.data[8] & 0x3FU) | 0x80U);
  return uuid;
}

}  // namespace groundwork
