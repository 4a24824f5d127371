#include "plinth/diagnostics/TakenKey.hpp"

#include "groundwork/Unicode.hpp"
#include "plinth/Messages.hpp"
#include "plinth/diagnostics/ElementPath.hpp"
#include "plinth/diagnostics/ValueText.hpp"

namespace plinth {
namespace {

// The record stays without arguments, as that of every key: a sentence is for people.
[[noreturn]] void report(std::string const& place, std::string const& key) {
  messages::UniquenessConstraint const taken;
  reportException(
      taken, taken.key + ": another element of " + place + " already bears the key " + key + "; choose another key.");
}

}  // namespace

void reportTakenKey(std::u16string_view key, ModelElementImpl const* owner, meta::PropertyImpl const* property) {
  bool const isPlaced = owner != nullptr && property != nullptr;
  report(isPlaced ? elementPath(*owner) + "/" + groundwork::toUtf8(property->getName()) : "the same map", quoted(key));
}

}  // namespace plinth
