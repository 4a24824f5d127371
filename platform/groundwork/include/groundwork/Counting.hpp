// Counting across threads, without locked instructions as long as there is one thread only: they are the larger part of
// what such a count costs. The C library knows; std::shared_ptr counts the same way.
// Thread rule: safe from any thread.
#pragma once

#include <atomic>
#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif

namespace groundwork {

/// Whether this thread is the only one of the process. True at first in most programs; once another thread has been
/// started it may stay false for good.
inline bool isSingleThreaded() noexcept {
#if __has_include(<sys/single_threaded.h>)
  return __libc_single_threaded != 0;
#else
  return false;
#endif
}

/// Adds `more` to the counter. Orders nothing else.
template <class T>
void addTo(std::atomic<T>& counter, T more) noexcept {
  if (isSingleThreaded()) {
    counter.store(counter.load(std::memory_order_relaxed) + more, std::memory_order_relaxed);
  } else {
    counter.fetch_add(more, std::memory_order_relaxed);
  }
}

}  // namespace groundwork
