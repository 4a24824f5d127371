#include "modelgen/uuid.hpp"

#include <boost/uuid/detail/md5.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <cstdint>

namespace modelgen {

// Boost's name generator always hashes a namespace first, so only its digest is of use here.
boost::uuids::uuid uuidOf(std::string const& name) {
  boost::uuids::detail::md5 hash;
  hash.process_bytes(name.data(), name.size());
  boost::uuids::detail::md5::digest_type digest;
  hash.get_digest(digest);

  boost::uuids::uuid result;
  // The digest is four words, each with its first byte on top.
  static_assert(sizeof(digest) == sizeof(result.data) && sizeof(digest[0]) == 4, "a digest in words");
  for (std::size_t i = 0; i < sizeof(result.data); ++i) {
    result.data[i] = static_cast<std::uint8_t>(digest[i / 4] >> (24 - 8 * (i % 4)));
  }
  result.data[6] = static_cast<std::uint8_t>((result.data[6] & 0x0f) | 0x30);
  result.data[8] = static_cast<std::uint8_t>((result.data[8] & 0x3f) | 0x80);
  return result;
}

std::string toText(boost::uuids::uuid const& uuid) { return boost::uuids::to_string(uuid); }

}  // namespace modelgen
