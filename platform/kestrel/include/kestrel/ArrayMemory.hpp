// What host arrays take of memory, for who collects garbage by it. Thread rule: that of the array.
#pragma once

#include "kestrel/ArrayBase.hpp"

namespace kestrel {

/// Bytes that an array holds, fields and cells included; a guess for objects, whose natives only their classes know.
/// Cost: the number of arrays, and of texts, in it.
TESSEL_EXPORT std::size_t heldBytes(kestrel_array const& array);

}  // namespace kestrel
