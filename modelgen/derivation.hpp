// Computes everything that follows from a linked and checked model: flags, indexes, identities, field order, the owners
// of keyed maps, the package tree and the handles of the meta package.
#pragma once

#include "modelgen/model.hpp"

namespace modelgen {

// To be called once, on a set in which no check found anything: every link is then present and every chain ends.
void deriveModels(ModelSet& set);

}  // namespace modelgen
