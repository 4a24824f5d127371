// The command line of the generator.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <iostream>

#include "modelgen/Generator.hpp"

namespace {

int runCommandLine(int argc, char** argv) {
  CLI::App app{"Generates the C++ code of a model from its tables."};
  modelgen::Options options;
  app.add_option("--model", options.model, "model.yaml of the model to generate")->required();
  app.add_option("--import", options.imports, "model.yaml of a model whose types are used; given before its users");
  app.add_option("--templates", options.templates, "folder with outputs.yaml and the templates");
  app.add_option("--out", options.out, "folder to write to");
  app.add_option("--root", options.root, "folder that generated files name their tables by (default: above the model)");
  app.add_option("--depfile", options.depfile, "file to write the dependencies to, in the form of make");
  CLI::Option_group* const modes = app.add_option_group("mode", "what to do instead of writing");
  CLI::Option const* const check = modes->add_flag("--check", "tell what is not up to date (exit 1) and write nothing");
  CLI::Option const* const list = modes->add_flag("--list-outputs", "print the output files, relative to --out");
  CLI::Option const* const summary = modes->add_flag("--summary", "print what the model holds, counted");
  modes->require_option(0, 1);
  try {
    app.parse(argc, argv);
  } catch (CLI::ParseError const& error) {
    // The library has exit codes of its own; 0 is that of --help.
    return static_cast<int>(app.exit(error) == 0 ? modelgen::ExitStatus::done : modelgen::ExitStatus::refused);
  }

  if (check->count() != 0) options.mode = modelgen::Mode::check;
  if (list->count() != 0) options.mode = modelgen::Mode::listOutputs;
  if (summary->count() != 0) options.mode = modelgen::Mode::summary;
  bool const needsTemplates = options.mode != modelgen::Mode::summary;
  bool const needsFolder = needsTemplates && options.mode != modelgen::Mode::listOutputs;
  if ((needsTemplates && options.templates.empty()) || (needsFolder && options.out.empty())) {
    std::cerr << "modelgen: --templates and --out are needed to write or check\n";
    return static_cast<int>(modelgen::ExitStatus::refused);
  }
  return static_cast<int>(modelgen::run(options, std::cout, std::cerr));
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return runCommandLine(argc, argv);
  } catch (std::exception const& error) {
    std::fprintf(stderr, "modelgen: %s\n", error.what());
    return static_cast<int>(modelgen::ExitStatus::refused);
  }
}
