#include "reader/Lexer.hpp"

#include <algorithm>
#include <utility>

namespace kconfig {

namespace {

constexpr bool isBlank(char c) { return c == ' ' || c == '\t'; }

constexpr bool isNameCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-';
}

constexpr bool isOperandCharacter(char c) { return isNameCharacter(c) || c == '/' || c == '.'; }

// The column that a run of blanks leads to; tabs stop at every eighth.
unsigned columnBehind(std::string_view blanks) {
  unsigned column = 0;
  for (char const c : blanks) {
    column = c == '\t' ? (column & ~7U) + 8 : column + 1;
  }
  return column;
}

std::string_view withoutTrailingBlanks(std::string_view line) {
  while (!line.empty() && isBlank(line.back())) {
    line.remove_suffix(1);
  }
  return line;
}

}  // namespace

Lexer::Lexer(std::string_view text, StringPool& pool, Complaint complain)
    : m_text(text), m_pool(&pool), m_complain(std::move(complain)) {}

Token Lexer::next() {
  if (m_mode == Mode::LineStart) {
    skipToFirstWord();
    if (done()) {
      return make(TokenKind::EndOfFile);
    }
    m_mode = Mode::FirstWord;
  }
  return m_mode == Mode::FirstWord ? firstWord() : operand();
}

// The end of a line is reported on the line that it ends.
Token Lexer::endLine() {
  Token const token = make(TokenKind::EndOfLine);
  if (!done()) {
    ++m_at;
    ++m_line;
  }
  m_mode = Mode::LineStart;
  return token;
}

void Lexer::skipToFirstWord() {
  while (!done()) {
    if (at() == '\n') {
      ++m_line;
    } else if (at() == '#') {
      m_at = std::min(m_text.find('\n', m_at), m_text.size());
      continue;
    } else if (!isBlank(at()) && at() != '\r') {
      return;
    }
    ++m_at;
  }
}

Token Lexer::firstWord() {
  while (!done() && !isNameCharacter(at())) {
    if (at() == '\n') {
      return endLine();
    }
    passOver();
  }
  if (done()) {
    return endLine();
  }
  std::size_t const start = m_at;
  while (!done() && isNameCharacter(at())) {
    ++m_at;
  }
  m_mode = Mode::Operands;
  Token token = make(TokenKind::Word, m_text.substr(start, m_at - start));
  token.keyword = keywordFor(token.text);
  if (token.keyword != Keyword::None) {
    token.kind = TokenKind::Keyword;
  }
  return token;
}

Token Lexer::operand() {
  while (skipBetweenOperands()) {
  }
  if (done() || at() == '\n') {
    return endLine();
  }
  if (at() == '"' || at() == '\'') {
    return quoted();
  }
  return isOperandCharacter(at()) ? word() : sign();
}

// Passes over one thing that is no token; false when a token or the end of the line follows.
bool Lexer::skipBetweenOperands() {
  if (done() || at() == '\n') {
    return false;
  }
  if (isBlank(at()) || at() == '\r') {
    ++m_at;
  } else if (at() == '#') {
    m_at = std::min(m_text.find('\n', m_at), m_text.size());
  } else if (at() == '\\' && (at(1) == '\n' || (at(1) == '\r' && at(2) == '\n'))) {
    m_at += at(1) == '\n' ? 2 : 3;
    ++m_line;
  } else if (isOperandCharacter(at()) || std::string_view("\"'()!=<>").find(at()) != std::string_view::npos ||
             (at() == '&' && at(1) == '&') || (at() == '|' && at(1) == '|')) {
    return false;
  } else {
    passOver();
  }
  return true;
}

Token Lexer::word() {
  std::size_t const start = m_at;
  while (!done() && isOperandCharacter(at())) {
    ++m_at;
  }
  std::string_view const text = m_text.substr(start, m_at - start);
  if (text == "if") {
    return make(TokenKind::If, text);
  }
  return make(text == "on" ? TokenKind::On : TokenKind::Word, text);
}

// A string ends at its own kind of quote or, with a complaint, at the end of the line. There it counts as no string at
// all if nothing or a quote of the other kind comes last.
Token Lexer::quoted() {
  char const quote = at();
  std::size_t const start = ++m_at;
  std::size_t const plainEnd = m_text.find_first_of(std::string_view("\"'\\\n"), m_at);
  if (plainEnd != std::string_view::npos && m_text[plainEnd] == quote) {
    m_at = plainEnd + 1;
    return make(TokenKind::QuotedWord, m_text.substr(start, plainEnd - start));
  }
  std::string unescaped;
  bool ends = false;  // the line may end here, and the string with it
  while (!done() && at() != '\n' && at() != quote) {
    ends = at() != '"' && at() != '\'';
    if (at() == '\\') {
      ++m_at;
      if (done() || at() == '\n') {
        break;
      }
    }
    unescaped += m_text[m_at++];
  }
  if (!done() && at() == quote) {
    ++m_at;
    return make(TokenKind::QuotedWord, m_pool->intern(unescaped));
  }
  m_complain(m_line, "the string does not end on its line");
  return ends ? make(TokenKind::QuotedWord, m_pool->intern(unescaped)) : endLine();
}

Token Lexer::sign() {
  switch (at()) {
    case '&':
      return advance(2, TokenKind::And);
    case '|':
      return advance(2, TokenKind::Or);
    case '(':
      return advance(1, TokenKind::OpenParenthesis);
    case ')':
      return advance(1, TokenKind::CloseParenthesis);
    case '=':
      return advance(1, TokenKind::Equal);
    case '!':
      return at(1) == '=' ? advance(2, TokenKind::Unequal) : advance(1, TokenKind::Not);
    case '<':
      return at(1) == '=' ? advance(2, TokenKind::LessEqual) : advance(1, TokenKind::Less);
    default:
      return at(1) == '=' ? advance(2, TokenKind::GreaterEqual) : advance(1, TokenKind::Greater);
  }
}

Token Lexer::advance(std::size_t length, TokenKind kind) {
  Token const token = make(kind, m_text.substr(m_at, length));
  m_at += length;
  return token;
}

void Lexer::passOver() {
  char const c = m_text[m_at++];
  if (!isBlank(c) && c != '\r') {
    bool const printable = c > ' ' && c < '\x7f';
    m_complain(m_line, printable ? std::string("the character '") + c + "' has no meaning here and is ignored"
                                 : "a character that cannot be shown is ignored");
  }
}

// The first line with text sets the indentation; the first later line with less ends the block, and so does a line
// that follows an empty one at the very margin.
std::string_view Lexer::helpText() {
  std::string text;
  unsigned indentation = 0;
  while (!done()) {
    std::size_t const lineEnd = std::min(m_text.find('\n', m_at), m_text.size());
    std::size_t const textStart = std::min(m_text.find_first_not_of(" \t", m_at), lineEnd);
    if (textStart != lineEnd) {
      unsigned const column = columnBehind(m_text.substr(m_at, textStart - m_at));
      if (indentation != 0 && textStart != m_at && column < indentation) {
        m_at = textStart;
        break;
      }
      text.append(indentation != 0 && textStart != m_at ? column - indentation : 0, ' ');
      text.append(withoutTrailingBlanks(m_text.substr(textStart, lineEnd - textStart)));
      indentation = indentation != 0 ? indentation : column;
    }
    m_at = lineEnd;
    if (done()) {
      break;
    }
    ++m_at;
    ++m_line;
    if (!done() && !isBlank(at()) && at() != '\n') {
      break;
    }
    text += '\n';
  }
  m_mode = Mode::LineStart;
  while (!text.empty() && text.back() == '\n') {
    text.pop_back();
  }
  return m_pool->adopt(std::move(text));
}

}  // namespace kconfig
