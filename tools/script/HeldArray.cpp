#include "HeldArray.hpp"

#include <algorithm>
#include <type_traits>

#include "kestrel/ArrayMemory.hpp"

namespace luafront {

static_assert(std::is_trivial_v<HeldArray>);

void HostMemory::collectIfDue(lua_State* state) {
  if (m_takenSince < m_limit || m_isClosing) return;
  // Not where a script has stopped its collector, nor in a finalizer.
  if (lua_gc(state, LUA_GCISRUNNING) != 1) return;
  m_takenSince = 0;
  lua_gc(state, LUA_GCCOLLECT);
  constexpr int BYTES_OF_KILOBYTE = 1024;
  auto const inLua = static_cast<std::size_t>(lua_gc(state, LUA_GCCOUNT)) * BYTES_OF_KILOBYTE;
  m_limit = std::max({LEAST_LIMIT, m_held, inLua});
}

void HeldArray::take(HostMemory& memory, kestrel::OwnedArray array) {
  m_bytes = kestrel::heldBytes(*array);
  m_isLeftOver = memory.m_isClosing;
  kestrel_array* const raw = array.get();
  if (m_isLeftOver) {
    memory.m_leftOver.push_back(std::move(array));
  } else {
    static_cast<void>(array.release());
  }
  m_array = raw;
  memory.m_held += m_bytes;
  memory.m_takenSince += m_bytes;
}

void HeldArray::letGo(HostMemory& memory) noexcept {
  if (m_array == nullptr) return;
  kestrel_array* const array = m_array;
  m_array = nullptr;
  memory.m_held -= m_bytes;
  if (!m_isLeftOver) kestrel::destroy(array);
}

}  // namespace luafront
