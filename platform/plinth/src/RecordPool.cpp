#include "RecordPool.hpp"

#include <new>

namespace plinth {

void* RecordPool::allocate(std::size_t size) {
  std::size_t const sizeClass = (size + sizeof(Prefix) + GRAIN - 1) / GRAIN;
  std::byte* block = nullptr;
  RecordPool* owner = nullptr;
  if (sizeClass < CLASSES) {
    if (m_free[sizeClass] == nullptr) refill(sizeClass);
    Free* const taken = m_free[sizeClass];
    m_free[sizeClass] = taken->next;
    block = reinterpret_cast<std::byte*>(taken);
    owner = this;
    ++m_inUse;
  } else {
    block = static_cast<std::byte*>(::operator new(size + sizeof(Prefix)));
  }
  ::new (block) Prefix{owner, sizeClass};
  return block + sizeof(Prefix);
}

void RecordPool::release(void* memory) noexcept {
  std::byte* const block = static_cast<std::byte*>(memory) - sizeof(Prefix);
  auto const [owner, sizeClass] = *std::launder(reinterpret_cast<Prefix*>(block));
  if (owner == nullptr) {
    ::operator delete(block);
    return;
  }
  owner->m_free[sizeClass] = ::new (block) Free{owner->m_free[sizeClass]};
  --owner->m_inUse;
}

void RecordPool::refill(std::size_t sizeClass) {
  std::size_t const blockSize = sizeClass * GRAIN;
  std::size_t const count = CHUNK / blockSize;
  std::unique_ptr<std::byte[]> made(new std::byte[count * blockSize]);  // not make_unique, which would clear it
  std::byte* const chunk = made.get();
  m_chunks.push_back(std::move(made));
  for (std::size_t i = count; i-- > 0;) m_free[sizeClass] = ::new (chunk + i * blockSize) Free{m_free[sizeClass]};
}

void RecordPool::clear() noexcept {
  m_free.fill(nullptr);
  std::vector<std::unique_ptr<std::byte[]>>().swap(m_chunks);
}

}  // namespace plinth
