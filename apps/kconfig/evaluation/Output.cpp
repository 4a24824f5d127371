#include "evaluation/Output.hpp"

namespace kconfig {

namespace {

OutputItem headingOf(MenuTree const& tree, MenuNode const& node) {
  OutputItem item;
  item.kind = OutputItem::Kind::Heading;
  item.name = tree.properties[node.prompt].text;
  return item;
}

OutputItem itemOf(MenuTree const& tree, SymbolId symbol, Evaluator& evaluator) {
  OutputItem item;
  item.type = tree.symbols[symbol].type;
  item.name = tree.symbols[symbol].name;
  item.text = evaluator.textOf(symbol);
  if (isLogical(item.type)) {
    // m reads as n where modules are off.
    item.value = item.text == "n" ? Tristate::No : evaluator[symbol].tristate;
  }
  return item;
}

}  // namespace

bool isShown(MenuNode const& node, Evaluator& evaluator) {
  return node.prompt != noProperty && evaluator.valueOf(node.visibility) != Tristate::No &&
         evaluator.valueOf(node.promptCondition) != Tristate::No;
}

Output collectOutput(MenuTree const& tree, CompiledTree const& compiled, Evaluator& evaluator,
                     std::string_view prefix) {
  Output output;
  output.title = tree.title;
  output.prefix = prefix;
  std::vector<bool> done(tree.symbols.size(), false);
  for (EntryId id = compiled.nodes[rootEntry].firstChild; id != noEntry; id = following(compiled, id)) {
    SymbolId const symbol = tree.entries[id].symbol;
    if (symbol == noSymbol) {
      if (isShown(compiled.nodes[id], evaluator)) {
        output.items.push_back(headingOf(tree, compiled.nodes[id]));
      }
    } else if (tree.entries[id].kind != EntryKind::Choice && evaluator[symbol].written && !done[symbol]) {
      done[symbol] = true;
      output.items.push_back(itemOf(tree, symbol, evaluator));
    }
  }
  return output;
}

}  // namespace kconfig
