// The typed data of a symbol's value, and the texts that files have for it.
#pragma once

#include <string>
#include <string_view>
#include <tessel_config_datamodel/data/ParamData.hpp>

#include "language/MenuTree.hpp"
#include "loading/ModelTypes.hpp"

namespace kconfig {

// New data of the class that holds values of the symbol: boolean for bool, enumeration for tristate and choices,
// integer for int and hex, string for everything else. The model's thread.
data::ParamData createData(plinth::Model const& model, Symbol const& symbol);

// Gives data the value that text stands for; text is without quotes, a choice's is the name of its member. A number
// that no 64 bits hold becomes the nearest that they do. base is the one that a number of the symbol's type has.
void setValue(data::ParamData const& data, std::string_view text, SymbolType type);

// The limits of a number's data.
void setLimits(data::ParamData const& data, long long lower, long long upper);

// The value as a user reads it.
std::string shownValue(data::ParamData const& data);

// What TypeName says: the keyword of the type, or "choice".
std::string_view typeNameOf(Symbol const& symbol);

}  // namespace kconfig
