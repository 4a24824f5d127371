// UUIDs of names: version 3, with no namespace.
// Thread rule: pure functions.
#pragma once

#include <boost/uuid/uuid.hpp>
#include <string_view>

#include "groundwork/export.hpp"

namespace plinth::meta {

/// The MD5 digest of the UTF-8 bytes of `name`, stamped as a UUID of version 3. Linear in the length.
TESSEL_EXPORT boost::uuids::uuid nameUuid(std::string_view name);

}  // namespace plinth::meta
