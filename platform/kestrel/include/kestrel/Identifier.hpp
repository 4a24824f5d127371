// Interned identifiers: names of host classes, packages and members, kept once per process and compared by address.
//
// The texts live until the process ends; an Identifier is a plain pointer and is copied freely. Interning takes a lock
// and may be done from any thread; everything else is lock-free.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

#include "groundwork/export.hpp"

namespace kestrel {

/// The empty identifier is the default one and equals intern("").
class TESSEL_EXPORT Identifier {
 public:
  constexpr Identifier() noexcept = default;

  std::string const& text() const noexcept { return m_text != nullptr ? *m_text : emptyText(); }
  char const* c_str() const noexcept { return text().c_str(); }
  bool empty() const noexcept { return m_text == nullptr; }

  friend bool operator==(Identifier left, Identifier right) noexcept { return left.m_text == right.m_text; }
  friend bool operator!=(Identifier left, Identifier right) noexcept { return left.m_text != right.m_text; }
  /// Order by address: stable within a process and good for containers, not for showing.
  friend bool operator<(Identifier left, Identifier right) noexcept {
    return std::less<std::string const*>()(left.m_text, right.m_text);
  }
  friend TESSEL_EXPORT std::ostream& operator<<(std::ostream& stream, Identifier identifier);

 private:
  friend TESSEL_EXPORT Identifier intern(std::string_view text);
  friend struct std::hash<Identifier>;
  explicit Identifier(std::string const* text) noexcept : m_text(text) {}

  static std::string const& emptyText() noexcept;

  // Null for the empty identifier.
  std::string const* m_text = nullptr;
};

/// The one identifier of that text. Costs a hash look-up under a lock, and an allocation the first time.
TESSEL_EXPORT Identifier intern(std::string_view text);

}  // namespace kestrel

template <>
struct std::hash<kestrel::Identifier> {
  std::size_t operator()(kestrel::Identifier identifier) const noexcept {
    return std::hash<std::string const*>()(identifier.m_text);
  }
};
