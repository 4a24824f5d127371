#include "checks/TreeChecks.hpp"

#include <algorithm>
#include <string>

#include "evaluation/UserValues.hpp"

namespace kconfig {

namespace {

class EntryChecks {
 public:
  EntryChecks(MenuTree const& tree, CompiledTree const& compiled, Diagnostics& diagnostics)
      : m_tree(tree), m_compiled(compiled), m_diagnostics(diagnostics) {}

  void check(EntryId id);

 private:
  void checkSymbol(EntryId id, Entry const& entry);
  void checkProperty(Entry const& entry, Property const& property);
  void checkDefault(Symbol const& owner, Property const& property);
  void checkSelection(Symbol const& owner, Property const& property);
  void checkRange(Symbol const& owner, Property const& property);
  SymbolId enclosingSymbol(Entry const& entry) const;
  bool isValidNumber(Symbol const& owner, SymbolId value) const;
  void warn(Position position, std::string message) {
    m_diagnostics.warning(m_tree.files[position.file].name, position.line, std::move(message));
  }

  MenuTree const& m_tree;
  CompiledTree const& m_compiled;
  Diagnostics& m_diagnostics;
};

std::string quoted(Symbol const& symbol) {
  return symbol.name.empty() ? "the choice" : "'" + std::string(symbol.name) + "'";
}

void EntryChecks::check(EntryId id) {
  Entry const& entry = m_tree.entries[id];
  if (entry.symbol == noSymbol) {
    return;
  }
  checkSymbol(id, entry);
  for (Property const& property : propertiesOf(m_tree, entry)) {
    checkProperty(entry, property);
  }
}

void EntryChecks::checkSymbol(EntryId id, Entry const& entry) {
  Symbol const& symbol = m_tree.symbols[entry.symbol];
  bool const prompted = m_compiled.nodes[id].prompt != noProperty;
  if (symbol.type == SymbolType::Unknown) {
    warn(entry.position, quoted(symbol) + " has no type");
  }
  if (entry.kind == EntryKind::Choice && !prompted) {
    warn(entry.position, "the choice has no prompt");
  }
  SymbolId const choice = m_compiled.symbols[entry.symbol].choice;
  bool const insideChoice = choice != noSymbol && enclosingSymbol(entry) == choice;
  if (insideChoice && !prompted) {
    warn(entry.position, quoted(symbol) + " is a member of a choice and has no prompt");
  }
  if (choice != noSymbol && !insideChoice && prompted) {
    warn(entry.position, quoted(symbol) + " is a member of a choice and has a prompt outside of it");
  }
}

// The symbol of the block around an entry, conditional blocks apart.
SymbolId EntryChecks::enclosingSymbol(Entry const& entry) const {
  EntryId parent = entry.parent;
  while (parent != noEntry && m_tree.entries[parent].kind == EntryKind::If) {
    parent = m_tree.entries[parent].parent;
  }
  return parent != noEntry ? m_tree.entries[parent].symbol : noSymbol;
}

void EntryChecks::checkProperty(Entry const& entry, Property const& property) {
  Symbol const& owner = m_tree.symbols[entry.symbol];
  switch (property.kind) {
    case PropertyKind::Default:
      if (m_compiled.symbols[entry.symbol].choice != noSymbol) {
        warn(property.position, quoted(owner) + " is a member of a choice, its default does not count");
      } else if (entry.kind != EntryKind::Choice) {
        checkDefault(owner, property);
      }
      break;
    case PropertyKind::Select:
    case PropertyKind::Imply:
      checkSelection(owner, property);
      break;
    case PropertyKind::Range:
      checkRange(owner, property);
      break;
    default:
      break;
  }
}

void EntryChecks::checkDefault(Symbol const& owner, Property const& property) {
  if (owner.type == SymbolType::Unknown || isLogical(owner.type)) {
    return;
  }
  if (m_tree.expressions.op(property.value) != Operator::Symbol) {
    warn(property.position, "the default of " + quoted(owner) + " has to be a single symbol or constant");
  } else if (isNumeric(owner.type) && !isValidNumber(owner, m_tree.expressions.left(property.value))) {
    warn(property.position, "the default of " + quoted(owner) + " is no " + keywordOf(owner.type) + " value");
  }
}

void EntryChecks::checkSelection(Symbol const& owner, Property const& property) {
  char const* verb = property.kind == PropertyKind::Select ? "select" : "imply";
  Symbol const& target = m_tree.symbols[property.symbol];
  if (!isLogical(owner.type)) {
    warn(property.position, quoted(owner) + " is neither bool nor tristate and can't " + verb + " another symbol");
  } else if (target.type != SymbolType::Unknown && !isLogical(target.type)) {
    warn(property.position, quoted(target) + " is " + keywordOf(target.type) + ", " + verb + " has no effect on it");
  }
}

void EntryChecks::checkRange(Symbol const& owner, Property const& property) {
  if (!isNumeric(owner.type)) {
    warn(property.position, "a range is for int and hex, and " + quoted(owner) + " is " + keywordOf(owner.type));
  } else if (!isValidNumber(owner, property.symbol) || !isValidNumber(owner, property.upper)) {
    warn(property.position, "the range of " + quoted(owner) + " is not one of " + keywordOf(owner.type) + " values");
  }
}

// A constant has to read as a number; a symbol has to be of a type that does.
bool EntryChecks::isValidNumber(Symbol const& owner, SymbolId value) const {
  Symbol const& symbol = m_tree.symbols[value];
  return symbol.type == SymbolType::Unknown ? isValidText(owner.type, symbol.name) : isNumeric(symbol.type);
}

}  // namespace

void checkEntries(MenuTree const& tree, CompiledTree const& compiled, Diagnostics& diagnostics) {
  EntryChecks checks(tree, compiled, diagnostics);
  for (EntryId id = 0; id < tree.entries.size(); ++id) {
    checks.check(id);
  }
}

void checkLoops(MenuTree const& tree, CompiledTree const& compiled, EvaluationOrder const& order,
                Diagnostics& diagnostics) {
  std::vector<std::vector<SymbolId>> const loops = findLoops(tree, compiled, order);
  if (loops.empty()) {
    return;
  }
  std::vector<EntryId> declarations(tree.symbols.size(), noEntry);
  for (EntryId id = static_cast<EntryId>(tree.entries.size()); id-- > 0;) {
    if (tree.entries[id].symbol != noSymbol) {
      declarations[tree.entries[id].symbol] = id;
    }
  }
  for (std::vector<SymbolId> const& loop : loops) {
    std::string path;
    for (SymbolId const symbol : loop) {
      path += quoted(tree.symbols[symbol]) + " depends on ";
    }
    auto const declared =
        std::find_if(loop.begin(), loop.end(), [&](SymbolId symbol) { return declarations[symbol] != noEntry; });
    EntryId const place = declared != loop.end() ? declarations[*declared] : rootEntry;
    Position const position = tree.entries[place].position;
    diagnostics.error(tree.files[position.file].name, position.line,
                      "dependency loop: " + path + quoted(tree.symbols[loop.front()]));
  }
}

}  // namespace kconfig
