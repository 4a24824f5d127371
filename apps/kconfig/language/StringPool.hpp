// Keeps one copy of each text of a configuration for as long as the pool lives. The pool owns the characters; views
// that it hands out stay valid until it is destroyed, also when it is moved. Used from one thread at a time.
#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <unordered_set>

namespace kconfig {

class StringPool {
 public:
  StringPool() = default;
  StringPool(StringPool&&) = default;
  StringPool& operator=(StringPool&&) = default;

  // The pool's copy of text, the same view for equal texts.
  std::string_view intern(std::string_view text) {
    auto const known = m_texts.find(text);
    return known != m_texts.end() ? *known : *m_texts.insert(m_storage.emplace_back(text)).first;
  }

  // Takes over a text that is not shared with others, such as the contents of a file.
  std::string_view adopt(std::string text) { return m_storage.emplace_back(std::move(text)); }

 private:
  std::deque<std::string> m_storage;
  std::unordered_set<std::string_view> m_texts;
};

}  // namespace kconfig
