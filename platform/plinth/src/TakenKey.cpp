#include "plinth/TakenKey.hpp"

#include "groundwork/unicode.hpp"
#include "plinth/ElementPath.hpp"
#include "plinth/Messages.hpp"

namespace plinth {

void reportTakenKey(std::u16string_view key, ModelElementImpl const* owner, meta::PropertyImpl const* property) {
  std::string path = owner != nullptr && property != nullptr
                         ? elementPath(*owner) + "/" + groundwork::toUtf8(property->getName())
                         : "the same map";
  messages::UniquenessConstraint taken;
  taken.arguments = {std::u16string(key), std::move(path)};
  reportException(taken);
}

}  // namespace plinth
