#include "modelgen/Diagnostic.hpp"

#include <algorithm>
#include <ostream>
#include <utility>

namespace modelgen {

std::ostream& operator<<(std::ostream& stream, Diagnostic const& diagnostic) {
  Position const& at = diagnostic.at;
  return stream << at.file << ':' << at.line << ':' << at.column << ": " << diagnostic.text;
}

void Diagnostics::report(Position const& at, std::string const& wrong, std::string const& expected) {
  std::string text = wrong + ", expected " + expected;
  // Texts of tables are quoted as they are; whatever they hold, a problem is one line.
  std::replace_if(
      text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
  m_all.push_back({at, std::move(text)});
}

std::vector<Diagnostic> Diagnostics::sorted() const {
  std::vector<Diagnostic> result = m_all;
  std::stable_sort(result.begin(), result.end(), [](Diagnostic const& a, Diagnostic const& b) { return a.at < b.at; });
  auto const same = [](Diagnostic const& a, Diagnostic const& b) {
    return !(a.at < b.at) && !(b.at < a.at) && a.text == b.text;
  };
  result.erase(std::unique(result.begin(), result.end(), same), result.end());
  return result;
}

std::string alternatives(std::vector<std::string> const& words) {
  std::string result;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i != 0) result += i + 1 == words.size() ? " or " : ", ";
    result += words[i];
  }
  return result;
}

}  // namespace modelgen
