// What the tables say of a model, in the form in which `tessel-metamodel --json` prints it. Read from the YAML files
// with nothing of the generator, so that the two check each other. Thread rule: pure functions.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace tables {

using Json = nlohmann::ordered_json;

/// The document of the configuration model in the repository at that path. Its packages are without the host of their
/// URIs.
Json expectedDocument(std::string const& repository);

/// The UUID that a name has in every metamodel.
std::string nameUuid(std::string const& name);

}  // namespace tables
