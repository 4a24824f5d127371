#include "language/SymbolTable.hpp"

namespace kconfig {

SymbolTable::SymbolTable() {
  for (char const* name : {"n", "m", "y"}) {
    SymbolId const id = add(name, SymbolKind::Constant);
    m_plain.emplace(name, id);
    m_constants.emplace(name, id);
  }
}

SymbolId SymbolTable::plain(std::string_view name) { return lookUp(m_plain, name, SymbolKind::Plain); }

SymbolId SymbolTable::constant(std::string_view text) { return lookUp(m_constants, text, SymbolKind::Constant); }

SymbolId SymbolTable::choice(std::string_view name) {
  return name.empty() ? add(name, SymbolKind::Choice) : lookUp(m_choices, name, SymbolKind::Choice);
}

SymbolId SymbolTable::find(std::string_view name) const {
  for (Index const* index : {&m_plain, &m_choices}) {
    auto const found = index->find(name);
    if (found != index->end()) {
      return found->second;
    }
  }
  return noSymbol;
}

SymbolId SymbolTable::findDefined(std::string_view name) const {
  SymbolId const found = find(name);
  return found != noSymbol && m_symbols[found].defined ? found : noSymbol;
}

SymbolId SymbolTable::lookUp(Index& index, std::string_view name, SymbolKind kind) {
  auto const found = index.find(name);
  if (found != index.end()) {
    return found->second;
  }
  SymbolId const id = add(name, kind);
  index.emplace(name, id);
  return id;
}

SymbolId SymbolTable::add(std::string_view name, SymbolKind kind) {
  Symbol symbol;
  symbol.name = name;
  symbol.kind = kind;
  symbol.optional = kind != SymbolKind::Choice;
  symbol.automatic = kind == SymbolKind::Choice;
  m_symbols.push_back(symbol);
  return size() - 1;
}

}  // namespace kconfig
