// Guards against change, such as the one on the metamodel.
// Ownership: a Freezer holds its model and outlives its Thawers. Thread rule: the model's thread.
#pragma once

#include "plinth/Model.hpp"

namespace plinth {

/// A model is frozen as long as one of its Freezers lives that isn't thawed: whatever would change it raises
/// CannotModifyFrozenModel. Freezers of one model nest.
class TESSEL_EXPORT Model::Freezer {
 public:
  /// Raises NoModel, and CannotFreezeOpenModel while a transaction is open.
  explicit Freezer(Model model);
  Freezer(Freezer const&) = delete;
  Freezer& operator=(Freezer const&) = delete;
  ~Freezer();

  /// Lets changes through until the Thawer ends. Thaws nest.
  [[nodiscard]] Thawer thaw() noexcept;

 private:
  friend class Thawer;
  Model m_model;
  int m_thaws = 0;
};

/// A thaw of one Freezer. A transaction that is begun meanwhile goes on to its own end.
class TESSEL_EXPORT Model::Thawer {
 public:
  explicit Thawer(Freezer& freezer) noexcept;
  Thawer(Thawer&& other) noexcept : m_freezer(std::exchange(other.m_freezer, nullptr)) {}
  Thawer(Thawer const&) = delete;
  Thawer& operator=(Thawer const&) = delete;
  ~Thawer();

 private:
  Freezer* m_freezer;
};

}  // namespace plinth
