// The entries of the library for its host. A host that loads the library at run time finds them by name; a program that
// links it calls them itself. Once loaded, the library stays until the process ends, also behind a dlclose: the
// metamodel is never taken down. Thread rule: the host's thread.
#pragma once

#include "groundwork/export.hpp"

extern "C" {

/// Registers the script classes of the model and of its siblings with the host. Call it before the first script runs;
/// to call it again is harmless, and after the host has shut down, registers the classes anew. Raises corvid::HostError
/// when the host refuses a class. Linear in the classes of the model.
TESSEL_EXPORT void MLInitialize_tessel_config_datamodel();

/// The end of what MLInitialize began; the host lets go of the classes when it shuts down.
TESSEL_EXPORT void MLTerminate_tessel_config_datamodel();
}
