// Transaction levels of several models that end alike. A change that reaches into another model, to the far end of a
// link, happens there at a level of its own, which follows the innermost level of the model that it came from: when
// that one is committed into the level around it, the follower goes with it; when it is rolled back, so is the
// follower; and the outermost commit is one for all.
//
// A follower follows a level that somebody began, never another follower: what follows a follower follows what that one
// follows. Ownership: a model keeps those that follow it in memory. Thread rule: the models', which is one thread's.
#pragma once

#include <cstdint>
#include <list>
#include <utility>
#include <vector>

#include "plinth/Handle.hpp"
#include "plinth/ModelFwd.hpp"

namespace plinth {

class LevelTies {
 public:
  explicit LevelTies(internal::ModelState& model) noexcept : m_model(&model) {}
  LevelTies(LevelTies const&) = delete;
  LevelTies& operator=(LevelTies const&) = delete;

  /// Sees to it that the innermost level of `far` ends as that of this model does; opens one there if need be. Raises
  /// CannotModifyOutsideTransaction when this model has none, what beginning one in `far` raises, and
  /// OtherModelInTransaction when `far` has one that may end in another way; nothing has changed then.
  void takeAlong(internal::ModelState& far);

  bool hasFollowers() const noexcept { return !m_followers.empty(); }
  /// Whether this model has to do with others at present.
  bool any() const noexcept { return hasFollowers() || !m_leaders.empty(); }
  /// Raises TransactionNotInnermost when what follows the innermost level has opened further ones in it.
  void requireFollowersInnermost() const;
  /// The innermost level has just been committed into what is the innermost now: its followers follow that one.
  void handDown() noexcept;
  /// This model and those that follow it. Raises std::bad_alloc.
  std::vector<Handle> group() const;
  /// The outermost level has been committed: lets go of its followers, or of its leader.
  void dissolve() noexcept;
  /// Before the innermost level is rolled back: rolls back what follows it. True when that level follows another one:
  /// it has gone with that one then.
  bool rollBackTied() noexcept;

 private:
  /// What decides how a level ends: a model's level that somebody began.
  using Fate = std::pair<internal::ModelState*, std::uint32_t>;
  struct Follower {
    std::uint32_t level;  ///< of this model
    Handle model;
    std::uint32_t itsLevel;
  };
  struct Leader {
    std::uint32_t level;  ///< of this model
    Fate fate;
  };

  Fate fateOf(std::uint32_t level) const noexcept;

  internal::ModelState* m_model;
  std::list<Follower> m_followers;  ///< a list, since a follower that goes to another leader must not need memory
  std::vector<Leader> m_leaders;    ///< by ascending level
};

}  // namespace plinth
