// What the commands print of a configuration. All of it is read off the model, except which rule gave a value: that the
// evaluation tells.
#include <sys/resource.h>

#include <iomanip>
#include <iostream>
#include <plinth/diagnostics/Census.hpp>
#include <plinth/diagnostics/Verify.hpp>
#include <tessel_config_datamodel/data/IntegerParamData.hpp>
#include <tessel_config_datamodel/runtime/MetaMessage.hpp>
#include <tessel_config_datamodel/runtime/TagState.hpp>
#include <tessel_config_datamodel/schema/ParamDef.hpp>

#include "commands/Commands.hpp"
#include "language/ExpressionText.hpp"
#include "loading/ModelText.hpp"
#include "loading/Vocabulary.hpp"
#include "state/ValueData.hpp"

namespace kconfig {

namespace {

void printRow(std::string_view name, std::string const& text) {
  if (!text.empty()) {
    std::cout << std::left << std::setw(21) << name << text << '\n';
  }
}

std::string placeOf(MenuTree const& tree, Position position) {
  return std::string(tree.files[position.file].name) + ":" + std::to_string(position.line);
}

std::string orEmpty(boost::optional<std::u16string> const& text) { return text ? fromModel(*text) : std::string(); }

// Tree

// A category whose contents are being printed. Categories can lie in each other to any depth.
struct OpenCategory {
  runtime::CategoryState category;
  std::size_t next = 0;
};

void printTitle(runtime::CategoryState const& category, std::size_t depth) {
  // What lies below a symbol is printed behind it, without a title of its own.
  if (fromModel(category->getKey()).compare(0, key::below.size(), key::below) != 0) {
    std::cout << std::string(2 * depth, ' ') << orEmpty(category->getData()->getName()) << '\n';
  }
}

void printParam(runtime::ParamState const& param, std::size_t depth) {
  if (param->getTypeName() == u"choice") {
    return;
  }
  data::ParamData const data = param->getData();
  std::string const prompt = orEmpty(data->getName());
  std::cout << std::string(2 * depth, ' ') << fromModel(param->getKey()) << " = " << fromModel(param->getCachedCode())
            << (prompt.empty() ? "" : "   \"" + prompt + "\"") << (param->getUserModified() ? " *" : "") << '\n';
}

// Symbol

std::string originOf(Workspace& workspace, SymbolId symbol) {
  MenuTree const& tree = workspace.tree();
  SymbolValue const& value = workspace.values()[symbol];
  std::string const source =
      value.source != noProperty ? " at " + placeOf(tree, tree.properties[value.source].position) : "";
  switch (value.origin) {
    case Origin::User:
      return "the profile";
    case Origin::Default:
      return "a default" + source;
    case Origin::Selected:
      return "a select";
    case Origin::Implied:
      return "an imply";
    case Origin::Choice:
      return "the choice that it is a member of";
    case Origin::Range:
      return "the bound of a range" + source;
    case Origin::Nothing:
      break;
  }
  return "nothing: it is what the type has without a value";
}

void printSelections(Workspace& workspace, std::vector<Selection> const& selections, SymbolId symbol,
                     std::string_view title) {
  MenuTree const& tree = workspace.tree();
  for (Selection const& selection : selections) {
    if (selection.target == symbol) {
      bool const inForce = workspace.values().valueOf(selection.condition) != Tristate::No;
      printRow(title, std::string(tree.symbols[selection.selector].name) + (inForce ? "" : " (not in force)") + " at " +
                          placeOf(tree, tree.properties[selection.source].position));
    }
  }
}

void printProperties(Workspace const& workspace, SymbolId symbol) {
  MenuTree const& tree = workspace.tree();
  auto const text = [&tree](ExpressionId id) { return textOf(tree.expressions, tree.symbols, id); };
  for (EffectiveProperty const& row : workspace.compiled().propertiesOf(symbol)) {
    std::string const condition = row.condition != noExpression ? " if " + text(row.condition) : "";
    if (row.kind == PropertyKind::Default) {
      printRow("default", text(row.value) + condition);
    } else if (row.kind == PropertyKind::Range) {
      printRow("range",
               std::string(tree.symbols[row.lower].name) + " " + std::string(tree.symbols[row.upper].name) + condition);
    } else if (!condition.empty()) {
      printRow("visible", condition.substr(1));
    }
  }
  printRow("depends on", text(workspace.compiled().symbols[symbol].direct));
}

std::string pathOf(runtime::ParamState const& param) {
  std::string path;
  for (runtime::CategoryState category = param->getCategory(); category; category = category->getCategory()) {
    path.insert(0, orEmpty(category->getData()->getName()) + (path.empty() ? "" : " > "));
  }
  return path;
}

}  // namespace

void printSymbol(Workspace& workspace, SymbolId symbol) {
  runtime::ParamState const& param = workspace.states().params[symbol];
  data::ParamData const data = param->getData();
  printRow("symbol", fromModel(param->getKey()));
  printRow("type", fromModel(param->getTypeName()));
  printRow("prompt", orEmpty(data->getName()));
  printRow("value", fromModel(param->getCachedCode()));
  printRow("comes from", originOf(workspace, symbol));
  if (param->hasDefault()) {
    printRow("without the profile", shownValue(param->getDefault()));
  }
  printRow("line", param->getAwake() ? workspace.settingOf(symbol, workspace.writer().shown()[symbol]) : "none");
  printRow("visible now", param->getEffectiveVisible() ? "yes" : "no");
  printRow("menu", pathOf(param));
  MenuTree const& tree = workspace.tree();
  for (Entry const& entry : tree.entries) {
    if (entry.symbol == symbol) {
      printRow("declared", placeOf(tree, entry.position));
    }
  }
  printProperties(workspace, symbol);
  printSelections(workspace, workspace.compiled().selects, symbol, "selected by");
  printSelections(workspace, workspace.compiled().implies, symbol, "implied by");
  for (runtime::TagState const& tag : *param->getTags()) {
    printRow("owner", fromModel(tag->getId()));
  }
  for (runtime::MetaMessage const& message : *param->getMessages()) {
    printRow("message", fromModel(message->getText()));
  }
  printRow("help", orEmpty(data->getDescription()));
}

void printTree(Workspace const& workspace, bool all) {
  std::vector<OpenCategory> open{{workspace.states().categories[rootEntry]}};
  printTitle(open.back().category, 0);
  while (!open.empty()) {
    auto& contents = *open.back().category->getContents();
    if (open.back().next == contents.size()) {
      open.pop_back();
      continue;
    }
    runtime::ControllableState const member = contents.at(open.back().next++);
    if (!all && !member->getEffectiveVisible()) {
      continue;
    }
    if (auto const param = plinth::element_cast<runtime::ParamState>(member)) {
      printParam(param, open.size());
    } else if (auto const inner = plinth::element_cast<runtime::CategoryState>(member)) {
      printTitle(inner, open.size());
      open.push_back({inner});
    }
  }
}

void printDifferences(Workspace const& workspace, ShownValues const& before, ShownValues const& after) {
  for (SymbolId symbol = 0; symbol < before.size(); ++symbol) {
    std::string const left = workspace.settingOf(symbol, before[symbol]);
    std::string const right = workspace.settingOf(symbol, after[symbol]);
    if (left != right) {
      std::cout << (left.empty() ? "" : "-" + left + "\n") << (right.empty() ? "" : "+" + right + "\n");
    }
  }
}

bool printFindings(Workspace const& workspace) {
  std::vector<plinth::Finding> const findings = plinth::verify(workspace.model());
  for (plinth::Finding const& finding : findings) {
    std::cout << finding << '\n';
  }
  if (findings.empty()) {
    std::cout << "the model is sound: " << workspace.model()->elementCount() << " elements\n";
  }
  return findings.empty();
}

void printSummary(Run& run) {
  Workspace const& workspace = run.workspace();
  std::size_t counts[7] = {};
  for (Entry const& entry : workspace.tree().entries) {
    ++counts[static_cast<std::size_t>(entry.kind)];
  }
  auto const count = [&counts](EntryKind kind) { return counts[static_cast<std::size_t>(kind)]; };
  std::size_t symbols = 0;
  for (SymbolId id = 0; id < workspace.tree().symbols.size(); ++id) {
    Symbol const& symbol = workspace.tree().symbols[id];
    symbols += symbol.defined && symbol.kind == SymbolKind::Plain ? 1 : 0;
  }
  auto const row = [](std::string_view name, auto value, char const* unit) {
    std::cout << std::left << std::setw(28) << name << std::right << std::setw(10) << value << unit << '\n';
  };
  row("files", workspace.tree().files.size(), "");
  row("entries", count(EntryKind::Config) + count(EntryKind::MenuConfig), "");
  row("symbols", symbols, "");
  row("choices", count(EntryKind::Choice), "");
  row("menus", count(EntryKind::Menu), "");
  row("comments", count(EntryKind::Comment), "");
  row("elements of the model", workspace.model()->elementCount(), "");
  for (plinth::Census::Row const& kind : plinth::census(workspace.model()).classes) {
    std::string const name = fromModel(kind.metaClass->getQualifiedName());
    row("  " + name.substr(name.rfind('.') + 1), kind.count, "");
  }
  std::cout << std::fixed << std::setprecision(1);
  double total = 0;
  for (Progress::Step const& step : run.progress().steps()) {
    row(step.name, step.milliseconds, " ms");
    total += step.milliseconds;
  }
  row("time", total, " ms");
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  row("memory", usage.ru_maxrss / 1024, " MiB");
}

}  // namespace kconfig
