// The report of a key that two elements can't bear: whoever reads it has to find the other one.
// Thread rule: the thread of the owner's model.
#pragma once

#include <string_view>

#include "plinth/ModelElement.hpp"

namespace plinth {

/// Raises UniquenessConstraint for a key that is taken in a collection. Its sentence tells the key and the path of the
/// collection, such as `ConfigStore{1f0c8a22}/Profiles`. The owner is null for a collection that stands alone.
[[noreturn]] TESSEL_EXPORT void reportTakenKey(std::u16string_view key, ModelElementImpl const* owner,
                                               meta::PropertyImpl const* property);

}  // namespace plinth
