// The undo of a sequence: what was inserted, erased and replaced, and whole former contents. What happens to values
// that the same transaction level has inserted needs no step of its own, so that filling a sequence costs one in all.
// Ownership: belongs to the sequence whose vector it takes back. Thread rule: the model's thread.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "plinth/AbstractOwnedCollection.hpp"

namespace plinth::detail {

template <class T>
class SequenceJournal : public CollectionJournal {
 public:
  explicit SequenceJournal(std::vector<T>& container) noexcept : m_container(&container) {}

  /// Makes room for that many steps; call before the change.
  void reserve(std::size_t count = 1) { makeRoomFor(m_steps, count); }
  void reserveReset() {
    reserve();
    makeRoomFor(m_former, 1, 1);
  }
  void inserted(std::size_t position, std::size_t count = 1) noexcept {
    if (Step* const run = ownInsertion(); run != nullptr && run->begin <= position && position <= run->end) {
      run->end += count;
    } else {
      m_steps.emplace_back(T(), position, position + count, Kind::INSERTED);
    }
  }
  void erased(std::size_t position, T value) noexcept {
    if (Step* const run = ownInsertionAround(position)) {
      if (--run->end != run->begin) return;
      m_steps.pop_back();
      noteCancelled();
    } else {
      m_steps.emplace_back(std::move(value), position, position + 1, Kind::ERASED);
    }
  }
  void replaced(std::size_t position, T value) noexcept {
    if (ownInsertionAround(position) != nullptr) return;
    m_steps.emplace_back(std::move(value), position, position + 1, Kind::REPLACED);
  }
  /// The whole contents have been taken out.
  void reset(std::vector<T> former) noexcept {
    m_former.push_back(std::move(former));
    m_steps.emplace_back(T(), m_former.size() - 1, m_former.size(), Kind::RESET);
  }

  std::size_t steps() const noexcept override { return m_steps.size(); }
  void clear() noexcept override {
    forgetSteps(m_steps);
    m_former.clear();
  }

  void undoTo(std::size_t mark) noexcept override {
    while (m_steps.size() > mark) {
      Step& step = m_steps.back();
      switch (step.kind) {
        case Kind::INSERTED:
          m_container->erase(at(*m_container, step.begin), at(*m_container, step.end));
          break;
        case Kind::ERASED:  // the capacity is there: the vector held this value before
          m_container->insert(at(*m_container, step.begin), std::move(step.value));
          break;
        case Kind::REPLACED:
          *at(*m_container, step.begin) = std::move(step.value);
          break;
        case Kind::RESET:
          *m_container = std::move(m_former.back());
          m_former.pop_back();
          break;
      }
      m_steps.pop_back();
    }
  }

  /// The contents before the first step. Linear in the contents for each step in the midst of them.
  std::vector<T> oldContents() const {
    std::vector<T> contents = *m_container;
    for (auto step = m_steps.rbegin(); step != m_steps.rend(); ++step) {
      if (step->kind == Kind::INSERTED) {
        contents.erase(at(contents, step->begin), at(contents, step->end));
      } else if (step->kind == Kind::ERASED) {
        contents.insert(at(contents, step->begin), step->value);
      } else if (step->kind == Kind::REPLACED) {
        contents[step->begin] = step->value;
      } else {
        contents = m_former[step->begin];
      }
    }
    return contents;
  }
  /// How many there were before the first step. Linear in the steps.
  std::size_t oldSize() const noexcept {
    std::size_t size = m_container->size();
    for (auto step = m_steps.rbegin(); step != m_steps.rend(); ++step) {
      if (step->kind == Kind::INSERTED) size -= step->end - step->begin;
      if (step->kind == Kind::ERASED) ++size;
      if (step->kind == Kind::RESET) size = m_former[step->begin].size();
    }
    return size;
  }

 private:
  enum class Kind : std::uint8_t { INSERTED, ERASED, REPLACED, RESET };
  struct Step {
    Step(T&& former, std::size_t first, std::size_t behindLast, Kind how) noexcept
        : value(std::move(former)), begin(first), end(behindLast), kind(how) {}
    T value;
    std::size_t begin;  ///< the first slot; of a reset, the position among the former contents
    std::size_t end;    ///< the slot behind the last
    Kind kind;
  };

  static auto at(std::vector<T>& values, std::size_t position) {
    return values.begin() + static_cast<std::ptrdiff_t>(position);
  }
  /// The last step, if it is an insertion of the present transaction level.
  Step* ownInsertion() noexcept {
    bool const isOwn = m_steps.size() > firstOwnStep() && m_steps.back().kind == Kind::INSERTED;
    return isOwn ? &m_steps.back() : nullptr;
  }
  Step* ownInsertionAround(std::size_t position) noexcept {
    Step* const run = ownInsertion();
    return run != nullptr && run->begin <= position && position < run->end ? run : nullptr;
  }

  std::vector<T>* m_container;
  std::vector<Step> m_steps;
  std::vector<std::vector<T>> m_former;
};

}  // namespace plinth::detail
