// What is wrong with the input, in the order in which it was found. The list owns its texts. Used from one thread at a
// time.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kconfig {

enum class Severity : std::uint8_t { Warning, Error };

struct Diagnostic {
  Severity severity;
  std::string file;
  std::uint32_t line;  // 0 where the whole file is meant
  std::string message;

  // "file:line: error: message"
  std::string text() const {
    std::string const place = line == 0 ? file : file + ":" + std::to_string(line);
    return place + (severity == Severity::Error ? ": error: " : ": warning: ") + message;
  }
};

class Diagnostics {
 public:
  void warning(std::string_view file, std::uint32_t line, std::string message) {
    m_entries.push_back({Severity::Warning, std::string(file), line, std::move(message)});
  }
  void error(std::string_view file, std::uint32_t line, std::string message) {
    m_entries.push_back({Severity::Error, std::string(file), line, std::move(message)});
    ++m_errors;
  }

  std::vector<Diagnostic> const& entries() const { return m_entries; }
  std::size_t errors() const { return m_errors; }
  bool hasErrors() const { return m_errors != 0; }

 private:
  std::vector<Diagnostic> m_entries;
  std::size_t m_errors = 0;
};

}  // namespace kconfig
