#include "modelgen/LineFolding.hpp"

#include <algorithm>
#include <cctype>
#include <optional>
#include <sstream>
#include <vector>

namespace modelgen {
namespace {

constexpr std::size_t bodyIndent = 2;
constexpr std::size_t continuationIndent = 4;

using Lines = std::vector<std::string>;

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
    static std::string const word = "operator";
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

// Where `what` stands at this depth, outside quotes, first; the line's size where it doesn't.
std::size_t findAtDepth(std::string const& line, int depth, std::string const& what, std::size_t from = 0) {
  Scanner scanner(line);
  for (std::size_t at = 0; at < line.size(); ++at) {
    bool const counts = at >= from && scanner.depth() == depth && !scanner.isQuoted();
    if (counts && line.compare(at, what.size(), what) == 0) return at;
    scanner.step(at);
  }
  return line.size();
}

// The parts of a line that a line break may stand between: broken behind `open` and the commas directly inside it.
Lines partsOf(std::string const& line, std::size_t open) {
  Lines parts{line.substr(0, open + 1)};
  Scanner scanner(line);
  int inside = 0;
  std::size_t start = open + 1;
  for (std::size_t at = 0; at < line.size(); ++at) {
    scanner.step(at);
    if (at == open) inside = scanner.depth();
    if (at <= open) continue;
    if (scanner.depth() < inside) break;
    if (scanner.depth() != inside || scanner.isQuoted() || line[at] != ',' || line[at + 1] != ' ') continue;
    parts.push_back(line.substr(start, at + 1 - start));
    start = at + 2;
  }
  parts.push_back(line.substr(start));
  return parts;
}

// The parts behind the first one, on lines that go on from `line` and have this indent, as many on each as fit. Nothing
// where one alone is too long.
std::optional<Lines> fill(std::string line, Lines const& parts, std::size_t indent, std::size_t width) {
  Lines lines;
  for (std::size_t i = 1; i < parts.size(); ++i) {
    std::string const& part = parts[i];
    bool const isFirst = i == 1;
    if (line.size() + (isFirst ? 0 : 1) + part.size() <= width) {
      line += (isFirst ? "" : " ") + part;
    } else {
      if (isFirst || indent + part.size() > width) return std::nullopt;
      lines.push_back(line);
      line = std::string(indent, ' ') + part;
    }
  }
  lines.push_back(line);
  return lines;
}

// Where " { body }" begins in the one-line definition of a function; its size where the line is none.
std::size_t bodyStart(std::string const& line) {
  if (!endsWith(line, line.size(), "; }")) return line.size();
  Scanner scanner(line);
  for (std::size_t at = 0; at + 2 < line.size(); ++at) {
    bool const behindHead = endsWith(line, at, ")") || endsWith(line, at, "const") || endsWith(line, at, "noexcept") ||
                            endsWith(line, at, "override");
    if (scanner.depth() == 0 && !scanner.isQuoted() && behindHead && line.compare(at, 3, " { ") == 0) return at;
    scanner.step(at);
  }
  return line.size();
}

class Folder {
 public:
  explicit Folder(std::size_t width) : m_width(width) {}

  void fold(std::string const& line) {
    std::size_t const indent = indentOf(line);
    if (line.size() <= m_width || line[indent] == '#') {
      m_result += line + '\n';
    } else if (line.compare(indent, 2, "//") == 0) {
      foldComment(line, indent);
    } else if (std::size_t const body = bodyStart(line); body != line.size()) {
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
    std::string const start = line.substr(0, line.find_first_not_of('/', indent)) + ' ';
    while (line.size() > m_width) {
      std::size_t at = line.rfind(' ', m_width);
      if (at == std::string::npos || at < start.size()) at = line.find(' ', start.size());
      if (at == std::string::npos) break;
      m_result += line.substr(0, at) + '\n';
      line = start + line.substr(at + 1);
    }
    m_result += line + '\n';
  }

  // The members that a constructor initializes, on a line of their own or, where that is too long, one to a line.
  void foldInitializers(std::string const& line, std::size_t colon) {
    std::size_t const indent = indentOf(line) + continuationIndent;
    fold(line.substr(0, colon));
    std::string const list = std::string(indent, ' ') + line.substr(colon + 1);
    if (list.size() <= m_width) {
      m_result += list + '\n';
      return;
    }
    std::string rest = list;
    std::string lead(indent, ' ');
    for (std::size_t comma = findAtDepth(rest, 0, ", "); comma != rest.size(); comma = findAtDepth(rest, 0, ", ")) {
      fold(lead + rest.substr(indentOf(rest), comma + 1 - indentOf(rest)));
      lead.assign(indent + 2, ' ');
      rest = lead + rest.substr(comma + 2);
    }
    fold(rest);
  }

  void foldCode(std::string const& line, std::size_t indent) {
    if (std::size_t const colon = findAtDepth(line, 0, " : ", indentOf(line)); colon != line.size()) {
      if (findAtDepth(line, 0, "(") < colon) return foldInitializers(line, colon);
      fold(line.substr(0, colon));
      return fold(std::string(indent, ' ') + line.substr(colon + 1));
    }
    if (line.compare(indentOf(line), 2, ": ") == 0) {
      auto const lines = brokenAt(line, findAtDepth(line, 0, "<"), indentOf(line) + bodyIndent + continuationIndent);
      return addLines(lines.value_or(Lines{line}));
    }
    for (std::size_t open = firstBracket(line, 0); open != line.size(); open = firstBracket(line, open + 1)) {
      if (auto const lines = brokenAt(line, open, indent)) return addLines(*lines);
    }
    m_result += line + '\n';
  }

  // The line broken inside this bracket: what it holds goes on below its first character or, in parentheses and
  // templates, on lines of its own; where a value is assigned, rather the whole value does. Nothing where that is not
  // enough.
  std::optional<Lines> brokenAt(std::string const& line, std::size_t open, std::size_t indent) const {
    if (open == line.size()) return std::nullopt;
    Lines const parts = partsOf(line, open);
    if (line[open] == '(' && parts.back().front() == ')') return brokenBehindType(line, open);
    if (std::size_t const assigned = findAtDepth(line, 0, " = ") + 3; assigned <= open) {
      Lines lines{line.substr(0, assigned - 1), std::string(indent, ' ') + line.substr(assigned)};
      if (lines.back().size() <= m_width) return lines;
    }
    if (auto lines = fill(parts.front(), parts, open + 1, m_width)) return lines;
    if (line[open] == '{') return std::nullopt;
    auto lines = fill(std::string(indent, ' '), parts, indent, m_width);
    if (lines) lines->insert(lines->begin(), parts.front());
    return lines;
  }

  // A function without parameters has its name on a line of its own, below its type, unless it is enough to move what
  // stands behind the parameters.
  std::optional<Lines> brokenBehindType(std::string const& line, std::size_t parameters) const {
    std::size_t const indent = indentOf(line);
    std::size_t const end = parameters + 2;
    if (end <= m_width && line.compare(end, 6, " const") == 0) {
      return Lines{line.substr(0, end), std::string(indent + continuationIndent, ' ') + line.substr(end + 1)};
    }
    std::size_t const space = line.rfind(' ', parameters);
    if (space == std::string::npos || space <= indent) return std::nullopt;
    std::string const type = line.substr(0, space);
    std::string const name = std::string(indent, ' ') + line.substr(space + 1);
    if (name.size() > m_width) return std::nullopt;
    std::optional<Lines> lines = Lines{type};
    std::size_t const open = findAtDepth(type, 0, "<");
    if (type.size() > m_width && open != type.size()) {
      Lines const parts = partsOf(type, open);
      lines = fill(parts.front(), parts, open + 1, m_width);
    }
    if (lines) lines->push_back(name);
    return lines;
  }

  void addLines(Lines const& lines) {
    for (std::string const& each : lines) m_result += each + '\n';
  }

  static std::size_t firstBracket(std::string const& line, std::size_t from) {
    return std::min(findAtDepth(line, 0, "(", from), findAtDepth(line, 0, "{", from));
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
