// Identities of metamodel objects: name-based UUIDs of version 3 over the bare name, with no namespace before it.
#pragma once

#include <boost/uuid/uuid.hpp>
#include <string>

namespace modelgen {

// `name` is taken as its UTF-8 bytes. The same name gives the same UUID on every machine and in every release.
boost::uuids::uuid uuidOf(std::string const& name);

// Lower-case, in the usual groups of 8-4-4-4-12 digits.
std::string toText(boost::uuids::uuid const& uuid);

}  // namespace modelgen
