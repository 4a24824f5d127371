#include "plinth/collections/ElementMapBase.hpp"

#include <functional>

#include "CollectionView.hpp"
#include "plinth/FailurePoint.hpp"
#include "plinth/collections/ProxyTable.hpp"
#include "plinth/diagnostics/TakenKey.hpp"

namespace plinth {

std::u16string const& ElementMapBase::keyOf(ModelElementImpl const& element) const {
  if (m_keyExtractor == nullptr) throw std::bad_function_call();
  return m_keyExtractor(element);
}

ElementMapBase::Position ElementMapBase::locate(ModelElement const& element) const {
  if (element->isProxy()) return raw().end();  // its key is not to be trusted
  auto const at = raw().find(keyOf(*element));
  return at != raw().end() && at->second == element ? at : raw().end();
}

bool ElementMapBase::insertAt(Position hint, ModelElement const& element, CollectionJournal* journal) {
  return insertNode(journal, [&](Container& elements) {
    failurePoint("map-insert");
    std::size_t const before = elements.size();
    auto const at = elements.emplace_hint(hint, keyOf(*element), element);
    return std::pair(at, elements.size() != before);
  });
}

bool ElementMapBase::insertRaw(ModelElement const& element, CollectionJournal* journal) {
  return insertAt(raw().lower_bound(keyOf(*element)), element, journal);
}

bool ElementMapBase::insertElement(ModelElement const& element, CollisionResolution resolution) {
  if (element.isEmpty()) return false;
  checkCompatibleModel(element.impl());
  if (element->isProxy()) return addProxy(element);
  std::u16string const& key = keyOf(*element);
  auto const at = raw().lower_bound(key);
  if (at != raw().end() && at->first == key) {
    if (at->second == element || resolution == CollisionResolution::KEEP) return false;
    if (resolution == CollisionResolution::RAISE) reportTakenKey(key, owner(), property());
    if (resolution != CollisionResolution::REPLACE) return false;
    replaceEntry(at, element);
    return true;
  }
  Operation operation(*this, extentOfAdding(*element));
  announceAdding(*element);
  insertAt(at, element, modifying());
  if (hasInverse()) inverseAfterAdding(*element);
  operation.commit();
  return true;
}

bool ElementMapBase::eraseKey(std::u16string_view key) {
  ModelElement const element = findElement(key);
  return !element.isEmpty() && removeElement(element);
}

void ElementMapBase::replaceEntry(Position at, ModelElement const& element) {
  std::u16string const& key = at->first;
  Operation operation(*this, extent());
  auto* const steps = roomForOne(modifying());
  if (hasInverse()) inverseBeforeRemoving(*at->second);
  auto const entry = elements().find(key);
  ModelElement former = std::exchange(entry->second, element);
  if (steps != nullptr) {
    steps->nodes().replaced(entry->first, std::move(former));
    steps->note(false);
  }
  if (hasInverse()) inverseAfterAdding(*element);
  operation.commit();
}

ModelElement ElementMapBase::findElement(std::u16string_view key) const {
  auto const at = raw().find(key);
  return at == raw().end() ? ModelElement() : at->second;
}

std::vector<std::u16string> ElementMapBase::keys() const {
  std::vector<std::u16string> keys;
  keys.reserve(raw().size());
  for (auto const& entry : raw()) keys.push_back(entry.first);
  return keys;
}

std::vector<Value> ElementMapBase::getAllKeys() const {
  std::vector<Value> keys;
  keys.reserve(raw().size());
  ValueMeta const meta(StandardTypes::stringMeta(), meta::SINGLE);
  for (auto const& entry : raw()) keys.push_back(Value::makeUnchecked<std::u16string>(meta, entry.first));
  return keys;
}

meta::Type ElementMapBase::getQualifierType() const {
  if (property() == nullptr || property()->qualifiedBy() == nullptr) return meta::Type(StandardTypes::stringMeta());
  return property()->qualifiedBy()->getType();
}

void ElementMapBase::genericAdd(ModelElement const& element) {
  if (!element) return;
  requireFitting(element);
  insertElement(element, CollisionResolution::RAISE);
}

class ElementMapBase::MyGenericInterface final : public CollectionView<GenericMapInterface, ElementMapBase> {
 public:
  using CollectionView::CollectionView;
  ModelElement genericGet(Value const& key) const override {
    return collection().findElement(key.getValue<std::u16string>());
  }
  std::vector<Value> genericKeys() const override { return collection().getAllKeys(); }
  meta::Type getQualifierType() const override { return collection().getQualifierType(); }
};

std::unique_ptr<GenericCollectionInterface> ElementMapBase::makeGenericInterface() {
  return std::make_unique<MyGenericInterface>(*this);
}

}  // namespace plinth
