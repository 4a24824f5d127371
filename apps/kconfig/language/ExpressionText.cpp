#include "language/ExpressionText.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

namespace kconfig {

namespace {

char const* signOf(Operator op) {
  constexpr std::pair<Operator, char const*> signs[] = {{Operator::Equal, " = "},   {Operator::Unequal, " != "},
                                                        {Operator::Less, " < "},    {Operator::LessEqual, " <= "},
                                                        {Operator::Greater, " > "}, {Operator::GreaterEqual, " >= "},
                                                        {Operator::And, " && "}};
  auto const sign = std::find_if(std::begin(signs), std::end(signs), [op](auto const& row) { return row.first == op; });
  return sign != std::end(signs) ? sign->second : " || ";
}

class Printer {
 public:
  Printer(ExpressionPool const& pool, SymbolTable const& symbols) : m_pool(pool), m_symbols(symbols) {}

  void print(ExpressionId id);
  std::string take() { return std::move(m_text); }

 private:
  void printSymbol(SymbolId id);
  void printList(ExpressionId id);

  ExpressionPool const& m_pool;
  SymbolTable const& m_symbols;
  std::string m_text;
};

void Printer::print(ExpressionId id) {
  Operator const op = m_pool.op(id);
  if (isList(op)) {
    printList(id);
  } else if (op == Operator::Not) {
    bool const single = m_pool.op(m_pool.operand(id)) == Operator::Symbol;
    m_text += single ? "!" : "!(";
    print(m_pool.operand(id));
    m_text += single ? "" : ")";
  } else if (op != Operator::None) {
    printSymbol(m_pool.left(id));
    if (op != Operator::Symbol) {
      m_text += signOf(op);
      printSymbol(m_pool.right(id));
    }
  }
}

void Printer::printSymbol(SymbolId id) {
  Symbol const& symbol = m_symbols[id];
  bool const quoted = symbol.kind == SymbolKind::Constant && !isTristateConstant(id);
  bool const nameless = symbol.kind == SymbolKind::Choice && symbol.name.empty();
  m_text += quoted ? "\"" : "";
  m_text += nameless ? std::string_view("<choice>") : symbol.name;
  m_text += quoted ? "\"" : "";
}

void Printer::printList(ExpressionId id) {
  Operator const op = m_pool.op(id);
  char const* separator = "";
  for (ExpressionId const operand : m_pool.operands(id)) {
    bool const inner = isList(m_pool.op(operand));
    m_text += separator;
    m_text += inner ? "(" : "";
    print(operand);
    m_text += inner ? ")" : "";
    separator = signOf(op);
  }
}

}  // namespace

std::string textOf(ExpressionPool const& pool, SymbolTable const& symbols, ExpressionId id) {
  Printer printer(pool, symbols);
  printer.print(id);
  return printer.take();
}

}  // namespace kconfig
