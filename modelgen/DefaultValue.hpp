// Default texts of the metamodel, read as the property's type reads them. Free functions without state.
#pragma once

#include <optional>
#include <string>

#include "modelgen/model.hpp"

namespace modelgen {

// The C++ initialiser for a value of `type` that a default text stands for: "true", "-5", "2.5", u"text",
// a::b::Enum::LITERAL. Nothing where the type cannot read the text.
std::optional<std::string> defaultInitializer(Type const& type, std::string const& text);

// The initialiser of a value of `type` with no default text: false, zero, the first literal; empty where default
// construction does it.
std::string zeroInitializer(Type const& type);

// What a default text of `type` has to be, for messages.
std::string defaultForm(Type const& type);

}  // namespace modelgen
