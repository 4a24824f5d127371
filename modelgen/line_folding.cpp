#include "modelgen/line_folding.hpp"

#include <algorithm>
#include <cctype>
#include <limits>
#include <sstream>

namespace modelgen {
namespace {

constexpr std::size_t bodyIndent = 2;
constexpr std::size_t continuationIndent = 4;

std::size_t indentOf(std::string const& line) { return std::min(line.find_first_not_of(' '), line.size()); }

bool isWord(char c) { return c == '_' || std::isalnum(static_cast<unsigned char>(c)) != 0; }

// Follows a line of C++ and knows at each character how deep in brackets it stands, and whether in quotes.
class Scanner {
 public:
  explicit Scanner(std::string const& line) : m_line(line) {}

  void step(std::size_t at) {
    char const c = m_line[at];
    if (m_quoted) {
      if (c == '\\') {
        m_escaped = !m_escaped;
        return;
      }
      m_quoted = c != '"' || m_escaped;
      m_escaped = false;
      return;
    }
    char const before = at == 0 ? ' ' : m_line[at - 1];
    m_quoted = c == '"';
    // An angle bracket is one where it touches the name of a template; it is an operator otherwise.
    bool const opens = c == '(' || c == '{' || c == '[' || (c == '<' && isWord(before) && !endsInOperator(at));
    bool const closes = c == ')' || c == '}' || c == ']' || (c == '>' && before != '-' && before != ' ');
    m_depth += opens ? 1 : closes ? -1 : 0;
  }

  int depth() const { return m_depth; }
  bool isQuoted() const { return m_quoted; }

 private:
  bool endsInOperator(std::size_t at) const {
    static const std::string word = "operator";
    return at >= word.size() && m_line.compare(at - word.size(), word.size(), word) == 0;
  }

  std::string const& m_line;
  int m_depth = 0;
  bool m_quoted = false;
  bool m_escaped = false;
};

bool endsWith(std::string const& line, std::size_t end, std::string const& what) {
  return end >= what.size() && line.compare(end - what.size(), what.size(), what) == 0;
}

// What a break before the character at `at` costs, the least being best; the scanner stands behind the one before it.
int costOfBreak(std::string const& line, std::size_t at, Scanner const& scanner) {
  constexpr int never = std::numeric_limits<int>::max();
  if (scanner.isQuoted()) return never;
  int const depth = 2 * scanner.depth();
  if (line[at - 1] == '(' && line[at] != ')') return depth - 1;
  if (line[at] != ' ') return never;
  if (line[at - 1] == ',' || line.compare(at, 3, " : ") == 0) return depth;
  bool const behindType = endsWith(line, at, " const&") || endsWith(line, at, ">*");
  return behindType && isWord(line[at + 1]) ? depth + 1 : never;
}

// Where to break a line of code; its size where there is no place.
std::size_t placeToBreak(std::string const& line, std::size_t width) {
  Scanner scanner(line);
  int least = std::numeric_limits<int>::max();
  std::size_t best = line.size();
  const std::size_t indent = indentOf(line);
  for (std::size_t at = 0; at < std::min(line.size() - 1, width + 1); ++at) {
    if (!scanner.isQuoted() && line.compare(at, 2, "//") == 0) break;
    if (at > indent) {
      int const cost = costOfBreak(line, at, scanner);
      if (cost < std::numeric_limits<int>::max() && cost <= least) {
        least = cost;
        best = at;
      }
    }
    scanner.step(at);
  }
  return best;
}

// Where " { body }" begins in the one-line definition of a function; its size where the line is none.
std::size_t bodyStart(std::string const& line) {
  if (!endsWith(line, line.size(), "; }")) return line.size();
  Scanner scanner(line);
  for (std::size_t at = 0; at + 2 < line.size(); ++at) {
    bool const behindHead = endsWith(line, at, ")") || endsWith(line, at, "const") || endsWith(line, at, "noexcept");
    if (scanner.depth() == 0 && !scanner.isQuoted() && behindHead && line.compare(at, 3, " { ") == 0) return at;
    scanner.step(at);
  }
  return line.size();
}

class Folder {
 public:
  explicit Folder(std::size_t width) : m_width(width) {}

  void fold(std::string const& line) {
    const std::size_t indent = indentOf(line);
    if (line.size() <= m_width || line[indent] == '#') {
      m_result += line + '\n';
    } else if (line.compare(indent, 2, "//") == 0) {
      foldComment(line, indent);
    } else if (const std::size_t body = bodyStart(line); body != line.size()) {
      fold(line.substr(0, body + 2));
      fold(std::string(indent + bodyIndent, ' ') + line.substr(body + 3, line.size() - body - 5));
      fold(std::string(indent, ' ') + "}");
    } else {
      foldCode(line, indent + continuationIndent);
    }
  }

  std::string take() { return std::move(m_result); }

 private:
  void foldComment(std::string line, std::size_t indent) {
    const std::string start = line.substr(0, line.find_first_not_of('/', indent)) + ' ';
    while (line.size() > m_width) {
      std::size_t at = line.rfind(' ', m_width);
      if (at == std::string::npos || at < start.size()) at = line.find(' ', start.size());
      if (at == std::string::npos) break;
      m_result += line.substr(0, at) + '\n';
      line = start + line.substr(at + 1);
    }
    m_result += line + '\n';
  }

  // All lines behind the first have one indent, so that they read as one continuation.
  void foldCode(std::string line, std::size_t indent) {
    while (line.size() > m_width) {
      const std::size_t at = placeToBreak(line, m_width);
      if (at == line.size()) break;
      m_result += line.substr(0, at) + '\n';
      line = std::string(indent, ' ') + line.substr(line[at] == ' ' ? at + 1 : at);
    }
    m_result += line + '\n';
  }

  std::size_t m_width;
  std::string m_result;
};

}  // namespace

std::string foldLongLines(std::string const& source, std::size_t width) {
  Folder folder(width);
  std::istringstream lines(source);
  for (std::string line; std::getline(lines, line);) folder.fold(line);
  return folder.take();
}

}  // namespace modelgen
