// Failure points by name: a test can make the n-th passage of one fail. Compiled in only where TESSEL_FAILURE_POINTS is
// defined; otherwise they cost nothing.
// Thread rule: one thread arms and passes them.
#pragma once

#include <cstddef>

#include "groundwork/export.hpp"

namespace plinth {

#ifdef TESSEL_FAILURE_POINTS

/// Raises std::bad_alloc when the test has armed this point and its passage has come.
TESSEL_EXPORT void failurePoint(char const* name);

/// Arms the point for its `passage`-th passage from now on (1: the next); an empty name arms every point at once.
TESSEL_EXPORT void armFailurePoint(char const* name, std::size_t passage);
/// Disarms; answers whether the failure happened.
TESSEL_EXPORT bool disarmFailurePoint();

#else

inline void failurePoint(char const*) noexcept {}

#endif

}  // namespace plinth
