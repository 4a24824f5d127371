// Iterates over untyped handles as handles of class T.
// Thread rule: the model's thread; valid as long as the container's own iterators.
#pragma once

#include <iterator>

namespace plinth::detail {

/// `Access` gives the handle that an iterator of the container stands at.
template <class T, class Iterator, class Access>
class HandleIterator {
 public:
  using iterator_category = std::forward_iterator_tag;
  using value_type = T;
  using difference_type = std::ptrdiff_t;
  using pointer = T const*;
  using reference = T const&;

  HandleIterator() = default;
  explicit HandleIterator(Iterator at) : m_at(at) {}
  // Every handle class is one counted pointer and adds nothing to ModelElement.
  reference operator*() const { return static_cast<T const&>(Access::handle(*m_at)); }
  pointer operator->() const { return &**this; }
  HandleIterator& operator++() {
    ++m_at;
    return *this;
  }
  HandleIterator operator++(int) {
    HandleIterator before = *this;
    ++m_at;
    return before;
  }
  friend bool operator==(HandleIterator const& left, HandleIterator const& right) { return left.m_at == right.m_at; }
  friend bool operator!=(HandleIterator const& left, HandleIterator const& right) { return left.m_at != right.m_at; }

 private:
  Iterator m_at;
};

struct Itself {
  template <class H>
  static H const& handle(H const& handle) noexcept {
    return handle;
  }
};

}  // namespace plinth::detail
