#include "plinth/ElementMembers.hpp"

#include <algorithm>

#include "plinth/Value.hpp"

namespace plinth::detail {

std::vector<meta::PropertyImpl*> storedProperties(meta::ClassImpl const& metaClass) {
  std::vector<meta::PropertyImpl*> properties = metaClass.allProperties();
  auto const derived = [](meta::PropertyImpl const* property) { return property->isDerived(); };
  properties.erase(std::remove_if(properties.begin(), properties.end(), derived), properties.end());
  return properties;
}

bool holdsElements(meta::PropertyImpl const& property) noexcept {
  return dynamic_cast<meta::ClassImpl const*>(property.type()) != nullptr;
}

std::vector<ModelElement> membersOf(ModelElementImpl const& element, meta::PropertyImpl& property) {
  if (property.isMany()) {
    ReferenceCollection const* const collection = core(element).referenceCollection(property);
    return collection == nullptr ? std::vector<ModelElement>() : collection->getAllValuesAndProxies();
  }
  Value const value = element.getPropertyValue(meta::Property(&property), ReflectionPrivateTag::IN_MEMORY_ONLY);
  auto target = value.getValue<ModelElement>();
  return target.isEmpty() ? std::vector<ModelElement>() : std::vector<ModelElement>{std::move(target)};
}

std::vector<std::u16string> keysOf(ReferenceCollection& map) {
  std::vector<std::u16string> keys;
  auto* const view = map.getGenericInterface();
  if (view == nullptr || !view->isMapInterface()) return keys;
  for (Value const& key : static_cast<GenericMapInterface*>(view)->genericKeys()) {
    keys.push_back(key.getValue<std::u16string>());
  }
  return keys;
}

std::u16string keyBorneBy(ModelElementImpl const& element, meta::PropertyImpl& qualifier) {
  return element.getPropertyValue(meta::Property(&qualifier), ReflectionPrivateTag::IN_MEMORY_ONLY)
      .getValue<std::u16string>();
}

}  // namespace plinth::detail
