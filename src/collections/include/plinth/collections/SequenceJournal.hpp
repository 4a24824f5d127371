// The undo of a sequence: what was inserted, erased and replaced, and whole former contents.
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

  /// Makes room for one step; call before the change.
  void reserve() { makeRoomForOne(m_steps); }
  void reserveReset() {
    reserve();
    makeRoomForOne(m_former, 1);
  }
  void inserted(std::size_t position) noexcept { add(Kind::INSERTED, position, T()); }
  void erased(std::size_t position, T value) noexcept { add(Kind::ERASED, position, std::move(value)); }
  void replaced(std::size_t position, T value) noexcept { add(Kind::REPLACED, position, std::move(value)); }
  /// The whole contents have been taken out.
  void reset(std::vector<T> former) noexcept {
    m_former.push_back(std::move(former));
    add(Kind::RESET, m_former.size() - 1, T());
  }

  std::size_t steps() const noexcept override { return m_steps.size(); }
  void clear() noexcept override {
    forgetSteps(m_steps);
    m_former.clear();
  }

  void undoTo(std::size_t mark) noexcept override {
    while (m_steps.size() > mark) {
      Step& step = m_steps.back();
      auto const at = m_container->begin() + static_cast<std::ptrdiff_t>(step.position);
      switch (step.kind) {
        case Kind::INSERTED:
          m_container->erase(at);
          break;
        case Kind::ERASED:  // the capacity is there: the vector held this value before
          m_container->insert(at, std::move(step.value));
          break;
        case Kind::REPLACED:
          *at = std::move(step.value);
          break;
        case Kind::RESET:
          *m_container = std::move(m_former.back());
          m_former.pop_back();
          break;
      }
      m_steps.pop_back();
    }
  }

  /// The contents before the first step. Linear in contents and steps.
  std::vector<T> oldContents() const {
    std::vector<T> contents = *m_container;
    for (auto step = m_steps.rbegin(); step != m_steps.rend(); ++step) {
      auto const at = static_cast<std::ptrdiff_t>(step->position);
      if (step->kind == Kind::INSERTED) {
        contents.erase(contents.begin() + at);
      } else if (step->kind == Kind::ERASED) {
        contents.insert(contents.begin() + at, step->value);
      } else if (step->kind == Kind::REPLACED) {
        contents[step->position] = step->value;
      } else {
        contents = m_former[step->position];
      }
    }
    return contents;
  }
  std::size_t oldSize() const noexcept {
    std::size_t size = m_container->size();
    for (auto step = m_steps.rbegin(); step != m_steps.rend(); ++step) {
      if (step->kind == Kind::INSERTED) --size;
      if (step->kind == Kind::ERASED) ++size;
      if (step->kind == Kind::RESET) size = m_former[step->position].size();
    }
    return size;
  }

 private:
  enum class Kind : std::uint8_t { INSERTED, ERASED, REPLACED, RESET };
  struct Step {
    T value;
    std::size_t position;
    Kind kind;
  };
  void add(Kind kind, std::size_t position, T value) noexcept {
    m_steps.push_back(Step{std::move(value), position, kind});
  }

  std::vector<T>* m_container;
  std::vector<Step> m_steps;
  std::vector<std::vector<T>> m_former;
};

}  // namespace plinth::detail
