// Cuts one file into tokens, line by line. What a word means depends on its place: the first of a line may be a
// keyword, the rest are operands; behind "help" a block of text follows whose end only its indentation tells. The lexer
// owns nothing: the file's text has to outlive the tokens, unescaped strings and help texts go to the pool.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "language/StringPool.hpp"
#include "reader/Token.hpp"

namespace kconfig {

class Lexer {
 public:
  // Told of characters and strings that are passed over, with the line.
  using Complaint = std::function<void(std::uint32_t line, std::string message)>;

  Lexer(std::string_view text, StringPool& pool, Complaint complain);

  // The next token. Empty lines and comments give none; the end of the file gives EndOfFile again and again.
  Token next();
  // The text block that begins on the line after a help keyword, with its own indentation taken off. To be called when
  // the EndOfLine behind the keyword has been read.
  std::string_view helpText();

 private:
  enum class Mode : std::uint8_t { LineStart, FirstWord, Operands };

  char at(std::size_t ahead = 0) const { return m_at + ahead < m_text.size() ? m_text[m_at + ahead] : '\0'; }
  bool done() const { return m_at >= m_text.size(); }

  Token make(TokenKind kind, std::string_view text = {}) const { return {kind, Keyword::None, m_line, text}; }
  Token endLine();
  void skipToFirstWord();
  Token firstWord();
  Token operand();
  bool skipBetweenOperands();
  Token word();
  Token quoted();
  Token sign();
  Token advance(std::size_t length, TokenKind kind);
  void passOver();

  std::string_view m_text;
  std::size_t m_at = 0;
  std::uint32_t m_line = 1;
  Mode m_mode = Mode::LineStart;
  StringPool* m_pool;
  Complaint m_complain;
};

}  // namespace kconfig
