#include "plinth/ElementImpl.hpp"

#include <boost/uuid/random_generator.hpp>
#include <random>

namespace plinth {

void (*ElementImpl::m_callback)(ElementImpl*, AbstractOwnedCollection*) = nullptr;

ElementImpl::~ElementImpl() = default;

void ElementImpl::removeRef() noexcept {
  if (m_refCount.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
  // The destructors release fields that may reach this object again; from here on the count can't come back to zero.
  m_refCount.store(REFCOUNT_DELETING, std::memory_order_relaxed);
  std::atomic_thread_fence(std::memory_order_seq_cst);
  delete this;
}

boost::uuids::uuid ElementImpl::generateNewUuid() {
  thread_local boost::uuids::basic_random_generator<std::mt19937_64> generator;
  return generator();
}

}  // namespace plinth
