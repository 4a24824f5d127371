// Prints the metamodel of the configuration model as it stands in the registry: what the tables said is known here only
// by reflection.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iostream>
#include <stdexcept>

#include "Diagram.hpp"
#include "Json.hpp"
#include "Tree.hpp"

namespace {

constexpr int WRONG_USAGE = 2;

metamodel::meta::PackageImpl const& packageNamed(std::string const& wanted) {
  auto const packages = metamodel::select(true).packages;
  auto const found = std::find_if(packages.begin(), packages.end(), [&](auto const* package) {
    return !package->types().empty() && metamodel::qualifiedName(*package) == wanted;
  });
  if (found != packages.end()) return **found;
  std::string message = "there is no package \"" + wanted + "\" with types; there are:";
  for (auto const* package : packages) {
    if (!package->types().empty()) message += "\n  " + metamodel::qualifiedName(*package);
  }
  throw std::invalid_argument(message);
}

int run(int argc, char** argv) {
  CLI::App app(
      "Prints the metamodel of the configuration model, read back through reflection: as a tree, unless told "
      "otherwise.",
      "tessel-metamodel");
  bool json = false;
  bool all = false;
  std::string diagram;
  auto* const jsonOption = app.add_flag("--json", json, "Print JSON, every name qualified");
  auto* const diagramOption = app.add_option("--diagram", diagram,
                                             "Print the class diagram of a package, given by its dotted name, for "
                                             "Graphviz (dot -Tsvg)");
  diagramOption->option_text("PACKAGE")->excludes(jsonOption);
  app.add_flag("--all", all, "Print also the models that this one builds on, and the foundation's own classes")
      ->excludes(diagramOption);
  app.set_version_flag("--version", TESSEL_VERSION);
  app.footer("The exit status is 0, 1 after a failure, and 2 for options that are not known.");
  try {
    app.parse(argc, argv);
  } catch (CLI::ParseError const& error) {
    return app.exit(error) == 0 ? 0 : WRONG_USAGE;
  }

  if (!diagram.empty()) {
    metamodel::printDiagram(packageNamed(diagram), std::cout);
  } else if (json) {
    metamodel::printJson(metamodel::select(all), std::cout);
  } else {
    metamodel::printTree(metamodel::select(all), std::cout);
  }
  std::cout.flush();
  if (!std::cout) throw std::runtime_error("the output could not be written");
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (std::exception const& error) {
    std::cerr << "tessel-metamodel: " << error.what() << '\n';
    return 1;
  }
}
