// What an insert into a map does when another element or value bears the key.
#pragma once

namespace plinth {

enum class CollisionResolution : int {
  RAISE = 0,    ///< raises UniquenessConstraint
  KEEP = 1,     ///< keeps what is there
  REPLACE = 2,  ///< replaces it
};

}  // namespace plinth
