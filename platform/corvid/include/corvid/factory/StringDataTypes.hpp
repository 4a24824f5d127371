// The host data type of texts that come from C++ strings.
// Thread rule: the host's thread.
#pragma once

#include "groundwork/export.hpp"

namespace corvid::factory::detail {

/// Makes the host know the data type "CorvidFactoryString": a char array, or a string that is not missing; its vector
/// is a string array without missing elements. Does nothing when it is known. Before the first call a signature that
/// names the type raises NoSuchType.
TESSEL_EXPORT void initStringDataTypes();

}  // namespace corvid::factory::detail
