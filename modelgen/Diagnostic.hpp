// Refusals of the generator: where in a table or template something is wrong, and what was expected there.
// A Diagnostics object collects all of them during one run and owns them; one thread.
#pragma once

#include <iosfwd>
#include <string>
#include <tuple>
#include <vector>

namespace modelgen {

// A place in an input file. Lines and columns count from 1; line 0 stands for the file as a whole.
struct Position {
  std::string file;
  int line = 0;
  int column = 0;

  bool operator<(Position const& other) const {
    return std::tie(file, line, column) < std::tie(other.file, other.line, other.column);
  }
};

struct Diagnostic {
  Position at;
  std::string text;
};

// Writes "file:line:column: text", without a line end.
std::ostream& operator<<(std::ostream& stream, Diagnostic const& diagnostic);

class Diagnostics {
 public:
  // Both texts are parts of one sentence: "<wrong>, expected <expected>".
  void report(Position const& at, std::string const& wrong, std::string const& expected);

  bool empty() const { return m_all.empty(); }

  // By file, line and column; a problem that was found twice stands once.
  std::vector<Diagnostic> sorted() const;

 private:
  std::vector<Diagnostic> m_all;
};

// "a, b or c"
std::string alternatives(std::vector<std::string> const& words);

}  // namespace modelgen
