// Reads a configuration tree from its files. It goes on behind an error where it sensibly can: the line at fault is
// left out, a file that cannot be read counts as empty, a block that nobody closes ends with its file. Nothing is
// thrown for bad input, all of it is told to the diagnostics.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "language/Diagnostics.hpp"
#include "language/MenuTree.hpp"

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

// Reads rootPath and everything that it sources. A relative name is looked up as it stands, then in the folder that the
// variable "srctree" names. Cost: linear in the size of the files.
MenuTree readTree(std::string const& rootPath, Surroundings const& surroundings, Diagnostics& diagnostics);

}  // namespace kconfig
