#include "reader/FileParser.hpp"

#include <algorithm>
#include <utility>

namespace kconfig {

namespace {

constexpr std::size_t deepestBlock = 500;

// The words that open and close a block.
std::pair<char const*, char const*> wordsOf(EntryKind kind) {
  return kind == EntryKind::Choice ? std::pair("choice", "endchoice")
         : kind == EntryKind::Menu ? std::pair("menu", "endmenu")
                                   : std::pair("if", "endif");
}

std::string quotedName(std::string_view name) { return "'" + std::string(name) + "'"; }

}  // namespace

FileParser::FileParser(DefinitionBuilder& builder, std::uint32_t file, std::string_view text, Source source)
    : m_builder(builder),
      m_words(builder.words()),
      m_file(file),
      m_lexer(text, m_words.texts,
              [this](std::uint32_t line, std::string message) {
                m_builder.warning({m_file, line}, std::move(message));
              }),
      m_source(std::move(source)),
      m_outerBlocks(builder.openBlocks()) {}

void FileParser::parse() {
  for (advance(); m_token.kind != TokenKind::EndOfFile && !m_stopped; advance()) {
    m_line = m_token.line;
    m_failed = false;
    parseLine();
  }
  endHost();
  closeOwnBlocks(m_outerBlocks);
}

// One line, from its first token to its end of line.
void FileParser::parseLine() {
  Token const first = m_token;
  if (first.kind == TokenKind::EndOfLine) {
    return;  // all of the line was passed over
  }
  if (first.kind != TokenKind::Keyword) {
    fail("unknown statement " + quotedName(first.text));
    finishLine();
    return;
  }
  advance();
  if (!parseStatement(first.keyword) && !parseProperty(first.keyword)) {
    fail(quotedName(first.text) + " has no place here");
    passOverProperty(first.keyword);
  }
}

// What is done for a keyword.
struct FileParser::Rule {
  Keyword keyword;
  void (*parse)(FileParser&);

  template <std::size_t Size>
  static bool follow(Rule const (&rules)[Size], Keyword keyword, FileParser& parser) {
    auto const rule = std::find_if(rules, rules + Size, [&](Rule const& row) { return row.keyword == keyword; });
    return rule != rules + Size && (rule->parse(parser), true);
  }
};

bool FileParser::parseStatement(Keyword keyword) {
  static constexpr Rule rules[] = {
      {Keyword::Config, [](FileParser& parser) { parser.parseConfig(EntryKind::Config); }},
      {Keyword::MenuConfig, [](FileParser& parser) { parser.parseConfig(EntryKind::MenuConfig); }},
      {Keyword::Choice, [](FileParser& parser) { parser.parseChoice(); }},
      {Keyword::Menu, [](FileParser& parser) { parser.parseMenu(); }},
      {Keyword::Comment, [](FileParser& parser) { parser.parseComment(); }},
      {Keyword::If, [](FileParser& parser) { parser.parseIf(); }},
      {Keyword::EndChoice, [](FileParser& parser) { parser.parseEnd(EntryKind::Choice); }},
      {Keyword::EndMenu, [](FileParser& parser) { parser.parseEnd(EntryKind::Menu); }},
      {Keyword::EndIf, [](FileParser& parser) { parser.parseEnd(EntryKind::If); }},
      {Keyword::Source, [](FileParser& parser) { parser.parseSource(); }},
      {Keyword::MainMenu, [](FileParser& parser) { parser.parseMainMenu(); }},
  };
  return Rule::follow(rules, keyword, *this);
}

bool FileParser::parseProperty(Keyword keyword) {
  if (m_host == Host::Unknown) {
    m_failed = true;  // the entry is wrong itself and said so: its properties are passed over without a further word
    passOverProperty(keyword);
    return true;
  }
  if (!hostTakes(keyword)) {
    return false;
  }
  static constexpr Rule rules[] = {
      {Keyword::Boolean, [](FileParser& parser) { parser.parseType(SymbolType::Boolean); }},
      {Keyword::Tristate, [](FileParser& parser) { parser.parseType(SymbolType::Tristate); }},
      {Keyword::Integer, [](FileParser& parser) { parser.parseType(SymbolType::Integer); }},
      {Keyword::Hexadecimal, [](FileParser& parser) { parser.parseType(SymbolType::Hexadecimal); }},
      {Keyword::String, [](FileParser& parser) { parser.parseType(SymbolType::String); }},
      {Keyword::Prompt, [](FileParser& parser) { parser.parsePrompt(); }},
      {Keyword::Default, [](FileParser& parser) { parser.parseDefault(SymbolType::Unknown); }},
      {Keyword::DefaultBoolean, [](FileParser& parser) { parser.parseDefault(SymbolType::Boolean); }},
      {Keyword::DefaultTristate, [](FileParser& parser) { parser.parseDefault(SymbolType::Tristate); }},
      {Keyword::Select, [](FileParser& parser) { parser.parseSelect(PropertyKind::Select); }},
      {Keyword::Imply, [](FileParser& parser) { parser.parseSelect(PropertyKind::Imply); }},
      {Keyword::Range, [](FileParser& parser) { parser.parseRange(); }},
      {Keyword::Depends, [](FileParser& parser) { parser.parseDepends(); }},
      {Keyword::Visible, [](FileParser& parser) { parser.parseVisible(); }},
      {Keyword::Help, [](FileParser& parser) { parser.parseHelp(); }},
      {Keyword::Option, [](FileParser& parser) { parser.parseOptions(); }},
      {Keyword::Optional, [](FileParser& parser) { parser.parseOptional(); }},
  };
  return Rule::follow(rules, keyword, *this);
}

void FileParser::passOverProperty(Keyword keyword) {
  finishLine();
  if (keyword == Keyword::Help) {
    m_lexer.helpText();
  }
}

bool FileParser::hostTakes(Keyword keyword) const {
  switch (m_host) {
    case Host::Config:
      return keyword != Keyword::Visible && keyword != Keyword::Optional;
    case Host::Choice:
      return keyword == Keyword::Prompt || keyword == Keyword::Default || keyword == Keyword::Boolean ||
             keyword == Keyword::Tristate || keyword == Keyword::Optional || keyword == Keyword::Depends ||
             keyword == Keyword::Help;
    case Host::Menu:
      return keyword == Keyword::Depends || (keyword == Keyword::Visible && !m_dependsSeen);
    case Host::Comment:
      return keyword == Keyword::Depends;
    default:
      return false;
  }
}

// Statements

void FileParser::parseConfig(EntryKind kind) {
  endHost();
  m_host = Host::Unknown;
  std::string_view const name = parseWord("the name of a symbol");
  if (!finishLine()) {
    return;
  }
  SymbolId const symbol = m_words.symbols.plain(name);
  if (isTristateConstant(symbol)) {
    m_builder.error(here(), quotedName(name) + " is a constant and can't be configured");
    return;
  }
  m_builder.addEntry(kind, symbol, here());
  m_host = Host::Config;
}

void FileParser::parseChoice() {
  endHost();
  checkPlace(Keyword::Choice);
  std::string_view const name = m_token.kind == TokenKind::Word ? parseWord("a name") : std::string_view();
  finishLine();
  m_builder.addEntry(EntryKind::Choice, m_words.symbols.choice(name), here());
  m_builder.openBlock();
  m_host = Host::Choice;
}

void FileParser::parseMenu() {
  endHost();
  checkPlace(Keyword::Menu);
  std::string_view const title = parseText("a title");
  finishLine();
  m_builder.addEntry(EntryKind::Menu, noSymbol, here());
  m_builder.openBlock();
  m_builder.addProperty(prompt(title));
  m_host = Host::Menu;
}

void FileParser::parseComment() {
  endHost();
  std::string_view const text = parseText("a text");
  m_host = Host::Unknown;
  if (finishLine()) {
    m_builder.addEntry(EntryKind::Comment, noSymbol, here());
    m_builder.addProperty(prompt(text));
    m_host = Host::Comment;
  }
}

void FileParser::parseIf() {
  endHost();
  checkPlace(Keyword::If);
  Property condition = property(PropertyKind::DependsOn);
  condition.condition = parseExpression();
  // A condition that is wrong still opens its block, or the end of the block would be wrong too.
  bool const understood = finishLine();
  m_builder.addEntry(EntryKind::If, noSymbol, here());
  m_builder.openBlock();
  if (understood) {
    m_builder.addProperty(condition);
  }
}

void FileParser::parseEnd(EntryKind kind) {
  endHost();
  finishLine();
  std::size_t depth = m_builder.openBlocks();
  while (depth > m_outerBlocks && m_builder.openBlockAt(depth - 1).kind != kind) {
    --depth;
  }
  if (depth == m_outerBlocks) {
    m_builder.error(here(),
                    quotedName(wordsOf(kind).second) + " without " + quotedName(wordsOf(kind).first) + " in this file");
    return;
  }
  closeOwnBlocks(depth);
  m_builder.closeBlock();
}

void FileParser::parseSource() {
  endHost();
  std::string_view const name = parseText("the name of a file");
  if (finishLine()) {
    m_source(name, here());
  }
}

void FileParser::parseMainMenu() {
  endHost();
  std::string_view const title = parseText("a title");
  if (!finishLine()) {
    return;
  }
  if (m_file != 0 || !m_builder.setTitle(prompt(title).text, here())) {
    m_builder.error(here(), "'mainmenu' has to be the first statement");
  }
}

// Properties

void FileParser::parseType(SymbolType type) {
  if (m_token.kind != TokenKind::EndOfLine) {
    parsePrompt();
  } else {
    finishLine();
  }
  if (!m_failed) {
    m_builder.setType(type, here());
    Property declaration = property(PropertyKind::Type);
    declaration.type = type;
    m_builder.addProperty(declaration);
  }
}

void FileParser::parsePrompt() {
  std::string_view const text = parseText("a prompt");
  ExpressionId const condition = parseCondition();
  if (finishLine()) {
    if (m_promptSeen) {
      m_builder.warning(here(), "the prompt is given twice");
    }
    m_promptSeen = true;
    Property property = prompt(text);
    property.condition = condition;
    m_builder.addProperty(property);
  }
}

void FileParser::parseDefault(SymbolType type) {
  Property value = property(PropertyKind::Default);
  if (m_host == Host::Choice) {
    std::string_view const name = parseWord("the name of a member");
    value.condition = parseCondition();
    value.value = m_failed ? noExpression : m_words.expressions.symbol(m_words.symbols.plain(name));
  } else {
    value.value = parseExpression();
    value.condition = parseCondition();
  }
  if (finishLine()) {
    m_builder.addProperty(value);
    if (type != SymbolType::Unknown) {
      m_builder.setType(type, here());
    }
  }
}

void FileParser::parseSelect(PropertyKind kind) {
  Property selection = property(kind);
  std::string_view const name = parseWord("the name of a symbol");
  selection.condition = parseCondition();
  if (finishLine()) {
    selection.symbol = m_words.symbols.plain(name);
    m_builder.addProperty(selection);
  }
}

void FileParser::parseRange() {
  Property range = property(PropertyKind::Range);
  range.symbol = parseSymbol();
  range.upper = m_failed ? noSymbol : parseSymbol();
  range.condition = parseCondition();
  if (finishLine()) {
    m_builder.addProperty(range);
  }
}

void FileParser::parseDepends() {
  m_dependsSeen = true;
  if (!accept(TokenKind::On)) {
    fail("expected 'on' behind 'depends'");
  }
  Property condition = property(PropertyKind::DependsOn);
  condition.condition = parseExpression();
  if (finishLine()) {
    m_builder.addProperty(condition);
  }
}

void FileParser::parseVisible() {
  Property condition = property(PropertyKind::VisibleIf);
  condition.condition = parseCondition();
  if (finishLine() && condition.condition != noExpression) {
    m_builder.addProperty(condition);
  }
}

void FileParser::parseHelp() {
  bool const understood = finishLine();
  Property help = property(PropertyKind::Help);
  help.text = m_lexer.helpText();
  if (understood) {
    m_builder.addProperty(help);
  }
}

void FileParser::parseOptions() {
  while (!m_failed && m_token.kind == TokenKind::Word) {
    std::string_view const name = parseWord("an option");
    bool const hasArgument = accept(TokenKind::Equal);
    std::string_view const argument = hasArgument ? parseText("a value") : std::string_view();
    if (!m_failed) {
      addOption(name, argument);
    }
  }
  finishLine();
}

void FileParser::addOption(std::string_view name, std::string_view argument) {
  if (name == "env") {
    if (argument.empty()) {
      fail("the option 'env' needs the name of a variable");
    } else {
      m_builder.importVariable(argument, here());
    }
  } else if (name == "modules") {
    m_builder.claimRole(PropertyKind::Modules, name, here());
  } else if (name == "defconfig_list") {
    m_builder.claimRole(PropertyKind::DefconfigList, name, here());
  } else if (name == "allnoconfig_y") {
    m_builder.addProperty(property(PropertyKind::AllNoConfigY));
  } else {
    m_builder.warning(here(), "the option " + quotedName(name) + " is not known and ignored");
  }
}

void FileParser::parseOptional() {
  if (finishLine()) {
    m_builder.addProperty(property(PropertyKind::Optional));
  }
}

// Expressions: || binds less than &&, both less than !, and a comparison is an operand.

ExpressionId FileParser::parseExpression() {
  std::vector<ExpressionId> operands{parseConjunction()};
  while (!m_failed && accept(TokenKind::Or)) {
    operands.push_back(parseConjunction());
  }
  return m_failed ? noExpression : m_words.expressions.list(Operator::Or, operands);
}

ExpressionId FileParser::parseConjunction() {
  std::vector<ExpressionId> operands{parseOperand()};
  while (!m_failed && accept(TokenKind::And)) {
    operands.push_back(parseOperand());
  }
  return m_failed ? noExpression : m_words.expressions.list(Operator::And, operands);
}

ExpressionId FileParser::parseOperand() {
  constexpr unsigned deepest = 200;
  if (m_token.kind != TokenKind::Not && m_token.kind != TokenKind::OpenParenthesis) {
    return parseComparison();
  }
  if (m_depth == deepest) {
    fail("the expression is nested too deeply");
    return noExpression;
  }
  ++m_depth;
  ExpressionId result = noExpression;
  if (accept(TokenKind::Not)) {
    ExpressionId const operand = parseOperand();
    result = m_failed ? noExpression : m_words.expressions.negation(operand);
  } else {
    result = parseParenthesis();
  }
  --m_depth;
  return result;
}

ExpressionId FileParser::parseParenthesis() {
  advance();
  ExpressionId const inner = parseExpression();
  if (!m_failed && !accept(TokenKind::CloseParenthesis)) {
    fail("expected ')'");
  }
  return m_failed ? noExpression : inner;
}

ExpressionId FileParser::parseComparison() {
  SymbolId const left = parseSymbol();
  if (m_failed) {
    return noExpression;
  }
  static constexpr std::pair<TokenKind, Operator> comparisons[] = {
      {TokenKind::Equal, Operator::Equal},     {TokenKind::Unequal, Operator::Unequal},
      {TokenKind::Less, Operator::Less},       {TokenKind::LessEqual, Operator::LessEqual},
      {TokenKind::Greater, Operator::Greater}, {TokenKind::GreaterEqual, Operator::GreaterEqual}};
  for (auto const& [token, op] : comparisons) {
    if (accept(token)) {
      SymbolId const right = parseSymbol();
      return m_failed ? noExpression : m_words.expressions.comparison(op, left, right);
    }
  }
  return m_words.expressions.symbol(left);
}

// The condition behind a property, if there is one.
ExpressionId FileParser::parseCondition() {
  return !m_failed && accept(TokenKind::If) ? parseExpression() : noExpression;
}

SymbolId FileParser::parseSymbol() {
  Token const token = m_token;
  if (token.kind == TokenKind::Word) {
    advance();
    return m_words.symbols.plain(token.text);
  }
  if (token.kind == TokenKind::QuotedWord) {
    advance();
    return m_words.symbols.constant(token.text);
  }
  fail("expected a symbol or a constant");
  return noSymbol;
}

// Words and lines

std::string_view FileParser::parseWord(char const* what) {
  std::string_view const text = m_token.text;
  if (!accept(TokenKind::Word)) {
    fail(std::string("expected ") + what);
  }
  return text;
}

std::string_view FileParser::parseText(char const* what) {
  std::string_view const text = m_token.text;
  if (!accept(TokenKind::Word) && !accept(TokenKind::QuotedWord)) {
    fail(std::string("expected ") + what);
  }
  return text;
}

bool FileParser::accept(TokenKind kind) {
  if (m_token.kind != kind) {
    return false;
  }
  advance();
  return true;
}

// Only the first fault of a line is told.
void FileParser::fail(std::string message) {
  if (!m_failed) {
    m_builder.error(here(), std::move(message));
  }
  m_failed = true;
}

// Goes to the end of the line; false if anything in it is wrong.
bool FileParser::finishLine() {
  if (m_token.kind != TokenKind::EndOfLine && m_token.kind != TokenKind::EndOfFile) {
    fail("unexpected " + quotedName(m_token.text));
    while (m_token.kind != TokenKind::EndOfLine && m_token.kind != TokenKind::EndOfFile) {
      advance();
    }
  }
  return !m_failed;
}

void FileParser::endHost() {
  if (m_host == Host::Config && m_builder.lastEntry().kind == EntryKind::MenuConfig && !m_promptSeen) {
    m_builder.warning(m_builder.lastEntry().position, "'menuconfig' without a prompt");
  }
  m_host = Host::Nothing;
  m_promptSeen = false;
  m_dependsSeen = false;
}

// Closes the blocks deeper than depth, each with an error.
void FileParser::closeOwnBlocks(std::size_t depth) {
  while (m_builder.openBlocks() > depth) {
    Entry const& block = m_builder.openBlockAt(m_builder.openBlocks() - 1);
    m_builder.error(block.position, quotedName(wordsOf(block.kind).first) + " without " +
                                        quotedName(wordsOf(block.kind).second) + " in this file");
    m_builder.closeBlock();
  }
}

// Blocks may not stand directly in a choice, and not infinitely deep.
void FileParser::checkPlace(Keyword keyword) {
  std::size_t const depth = m_builder.openBlocks();
  if (keyword != Keyword::If && m_builder.openBlockAt(depth - 1).kind == EntryKind::Choice) {
    m_builder.error(here(), "a choice can't have a menu or another choice directly inside");
  }
  if (depth == deepestBlock) {
    m_builder.error(here(), "blocks are nested too deeply, the rest of the file is left out");
    m_stopped = true;
  }
}

Property FileParser::property(PropertyKind kind) const {
  Property property;
  property.kind = kind;
  property.position = here();
  return property;
}

Property FileParser::prompt(std::string_view text) {
  Property prompt = property(PropertyKind::Prompt);
  prompt.text = text.substr(std::min(text.find_first_not_of(" \t"), text.size()));
  if (prompt.text.size() != text.size()) {
    m_builder.warning(here(), "the blanks before the prompt are ignored");
  }
  return prompt;
}

}  // namespace kconfig
