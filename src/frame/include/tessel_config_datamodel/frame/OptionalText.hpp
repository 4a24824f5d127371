// A text or none, as a parameter: setters of optional texts take literals, strings, optionals and boost::none alike.
// Ownership: an optional that the caller keeps is only referred to, so a parameter ends with its call. Thread rule: one
// thread at a time.
#pragma once

#include <boost/optional.hpp>
#include <cstddef>
#include <string>
#include <utility>

namespace tessel::frame {

class OptionalText {
 public:
  using Text = boost::optional<std::u16string>;

  // All that can be a text or none is meant to pass as it is.
  // NOLINTBEGIN(google-explicit-constructor)
  OptionalText() noexcept = default;
  OptionalText(boost::none_t) noexcept {}
  OptionalText(char16_t const* text) : m_own(std::u16string(text)) {}
  OptionalText(std::u16string text) : m_own(std::move(text)) {}
  OptionalText(Text const& text) noexcept : m_text(&text) {}
  OptionalText(Text&& text) noexcept : m_own(std::move(text)) {}
  // NOLINTEND(google-explicit-constructor)
  OptionalText(std::nullptr_t) = delete;
  OptionalText(OptionalText const&) = delete;
  OptionalText& operator=(OptionalText const&) = delete;

  [[nodiscard]] Text const& get() const noexcept { return *m_text; }
  /// The text to keep: moved if it was handed over, copied if it is the caller's.
  [[nodiscard]] Text take() && { return m_text == &m_own ? std::move(m_own) : *m_text; }

 private:
  Text m_own;
  Text const* m_text = &m_own;
};

}  // namespace tessel::frame
