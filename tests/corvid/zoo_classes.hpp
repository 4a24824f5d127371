// Binds the zoo to the host: package "zoo.residents" with Animal, Cat, Ghost (abstract), Diet, Place and Herd.
#pragma once

#include <cstddef>

namespace zoo {

/// What the binding was asked for, to prove when the host asks.
struct Calls {
  int packagesInitialized = 0;
  int animalsDescribed = 0;
};
extern Calls calls;

/// While true, the description of Cat fails half way.
extern bool catDescriptionFails;

/// Registers the packages "zoo" and "zoo.residents".
void registerZoo();

}  // namespace zoo
