// Reads a configuration tree from its files into definitions of the model. It goes on behind an error where it sensibly
// can: the line at fault is left out, a file that cannot be read counts as empty, a block that nobody closes ends with
// its file. Nothing is thrown for bad input, all of it is told to the diagnostics.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <tessel_config_datamodel/schema/SchemaData.hpp>
#include <unordered_map>

#include "language/Diagnostics.hpp"
#include "language/MenuTree.hpp"
#include "loading/ModelTypes.hpp"

namespace kconfig {

// What the reader sees of the world.
struct Surroundings {
  // The value of a variable of the environment.
  std::function<std::optional<std::string>(std::string const& name)> variable;
  // The text of a file, or a problem that says why it can't be had.
  std::function<std::optional<std::string>(std::string const& path, std::string& problem)> file;
};

// The environment and the files of this process.
Surroundings processSurroundings();

// Reads the text of a regular file, or says in problem why it can't be had.
std::optional<std::string> readFile(std::string const& path, std::string& problem);

using HelpTexts = std::unordered_map<EntryId, std::u16string>;

// The definitions, and the help texts of entries, which go to the state.
struct ReadTree {
  schema::SchemaData schema;
  HelpTexts helps;
};

// Reads rootPath and everything that it sources into definitions of the model, inside a transaction of the caller. A
// relative name is looked up as it stands, then in the folder that the variable "srctree" names. Linear in the size of
// the files; each variable that the name of a file holds costs as much again. The model's thread.
ReadTree readTree(std::string const& rootPath, Surroundings const& surroundings, Diagnostics& diagnostics,
                  plinth::Model const& model);

}  // namespace kconfig
