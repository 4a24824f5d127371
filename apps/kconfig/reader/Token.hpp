// The words of the language as the lexer hands them on. A token's text is a view into the file or into the tree's pool.
#pragma once

#include <cstdint>
#include <string_view>

namespace kconfig {

enum class TokenKind : std::uint8_t {
  EndOfFile,
  EndOfLine,
  Keyword,  // only at the start of a line
  Word,
  QuotedWord,
  If,  // "if" and "on" behind the first word of a line
  On,
  And,
  Or,
  Not,
  OpenParenthesis,
  CloseParenthesis,
  Equal,
  Unequal,
  Less,
  LessEqual,
  Greater,
  GreaterEqual
};

enum class Keyword : std::uint8_t {
  Boolean,
  Choice,
  Comment,
  Config,
  Default,
  DefaultBoolean,
  DefaultTristate,
  Depends,
  EndChoice,
  EndIf,
  EndMenu,
  Help,
  Hexadecimal,
  If,
  Imply,
  Integer,
  MainMenu,
  Menu,
  MenuConfig,
  Option,
  Optional,
  Prompt,
  Range,
  Select,
  Source,
  String,
  Tristate,
  Visible,
  None
};

struct Token {
  TokenKind kind = TokenKind::EndOfFile;
  Keyword keyword = Keyword::None;
  std::uint32_t line = 0;
  std::string_view text;
};

// The keyword that the first word of a line is, None for any other word. O(log number of keywords).
Keyword keywordFor(std::string_view word);

}  // namespace kconfig
