// Which type of the metamodel a C++ type stands for.
// Thread rule: any thread.
#pragma once

#include "plinth/ModelFwd.hpp"

namespace plinth {

/// `static meta::TypeImpl* type()`. Specialised for each type of a plain value.
template <class T, class = void>
struct MetaTypeOf;

}  // namespace plinth
