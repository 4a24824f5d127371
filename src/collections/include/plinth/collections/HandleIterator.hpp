// Iterates over untyped handles as handles of class T. It only reads: a collection of elements changes through its own
// operations alone, so that no algorithm can reorder or overwrite one.
// Thread rule: the model's thread; valid as long as the container's own iterators.
#pragma once

#include <cstddef>
#include <iterator>
#include <utility>

namespace plinth::detail {

/// The element's handle in a node of a sequence, a set or a map.
template <class H>
H const& elementOf(H const& handle) noexcept {
  return handle;
}
template <class K, class H>
H const& elementOf(std::pair<K const, H> const& entry) noexcept {
  return entry.second;
}

/// As strong as `Iterator`, the container's: what that one can't do does not compile.
template <class T, class Iterator>
class HandleIterator {
 public:
  using iterator_category = typename std::iterator_traits<Iterator>::iterator_category;
  using value_type = T;
  using difference_type = std::ptrdiff_t;
  using pointer = T const*;
  using reference = T const&;

  HandleIterator() = default;
  explicit HandleIterator(Iterator at) : m_at(at) {}
  Iterator const& base() const noexcept { return m_at; }
  // Every handle class is one counted pointer and adds nothing to ModelElement.
  reference operator*() const { return static_cast<T const&>(elementOf(*m_at)); }
  pointer operator->() const { return &**this; }
  reference operator[](difference_type offset) const { return *(*this + offset); }
  HandleIterator& operator++() {
    ++m_at;
    return *this;
  }
  HandleIterator operator++(int) { return HandleIterator(m_at++); }
  HandleIterator& operator--() {
    --m_at;
    return *this;
  }
  HandleIterator operator--(int) { return HandleIterator(m_at--); }
  HandleIterator& operator+=(difference_type offset) {
    m_at += offset;
    return *this;
  }
  HandleIterator& operator-=(difference_type offset) { return *this += -offset; }
  friend HandleIterator operator+(HandleIterator at, difference_type offset) { return at += offset; }
  friend HandleIterator operator+(difference_type offset, HandleIterator at) { return at += offset; }
  friend HandleIterator operator-(HandleIterator at, difference_type offset) { return at -= offset; }
  friend difference_type operator-(HandleIterator const& left, HandleIterator const& right) {
    return left.m_at - right.m_at;
  }
  friend bool operator==(HandleIterator const& left, HandleIterator const& right) { return left.m_at == right.m_at; }
  friend bool operator!=(HandleIterator const& left, HandleIterator const& right) { return left.m_at != right.m_at; }
  friend bool operator<(HandleIterator const& left, HandleIterator const& right) { return left.m_at < right.m_at; }
  friend bool operator>(HandleIterator const& left, HandleIterator const& right) { return right < left; }
  friend bool operator<=(HandleIterator const& left, HandleIterator const& right) { return !(right < left); }
  friend bool operator>=(HandleIterator const& left, HandleIterator const& right) { return !(left < right); }

 private:
  Iterator m_at;
};

}  // namespace plinth::detail
