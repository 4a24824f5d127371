// Facts about one property that follow from its row and its type alone. The checks hold a row against them, the
// derivation writes them into the model.
#pragma once

#include "modelgen/model.hpp"

namespace modelgen {

Scheme schemeOf(Property const& property);

// Sequences, and single values, have an order; sets, maps and derived views have none.
bool orderedByRule(Property const& property);

// True for single values and sets, false for maps. A derived view is as unique as the shape of its source. Only a
// sequence may choose, and is not unique unless its row says so.
bool uniqueByRule(Property const& property);
bool mayChooseUnique(Property const& property);

// Whether a query can name a property of this type and shape.
bool queryableByRule(Property const& property);

}  // namespace modelgen
