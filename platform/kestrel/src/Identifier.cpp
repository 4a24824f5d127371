#include "kestrel/Identifier.hpp"

#include <mutex>
#include <ostream>
#include <unordered_set>

namespace kestrel {
namespace {

struct InternTable {
  std::mutex mutex;
  std::unordered_set<std::string> texts;  // node based: the address of a text never changes
};

// Never destroyed: identifiers are used by exit handlers and by destructors of static objects.
InternTable& table() {
  static auto* const instance = new InternTable;
  return *instance;
}

}  // namespace

Identifier intern(std::string_view text) {
  if (text.empty()) return Identifier();
  InternTable& interned = table();
  std::lock_guard<std::mutex> const lock(interned.mutex);
  return Identifier(&*interned.texts.emplace(text).first);
}

std::string const& Identifier::emptyText() noexcept {
  static std::string const* const empty = new std::string;
  return *empty;
}

std::ostream& operator<<(std::ostream& stream, Identifier identifier) { return stream << identifier.text(); }

}  // namespace kestrel
