// A thing that keeps its own undo, and what the model's log notes of it.
// Thread rule: the model's thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "groundwork/export.hpp"

namespace plinth {

/// Empties what a transaction has written down, and keeps its room for the next one unless it is much.
template <class T>
void forgetSteps(std::vector<T>& steps) noexcept {
  constexpr std::size_t KEPT_BYTES = 64 * 1024;
  steps.clear();
  if (steps.capacity() * sizeof(T) > KEPT_BYTES) std::vector<T>().swap(steps);
}

/// A thing that keeps its own undo, such as a collection's journal. The log knows how far to take it back.
class TESSEL_EXPORT Undoable {
 public:
  virtual ~Undoable();
  /// Takes back all steps beyond the first `mark`.
  virtual void undoTo(std::size_t mark) noexcept = 0;
  virtual std::size_t steps() const noexcept = 0;
  /// The outermost transaction has ended: what is kept can go.
  virtual void forget() noexcept = 0;
  /// Whether the log knows already that it changes at this level.
  bool isTouchedAt(std::uint32_t level) const noexcept { return m_touchedLevel == level && level != 0; }

 protected:
  /// The steps before this one are an enclosing level's, or may be: they stand as they are.
  std::size_t firstOwnStep() const noexcept { return m_firstOwnStep; }

 private:
  friend class UndoLog;
  std::uint32_t m_touchedLevel = 0;
  std::uint32_t m_firstOwnStep = 0;
};

}  // namespace plinth
