// Where an element stands, as text for people: from the root container down to the element, such as
// `ConfigStore{1f0c8a22}/Profiles[main]/Values[volume]`.
// Thread rule: the thread of the element's model.
#pragma once

#include <functional>
#include <string>

#include "plinth/ModelElement.hpp"
#include "plinth/meta/Property.hpp"

namespace plinth {

/// The path of `element`. The root is told by class and UUID; each step names the containment property and, in a map,
/// the key that the element bears, escaped to one line, in a sequence its position, in a set its UUID. UUIDs are cut to
/// eight digits. Where a chain of containers runs into itself the path begins with "...". Linear in the depth, and in
/// each sequence on the way.
TESSEL_EXPORT std::string elementPath(ModelElementImpl const& element);

namespace detail {

/// Whether a container may be looked at.
using ContainerFilter = std::function<bool(ModelElementImpl const& container)>;
constexpr std::size_t NO_POSITION = ~std::size_t{0};

/// The path that begins below the first container that `filter` rejects.
std::string elementPath(ModelElementImpl const& element, ContainerFilter const& filter);
/// `ConfigStore{1f0c8a22}`.
std::string shortName(ModelElementImpl const& element);
/// `Profiles[main]`: the step to `element`, which stands at that position if it is in a sequence.
std::string pathStep(meta::PropertyImpl const& property, ModelElementImpl const& element, std::size_t position);

}  // namespace detail
}  // namespace plinth
