// Facts about one property that follow from its row and its type alone. The checks hold a row against them, the
// derivation writes them into the model.
#pragma once

#include <string>

#include "modelgen/model.hpp"

namespace modelgen {

// The kind of the property, as the scheme and templates/kinds name it. The one place where a row of the tables is given
// its kind.
std::string schemeOf(Property const& property);

// Sequences, and single values, have an order; sets, maps and derived views have none.
bool orderedByRule(Property const& property);

// True for single values and sets, false for maps. A derived view is as unique as the shape of its source. Only a
// sequence may choose, and is not unique unless its row says so.
bool uniqueByRule(Property const& property);
bool mayChooseUnique(Property const& property);

// Whether a query can name a property of this type and shape.
bool queryableByRule(Property const& property);

// Whether the library holds the setter of an attribute of this type and shape, so that no class's source has to make
// it.
bool hasReadySetter(Property const& property);

}  // namespace modelgen
