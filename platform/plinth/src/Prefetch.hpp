// Tells the processor what is needed soon. A walk over many elements waits for memory, not for instructions: who knows
// which elements come next asks for them while it works on the present one. Thread rule: none; nothing is read.
#pragma once

#include <cstddef>

namespace plinth::detail {

/// Asks for the `bytes` from `address` on. Any address will do, also null.
inline void prefetch(void const* address, std::size_t bytes = 1) noexcept {
  constexpr std::size_t LINE = 64;
  auto const* const start = static_cast<char const*>(address);
  for (std::size_t offset = 0; offset < bytes; offset += LINE) __builtin_prefetch(start + offset);
}

/// What the fields of most elements take.
constexpr std::size_t ELEMENT_BYTES = 320;

}  // namespace plinth::detail
