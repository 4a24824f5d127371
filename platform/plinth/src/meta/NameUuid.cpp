#include "plinth/meta/NameUuid.hpp"

#include <boost/uuid/detail/md5.hpp>

namespace plinth::meta {

boost::uuids::uuid nameUuid(std::string_view name) {
  boost::uuids::detail::md5 hash;
  hash.process_bytes(name.data(), name.size());
  boost::uuids::detail::md5::digest_type digest;
  hash.get_digest(digest);
  boost::uuids::uuid uuid;
  for (std::size_t i = 0; i < uuid.size(); ++i) {  // the digest comes as words, the first byte highest
    uuid.data[i] = static_cast<std::uint8_t>(digest[i / 4] >> (24U - 8U * (i % 4)));
  }
  uuid.data[6] = static_cast<std::uint8_t>((uuid.data[6] & 0x0FU) | 0x30U);
  uuid.data[8] = static_cast<std::uint8_t>((uuid.data[8] & 0x3FU) | 0x80U);
  return uuid;
}

}  // namespace plinth::meta
