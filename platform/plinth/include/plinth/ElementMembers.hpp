// The elements that a property holds, looked at as they stand: nothing is resolved, and no collection is made.
// Thread rule: the model's thread.
#pragma once

#include <string>
#include <vector>

#include "plinth/ReferenceCollection.hpp"
#include "plinth/meta/Type.hpp"

namespace plinth::detail {

/// The properties along the base chain that have a state of their own: derived ones have none.
std::vector<meta::PropertyImpl*> storedProperties(meta::ClassImpl const& metaClass);

/// Whether the values of the property are elements.
bool holdsElements(meta::PropertyImpl const& property) noexcept;

/// What an element-valued property holds, dead elements and proxies included. Sequences are in order; in a map the real
/// elements are in the order of their keys, and proxies follow. A single property has one member or none. Linear.
std::vector<ModelElement> membersOf(ModelElementImpl const& element, meta::PropertyImpl& property);

/// The keys under which the real elements of a map stand, in order. Linear.
std::vector<std::u16string> keysOf(ReferenceCollection& map);

/// The value of the qualifier that `element` bears, whatever its map says.
std::u16string keyBorneBy(ModelElementImpl const& element, meta::PropertyImpl& qualifier);

}  // namespace plinth::detail
