// The undo of a sequence: what was inserted, erased and replaced, and whole former contents. What happens to values
// that the same transaction level has inserted needs no step of its own, so that filling a sequence costs one in all.
// Ownership: belongs to the sequence whose vector it takes back. Thread rule: the model's thread.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "plinth/AbstractOwnedCollection.hpp"
#include "plinth/collections/GapBuffer.hpp"

namespace plinth::detail {

template <class T>
class SequenceJournal : public CollectionJournal {
 public:
  explicit SequenceJournal(std::vector<T>& container) noexcept : m_container(&container) {}

  /// Makes room for one step that keeps `count` values; call before the change, here and below.
  void reserve(std::size_t count = 1) {
    makeRoomFor(m_steps, 1);
    makeRoomFor(m_taken, count);
  }
  void reserveInsertion() { makeRoomFor(m_steps, 1); }
  void reserveReset() {
    makeRoomFor(m_steps, 1);
    makeRoomFor(m_former, 1, 1);
  }
  void inserted(std::size_t position, std::size_t count = 1) noexcept {
    if (Step* const run = ownInsertionAround(position, position)) {
      run->end += count;
    } else {
      m_steps.push_back({position, position + count, Kind::INSERTED});
    }
  }
  void erased(std::size_t position, T value) noexcept {
    if (tookBack(position, position + 1)) return;
    m_taken.push_back(std::move(value));
    m_steps.push_back({position, position + 1, Kind::ERASED});
  }
  /// `values` stood from `position` on.
  void erased(std::size_t position, std::vector<T>&& values) noexcept {
    if (tookBack(position, position + values.size())) return;
    for (auto&& value : values) m_taken.push_back(std::move(value));
    m_steps.push_back({position, position + values.size(), Kind::ERASED});
  }
  void replaced(std::size_t position, T value) noexcept {
    if (ownInsertionAround(position, position + 1) != nullptr) return;
    m_taken.push_back(std::move(value));
    m_steps.push_back({position, position + 1, Kind::REPLACED});
  }
  /// The whole contents have been taken out.
  void reset(std::vector<T> former) noexcept {
    m_steps.push_back({0, former.size(), Kind::RESET});
    m_former.push_back(std::move(former));
  }

  std::size_t steps() const noexcept override { return m_steps.size(); }
  void clear() noexcept override {
    forgetSteps(m_steps);
    forgetSteps(m_taken);
    m_former.clear();
  }

  /// Linear in what the steps keep, in the contents, and in the distances between steps that follow one another.
  void undoTo(std::size_t mark) noexcept override {
    // The capacity is there: the vector has been as large as it becomes.
    Kept const left = takeBack(
        *m_container, mark, [this](std::size_t i) -> T { return std::move(m_taken[i]); },
        [this](std::size_t i) { return std::move(m_former[i]); });
    m_steps.resize(mark);
    m_taken.resize(left.taken);
    m_former.resize(left.former);
  }

  /// The contents before the first step. Costs what taking back all of them costs.
  std::vector<T> oldContents() const {
    std::vector<T> contents = *m_container;
    takeBack(
        contents, 0, [this](std::size_t i) -> T { return m_taken[i]; }, [this](std::size_t i) { return m_former[i]; });
    return contents;
  }
  /// How many there were before the first step. Linear in the steps.
  std::size_t oldSize() const noexcept {
    std::size_t size = m_container->size();
    for (std::size_t i = m_steps.size(); i > 0; --i) size = sizeBefore(m_steps[i - 1], size);
    return size;
  }

 private:
  enum class Kind : std::uint8_t { INSERTED, ERASED, REPLACED, RESET };
  /// The values that erased and replaced steps have taken out stand in one list, as those of resets do in another.
  struct Step {
    std::size_t begin;  ///< the first slot
    std::size_t end;    ///< the slot behind the last
    Kind kind;
  };
  struct Kept {
    std::size_t taken;
    std::size_t former;
  };

  static std::size_t sizeBefore(Step const& step, std::size_t size) noexcept {
    if (step.kind == Kind::INSERTED) return size - (step.end - step.begin);
    if (step.kind == Kind::ERASED) return size + (step.end - step.begin);
    return step.kind == Kind::RESET ? step.end : size;
  }
  /// Where the steps from the last one down to `mark` stop: behind the last reset among them.
  std::size_t lastReset(std::size_t from, std::size_t mark) const noexcept {
    while (from > mark && m_steps[from - 1].kind != Kind::RESET) --from;
    return from;
  }
  /// How large contents of that size become on the way back from step `from` to step `to`.
  std::size_t largestBetween(std::size_t size, std::size_t from, std::size_t to) const noexcept {
    std::size_t largest = size;
    for (; from > to; --from) {
      size = sizeBefore(m_steps[from - 1], size);
      largest = std::max(largest, size);
    }
    return largest;
  }

  /// Takes the steps beyond `mark` back in `contents`; the functions give the value, or the contents, kept there. Gives
  /// how many the steps before keep.
  template <class TakenAt, class FormerAt>
  Kept takeBack(std::vector<T>& contents, std::size_t mark, TakenAt const& takenAt, FormerAt const& formerAt) const {
    Kept left{m_taken.size(), m_former.size()};
    for (std::size_t next = m_steps.size(); next > mark;) {
      std::size_t const stop = lastReset(next, mark);
      GapBuffer<T> buffer(contents, largestBetween(contents.size(), next, stop));
      for (; next > stop; --next) {
        Step const& step = m_steps[next - 1];
        if (step.kind == Kind::INSERTED) {
          buffer.erase(step.begin, step.end);
          continue;
        }
        left.taken -= step.end - step.begin;
        if (step.kind == Kind::REPLACED) {
          buffer.replace(step.begin, takenAt(left.taken));
        } else {
          buffer.insert(step.begin, step.end - step.begin, [&](std::size_t i) { return takenAt(left.taken + i); });
        }
      }
      buffer.finish();
      if (next == mark) break;
      contents = formerAt(--left.former);
      --next;
    }
    return left;
  }

  /// The last step, if it is an insertion of the present transaction level that covers those slots.
  Step* ownInsertionAround(std::size_t begin, std::size_t end) noexcept {
    if (m_steps.size() <= firstOwnStep() || m_steps.back().kind != Kind::INSERTED) return nullptr;
    Step& run = m_steps.back();
    return run.begin <= begin && end <= run.end ? &run : nullptr;
  }
  /// Whether what was erased is what the last step has inserted: then there is nothing to keep.
  bool tookBack(std::size_t begin, std::size_t end) noexcept {
    Step* const run = ownInsertionAround(begin, end);
    if (run == nullptr) return false;
    run->end -= end - begin;
    // The level's only step stays, empty: the sequence is back, and has been changed all the same.
    bool const isOnlyOne = m_steps.size() == firstOwnStep() + 1;
    if (run->end == run->begin && !isOnlyOne) m_steps.pop_back();
    return true;
  }

  std::vector<T>* m_container;
  std::vector<Step> m_steps;
  std::vector<T> m_taken;
  std::vector<std::vector<T>> m_former;
};

}  // namespace plinth::detail
