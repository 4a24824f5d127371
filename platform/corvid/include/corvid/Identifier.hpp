// Names given to the host: of packages, classes, members and data types. Interned, so that the host compares addresses.
// Thread rule: any thread.
#pragma once

#include <string_view>

#include "groundwork/export.hpp"
#include "kestrel/Identifier.hpp"

namespace corvid {

using kestrel::Identifier;

namespace internal {

/// The one identifier of that text. Costs a hash look-up under a lock: keep the result where the name is used often.
TESSEL_EXPORT Identifier makeInterned(std::string_view text);

}  // namespace internal
}  // namespace corvid
