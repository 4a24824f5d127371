// The canonical text of a host array, for fingerprints and findings. Thread rule: a pure function of the array.
#pragma once

#include <string>

#include "kestrel/Array.hpp"
#include "plinth/Value.hpp"

namespace tessel::frame {

/// Class, dimensions unless 1 by 1, and contents, as in `double[1,3]{1, 2.5, nan}` or `struct{Name: "a"}`; "none" for
/// null. Arrays of equal contents have equal texts. Of an object only the class is told, since it has no text of its
/// own: arrays that differ in nothing else have the same text. Linear in what the array holds.
TESSEL_EXPORT std::string hostArrayText(kestrel_array const* array);

/// The same for a value that holds a host array; the hash of any other value. For plinth::setOpaqueText.
TESSEL_EXPORT std::string hostArrayValueText(plinth::Value const& value);

}  // namespace tessel::frame
