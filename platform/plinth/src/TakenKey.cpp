#include "plinth/TakenKey.hpp"

#include "plinth/ElementPath.hpp"
#include "plinth/Messages.hpp"
#include "plinth/ValueText.hpp"

namespace plinth {

void reportTakenKey(std::u16string_view key, ModelElementImpl const* owner, meta::PropertyImpl const* property) {
  bool const standsAlone = owner == nullptr || property == nullptr;
  reportTakenKey(quoted(key), standsAlone ? "the same map" : elementPath(*owner) + "/" + escaped(property->getName()));
}

void reportTakenKey(std::string const& key, std::string const& holder) {
  messages::UniquenessConstraint const taken;
  reportException(
      taken, taken.key + ": another element of " + holder + " already bears the key " + key + "; choose another key.");
}

}  // namespace plinth
