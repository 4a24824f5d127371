// A vector being edited: its free slots are kept together where the last edit was, so that edits side by side cost what
// they edit, and an edit elsewhere the distance. Ownership: the vector belongs to the caller, who finishes the edit.
// Thread rule: one edit belongs to one thread.
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace plinth::detail {

template <class T>
class GapBuffer {
 public:
  /// Makes room to grow to `largest` values. Allocates nothing where the vector's capacity is that large.
  GapBuffer(std::vector<T>& values, std::size_t largest)
      : m_values(&values), m_begin(values.size()), m_end(std::max(values.size(), largest)) {
    values.resize(m_end);
  }

  /// Linear in the distance from the last edit and in what goes, as below.
  void erase(std::size_t first, std::size_t last) noexcept {
    moveTo(last);
    std::for_each(at(first), at(last), [](auto&& value) { value = T(); });
    m_begin = first;
  }
  /// Inserts `value(0)` to `value(count - 1)` before the position.
  template <class ValueAt>
  void insert(std::size_t position, std::size_t count, ValueAt const& value) {
    moveTo(position);
    for (std::size_t i = 0; i < count; ++i) (*m_values)[m_begin++] = value(i);
  }
  void replace(std::size_t position, T value) noexcept {
    (*m_values)[position < m_begin ? position : position + (m_end - m_begin)] = std::move(value);
  }
  /// Closes the gap: the vector holds the values and nothing else.
  void finish() noexcept {
    moveTo(m_values->size() - (m_end - m_begin));
    m_values->resize(m_begin);
  }

 private:
  auto at(std::size_t slot) const { return m_values->begin() + static_cast<std::ptrdiff_t>(slot); }
  void moveTo(std::size_t position) noexcept {
    if (m_begin == m_end) {
      m_begin = m_end = position;
    } else if (position < m_begin) {
      std::move_backward(at(position), at(m_begin), at(m_end));
      m_end -= m_begin - position;
      m_begin = position;
    } else {
      std::size_t const count = position - m_begin;
      std::move(at(m_end), at(m_end + count), at(m_begin));
      m_begin += count;
      m_end += count;
    }
  }

  std::vector<T>* m_values;
  std::size_t m_begin;  ///< the gap's first slot
  std::size_t m_end;
};

}  // namespace plinth::detail
