// The foundation's own script classes: "plinth.ModelElement", "plinth.Model", "plinth.Transaction", the collections
// "plinth.Sequence", "plinth.Set", "plinth.Map" and "plinth.Multimap", and "plinth.meta.Class".
// Thread rule: the host's thread.
#pragma once

#include "groundwork/export.hpp"

namespace plinth::bridge {

/// Registers the packages "plinth" and "plinth.meta" with the host. Does nothing for one that it has.
TESSEL_EXPORT void registerFoundation();

}  // namespace plinth::bridge
