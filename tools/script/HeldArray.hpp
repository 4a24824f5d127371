// Host arrays in the hands of Lua: who frees them, and the memory behind them, which Lua's collector can't see.
//
// Ownership: a userdata holds the array and lets go of it when it is collected. While the interpreter closes Lua calls
// no finalizer of what is made any more: such arrays belong to the interpreter. Thread rule: the host's thread.
#pragma once

#include <cstddef>
#include <lua.hpp>
#include <vector>

#include "kestrel/ArrayBase.hpp"

namespace luafront {

/// The arrays of one interpreter.
class HostMemory {
 public:
  /// Collects garbage when what has been taken since the last time is as much as all that was left by it, in Lua or
  /// behind it: so that the cost stays in proportion to what is read. To be called when all that is in use can be
  /// reached by Lua.
  void collectIfDue(lua_State* state);
  /// From here on the interpreter closes; freeLeftOver is called behind that.
  void beginClosing() noexcept { m_isClosing = true; }
  void freeLeftOver() noexcept { m_leftOver.clear(); }

 private:
  friend class HeldArray;
  static constexpr std::size_t LEAST_LIMIT = std::size_t{8} << 20;

  std::size_t m_held = 0;
  std::size_t m_takenSince = 0;
  std::size_t m_limit = LEAST_LIMIT;
  bool m_isClosing = false;
  std::vector<kestrel::OwnedArray> m_leftOver;
};

/// The array of one userdata. Trivial, as a userdata has to be that may go without its finalizer.
class HeldArray {
 public:
  void take(HostMemory& memory, kestrel::OwnedArray array);
  /// For the finalizer.
  void letGo(HostMemory& memory) noexcept;

  /// Null once the userdata was finalized.
  kestrel_array const* get() const noexcept { return m_array; }
  kestrel_array const& operator*() const noexcept { return *m_array; }

 private:
  kestrel_array* m_array;
  std::size_t m_bytes;
  bool m_isLeftOver;
};

}  // namespace luafront
