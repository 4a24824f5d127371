// A counted pointer to an implementation object; the whole of what a handle class is.
// Thread rule: copies and releases are atomic on the count; one handle object belongs to one thread at a time.
#pragma once

#include <cstddef>
#include <utility>

#include "plinth/ElementImpl.hpp"

namespace plinth {

/// Adopts a reference that somebody already holds, such as the construction hold of a new object.
struct Adopt {};

/// Base of every handle class. Empty, live or dead; `operator bool` is true for a live element only.
class Handle {
 public:
  Handle() noexcept = default;
  explicit Handle(ElementImpl* impl) noexcept : m_impl(impl) { addRef(); }
  Handle(ElementImpl* impl, Adopt) noexcept : m_impl(impl) {}
  Handle(Handle const& other) noexcept : m_impl(other.m_impl) { addRef(); }
  Handle(Handle&& other) noexcept : m_impl(std::exchange(other.m_impl, nullptr)) {}
  ~Handle() { removeRef(); }

  Handle& operator=(Handle const& other) noexcept {
    Handle copy(other);
    std::swap(m_impl, copy.m_impl);
    return *this;
  }
  Handle& operator=(Handle&& other) noexcept {
    Handle moved(std::move(other));
    std::swap(m_impl, moved.m_impl);
    return *this;
  }

  /// Whoever takes a reference by hand gives it back by hand.
  void addRef() const noexcept {
    if (m_impl != nullptr) m_impl->addRef();
  }
  void removeRef() const noexcept {
    if (m_impl != nullptr) m_impl->removeRef();
  }

  /// True when this handle names an element that is live.
  explicit operator bool() const noexcept { return m_impl != nullptr && m_impl->isLive(); }
  /// True when this handle names nothing at all, neither a live nor a dead element.
  bool isEmpty() const noexcept { return m_impl == nullptr; }
  ElementImpl* elementImpl() const noexcept { return m_impl; }

  friend bool operator==(Handle const& left, Handle const& right) noexcept { return left.m_impl == right.m_impl; }
  friend bool operator!=(Handle const& left, Handle const& right) noexcept { return left.m_impl != right.m_impl; }

 private:
  ElementImpl* m_impl = nullptr;
};

}  // namespace plinth
