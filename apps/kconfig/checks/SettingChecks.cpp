#include "checks/SettingChecks.hpp"

#include <algorithm>
#include <iterator>
#include <sstream>

#include "language/ExpressionText.hpp"
#include "language/Nearest.hpp"
#include "profiles/ProfileApplication.hpp"

namespace kconfig {

namespace {

ProfileLine lineOf(Setting const& setting) {
  ProfileLine line;
  line.name = setting.symbol;
  line.value = setting.value;
  line.set = true;
  return line;
}

std::string quoted(std::string_view text) { return "'" + std::string(text) + "'"; }

void append(std::string& list, std::string const& item, char const* between) {
  list += (list.empty() ? "" : between) + item;
}

// Finds what stood against a value that was asked for.
class Obstacles {
 public:
  Obstacles(MenuTree const& tree, CompiledTree const& compiled, Evaluator& evaluator)
      : m_tree(tree), m_compiled(compiled), m_evaluator(evaluator) {}

  bool isAsAsked(SymbolId symbol, UserValue const& asked) const;
  std::string obstacleTo(SymbolId symbol, UserValue const& asked);

 private:
  std::string obstacleToLevel(SymbolId symbol, Tristate asked);
  std::string obstacleInChoice(SymbolId member, Tristate asked) const;
  std::string rangeOf(SymbolId symbol);
  std::string needsOf(SymbolId symbol, Tristate level);
  std::string unmetPartsOf(ExpressionId condition, Tristate level);
  std::string needOf(ExpressionId part, Tristate level);
  std::string selectorsOf(SymbolId symbol);
  bool hasPrompt(SymbolId symbol) const;

  MenuTree const& m_tree;
  CompiledTree const& m_compiled;
  Evaluator& m_evaluator;
};

bool Obstacles::isAsAsked(SymbolId symbol, UserValue const& asked) const {
  SymbolValue const& value = m_evaluator[symbol];
  return isLogical(m_tree.symbols[symbol].type) ? value.tristate == asked.tristate : value.text == asked.text;
}

std::string Obstacles::obstacleTo(SymbolId symbol, UserValue const& asked) {
  Symbol const& row = m_tree.symbols[symbol];
  if (row.automatic && row.kind != SymbolKind::Choice) {
    return "its value comes from the environment or the tool";
  }
  if (!hasPrompt(symbol)) {
    return "it has no prompt, so that its value only follows from others";
  }
  if (m_evaluator[symbol].visible == Tristate::No) {
    return "it needs " + needsOf(symbol, Tristate::No);
  }
  if (!m_evaluator.isWithinRange(symbol, asked.text)) {
    return rangeOf(symbol);
  }
  std::string const obstacle = isLogical(row.type) ? obstacleToLevel(symbol, asked.tristate) : std::string();
  return obstacle.empty() ? "the tree gives it another value" : obstacle;
}

std::string Obstacles::obstacleToLevel(SymbolId symbol, Tristate asked) {
  SymbolValue const& value = m_evaluator[symbol];
  bool const modulesOn = m_evaluator[m_compiled.modules].tristate != Tristate::No;
  if (asked == Tristate::Mod && !modulesOn) {
    return "there are no modules";
  }
  if (m_compiled.symbols[symbol].choice != noSymbol && value.visible == Tristate::Yes) {
    return obstacleInChoice(symbol, asked);
  }
  if (asked > value.visible) {
    return "it can be m at most, as " + needsOf(symbol, Tristate::Mod) + " is";
  }
  if (asked < value.reverse) {
    std::string const selectors = selectorsOf(symbol);
    return selectors.empty() ? "a member of the choice has to be set" : "it is selected by " + selectors;
  }
  return value.implied > asked ? "it is implied" : "";
}

std::string Obstacles::obstacleInChoice(SymbolId member, Tristate asked) const {
  SymbolId const choice = m_compiled.symbols[member].choice;
  SymbolId const chosen = m_evaluator[choice].chosen;
  if (chosen == member) {
    return "one member of its choice has to be y; set another one";
  }
  if (asked == Tristate::No || chosen == noSymbol) {
    return "its choice is not y";
  }
  return "its choice has " + quoted(m_tree.symbols[chosen].name);
}

std::string Obstacles::rangeOf(SymbolId symbol) {
  auto const limits = m_evaluator.limitsOf(symbol);
  if (!limits) {
    return "it is out of its range";
  }
  std::ostringstream text;
  if (m_tree.symbols[symbol].type == SymbolType::Hexadecimal) {
    text << std::hex << std::showbase;
  }
  text << "its range is " << limits->lower << " to " << limits->upper;
  return text.str();
}

// The parts of the prompts' conditions that hold no further than level.
std::string Obstacles::needsOf(SymbolId symbol, Tristate level) {
  std::string needs;
  for (EffectiveProperty const& row : m_compiled.propertiesOf(symbol)) {
    if (row.kind == PropertyKind::Prompt) {
      append(needs, unmetPartsOf(row.condition, level), ", or ");
    }
  }
  return needs;
}

std::string Obstacles::unmetPartsOf(ExpressionId condition, Tristate level) {
  ExpressionPool const& pool = m_tree.expressions;
  std::string needs;
  if (pool.op(condition) == Operator::And) {
    for (ExpressionId const part : pool.operands(condition)) {
      if (m_evaluator.valueOf(part) <= level) {
        append(needs, needOf(part, level), " and ");
      }
    }
  }
  return needs.empty() ? needOf(condition, level) : needs;
}

// A part as the author wrote it. A choice, which may have no name, stands for what it needs itself.
std::string Obstacles::needOf(ExpressionId part, Tristate level) {
  ExpressionPool const& pool = m_tree.expressions;
  bool const names = pool.op(part) == Operator::Symbol || pool.op(part) == Operator::Equal;
  if (!names || m_tree.symbols[pool.left(part)].kind != SymbolKind::Choice) {
    return quoted(textOf(pool, m_tree.symbols, part));
  }
  SymbolId const choice = pool.left(part);
  std::string const needs = m_evaluator[choice].visible <= level ? needsOf(choice, level) : std::string();
  return needs.empty() ? "its choice" : needs;
}

std::string Obstacles::selectorsOf(SymbolId symbol) {
  std::string selectors;
  for (Selection const& selection : m_compiled.selects) {
    if (selection.target == symbol && m_evaluator.valueOf(selection.condition) != Tristate::No) {
      append(selectors, quoted(m_tree.symbols[selection.selector].name), ", ");
    }
  }
  return selectors;
}

bool Obstacles::hasPrompt(SymbolId symbol) const {
  for (EffectiveProperty const& row : m_compiled.propertiesOf(symbol)) {
    if (row.kind == PropertyKind::Prompt) {
      return true;
    }
  }
  return false;
}

}  // namespace

void takeSettings(std::vector<Setting> const& settings, std::string_view source, MenuTree& tree,
                  CompiledTree const& compiled, UserValues& users, Diagnostics& diagnostics) {
  for (Setting const& setting : settings) {
    // Each setting by itself: that it replaces a value is what it is for.
    UserValues own(tree, compiled);
    std::string const complaint = assignLine(lineOf(setting), tree.symbols, own);
    if (!complaint.empty()) {
      bool const isKnown = tree.symbols.findDefined(setting.symbol) != noSymbol;
      diagnostics.error(source, 0, isKnown ? complaint : unknownSymbol(tree.symbols, setting.symbol));
    }
    users.takeOver(own);
  }
}

std::vector<Setting> withinRanges(std::vector<Setting> const& settings, MenuTree& tree, CompiledTree const& compiled,
                                  Evaluator& evaluator) {
  std::vector<Setting> kept;
  std::copy_if(settings.begin(), settings.end(), std::back_inserter(kept), [&](Setting const& setting) {
    UserValues own(tree, compiled);
    return !assignLine(lineOf(setting), tree.symbols, own).empty() ||
           evaluator.isWithinRange(tree.symbols.find(setting.symbol), own[tree.symbols.find(setting.symbol)].text);
  });
  return kept;
}

void checkSettings(std::vector<Setting> const& settings, std::string_view source, MenuTree& tree,
                   CompiledTree const& compiled, Evaluator& evaluator, Diagnostics& diagnostics) {
  Obstacles obstacles(tree, compiled, evaluator);
  for (auto setting = settings.begin(); setting != settings.end(); ++setting) {
    UserValues own(tree, compiled);
    if (!assignLine(lineOf(*setting), tree.symbols, own).empty()) {
      continue;  // that was told when it was taken in
    }
    SymbolId const symbol = tree.symbols.find(setting->symbol);
    if (obstacles.isAsAsked(symbol, own[symbol])) {
      continue;
    }
    bool const isReplaced =
        std::any_of(setting + 1, settings.end(), [&](Setting const& later) { return later.symbol == setting->symbol; });
    std::string const value(evaluator.textOf(symbol));
    diagnostics.error(source, 0,
                      quoted(setting->symbol + "=" + setting->value) + " comes to " +
                          (value.empty() ? "nothing" : value) + ": " +
                          (isReplaced ? "a later setting replaces it" : obstacles.obstacleTo(symbol, own[symbol])));
  }
}

std::string unknownSymbol(SymbolTable const& symbols, std::string_view name) {
  Nearest nearest(name);
  for (SymbolId symbol = symbolYes + 1; symbol < symbols.size(); ++symbol) {
    if (symbols[symbol].defined) {
      nearest.consider(symbols[symbol].name);
    }
  }
  return "there is no symbol " + quoted(name) + nearest.question();
}

}  // namespace kconfig
