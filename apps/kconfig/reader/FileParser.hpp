// Understands the statements of one file. The language is one of lines: each begins with a keyword that opens an entry,
// closes a block or adds a property to the entry above it; a line that is wrong is reported and left out. The parser
// works on a builder that lives longer, and asks its owner to read the files that the text sources.
#pragma once

#include <functional>
#include <string_view>

#include "reader/DefinitionBuilder.hpp"
#include "reader/Lexer.hpp"

namespace kconfig {

class FileParser {
 public:
  // Reads another file in place.
  using Source = std::function<void(std::string_view name, Position position)>;

  FileParser(DefinitionBuilder& builder, std::uint32_t file, std::string_view text, Source source);

  void parse();

 private:
  // What the entry above may be given.
  enum class Host : std::uint8_t { Nothing, Unknown, Config, Choice, Menu, Comment };

  struct Rule;

  void parseLine();
  bool parseStatement(Keyword keyword);
  bool parseProperty(Keyword keyword);
  bool hostTakes(Keyword keyword) const;
  void passOverProperty(Keyword keyword);

  void parseConfig(EntryKind kind);
  void parseChoice();
  void parseMenu();
  void parseComment();
  void parseIf();
  void parseEnd(EntryKind kind);
  void parseSource();
  void parseMainMenu();

  void parseType(SymbolType type);
  void parsePrompt();
  void parseDefault(SymbolType type);
  void parseSelect(PropertyKind kind);
  void parseRange();
  void parseDepends();
  void parseVisible();
  void parseHelp();
  void parseOptions();
  void addOption(std::string_view name, std::string_view argument);
  void parseOptional();

  ExpressionId parseExpression();
  ExpressionId parseConjunction();
  ExpressionId parseOperand();
  ExpressionId parseParenthesis();
  ExpressionId parseComparison();
  ExpressionId parseCondition();
  SymbolId parseSymbol();
  std::string_view parseWord(char const* what);
  std::string_view parseText(char const* what);

  void advance() { m_token = m_lexer.next(); }
  bool accept(TokenKind kind);
  void fail(std::string message);
  bool finishLine();
  void endHost();
  void closeOwnBlocks(std::size_t depth);
  void checkPlace(Keyword keyword);

  Position here() const { return {m_file, m_line}; }
  Property property(PropertyKind kind) const;
  Property prompt(std::string_view text);

  DefinitionBuilder& m_builder;
  Lexicon& m_words;
  std::uint32_t m_file;
  Lexer m_lexer;
  Source m_source;
  Token m_token;
  std::uint32_t m_line = 0;   // of the statement that is being read
  std::size_t m_outerBlocks;  // those that the files around this one have open
  unsigned m_depth = 0;       // parentheses and negations that are open
  bool m_failed = false;      // this line is at fault
  bool m_stopped = false;     // the rest of the file is left out
  bool m_promptSeen = false;  // the entry above has one
  bool m_dependsSeen = false;
  Host m_host = Host::Nothing;
};

}  // namespace kconfig
