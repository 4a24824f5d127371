#include "plinth/collections/ReferenceMap.hpp"

#include <functional>

#include "plinth/FailurePoint.hpp"

namespace plinth {

std::unique_ptr<CollectionJournal> ReferenceMap::makeJournal() {
  return std::make_unique<Journal>(m_elements, proxyTable());
}

std::u16string const& ReferenceMap::keyOf(ModelElementImpl const& element) const {
  if (m_keyExtractor == nullptr) throw std::bad_function_call();
  return m_keyExtractor(element);
}

ReferenceMap::Container::const_iterator ReferenceMap::locate(ModelElement const& element) const {
  auto const at = m_elements.find(keyOf(*element));
  return at != m_elements.end() && at->second == element ? at : m_elements.end();
}

bool ReferenceMap::holds(ModelElement const& element) const {
  return !element->isProxy() && locate(element) != m_elements.end();
}

bool ReferenceMap::insertRaw(Container::const_iterator hint, ModelElement const& element, CollectionJournal* journal) {
  auto* const steps = static_cast<Journal*>(journal);
  if (steps != nullptr) {
    steps->reserve();
    steps->nodes().reserve();
  }
  failurePoint("map-insert");
  std::size_t const before = m_elements.size();
  auto const at = m_elements.emplace_hint(hint, keyOf(*element), element);
  if (m_elements.size() == before) return false;
  if (steps != nullptr) {
    steps->nodes().inserted(at->first);
    steps->note(false);
  }
  return true;
}

void ReferenceMap::eraseRaw(Container::const_iterator at, CollectionJournal* journal) {
  auto* const steps = static_cast<Journal*>(journal);
  if (steps != nullptr) {
    steps->reserve();
    steps->nodes().reserve();
  }
  auto node = m_elements.extract(at);
  if (steps != nullptr) {
    steps->nodes().erased(std::move(node));
    steps->note(false);
  }
}

void ReferenceMap::insertElement(ModelElement const& element, CollisionResolution resolution) {
  if (element.isEmpty()) return;
  checkCompatibleModel(element.impl());
  if (element->isProxy()) {
    addProxy(element);
    return;
  }
  std::u16string const& key = keyOf(*element);
  auto const at = m_elements.lower_bound(key);
  if (at != m_elements.end() && at->first == key) {
    if (at->second == element || resolution == CollisionResolution::KEEP) return;
    if (resolution == CollisionResolution::RAISE) reportException(messages::UniquenessConstraint());
    if (resolution == CollisionResolution::REPLACE) replaceEntry(at, element);
    return;
  }
  Operation operation(*this, extentOfAdding(*element));
  announceAdding(*element);
  insertRaw(at, element, modifying());
  if (hasInverse()) inverseAfterAdding(*element);
  operation.commit();
}

void ReferenceMap::replaceEntry(Container::const_iterator at, ModelElement const& element) {
  Operation operation(*this, extent());
  auto* const steps = static_cast<Journal*>(modifying());
  if (steps != nullptr) {
    steps->reserve();
    steps->nodes().reserve();
  }
  if (hasInverse()) inverseBeforeRemoving(*at->second);
  auto const entry = m_elements.find(at->first);
  ModelElement former = std::exchange(entry->second, element);
  if (steps != nullptr) {
    steps->nodes().replaced(entry->first, std::move(former));
    steps->note(false);
  }
  if (hasInverse()) inverseAfterAdding(*element);
  operation.commit();
}

ModelElement ReferenceMap::findElement(std::u16string_view key) const {
  auto const at = m_elements.find(key);
  return at == m_elements.end() ? ModelElement() : at->second;
}

std::vector<std::u16string> ReferenceMap::keys() const {
  std::vector<std::u16string> keys;
  keys.reserve(m_elements.size());
  for (auto const& entry : m_elements) keys.push_back(entry.first);
  return keys;
}

std::vector<Value> ReferenceMap::getAllKeys() const {
  std::vector<Value> keys;
  keys.reserve(m_elements.size());
  ValueMeta const meta(StandardTypes::stringMeta(), meta::SINGLE);
  for (auto const& entry : m_elements) keys.push_back(Value::make<std::u16string>(meta, entry.first));
  return keys;
}

meta::Type ReferenceMap::getQualifierType() const {
  if (property() == nullptr || property()->qualifiedBy() == nullptr) return meta::Type(StandardTypes::stringMeta());
  return property()->qualifiedBy()->getType();
}

bool ReferenceMap::hasSameMembers(ReferenceCollection const& other) const {
  return m_elements == static_cast<ReferenceMap const&>(other).m_elements && ReferenceCollection::hasSameMembers(other);
}

void ReferenceMap::genericAdd(ModelElement const& element) {
  if (!element) return;
  requireFitting(element);
  insertElement(element, CollisionResolution::RAISE);
}

void ReferenceMap::removeElement(ModelElement const& element) {
  if (locate(element) == m_elements.end()) return;
  Operation operation(*this, extent());
  CollectionJournal* const journal = modifying();
  if (hasInverse()) inverseBeforeRemoving(*element);
  auto const at = locate(element);
  if (at != m_elements.end()) eraseRaw(at, journal);
  operation.commit();
}

void ReferenceMap::basicAdd(ModelElement const& element) {
  Operation operation(*this);
  CollectionJournal* const journal = modifying();
  insertRaw(m_elements.lower_bound(keyOf(*element)), element, journal);
  operation.commit();
}

bool ReferenceMap::resolveAdd(ModelElement const& element) {
  return insertRaw(m_elements.lower_bound(keyOf(*element)), element, modifying());
}

void ReferenceMap::basicRemove(ModelElement const& element) {
  auto const at = locate(element);
  if (at == m_elements.end()) return;
  Operation operation(*this);
  eraseRaw(at, modifying());
  operation.commit();
}

void ReferenceMap::resetElements(CollectionJournal* journal) {
  if (m_elements.empty()) return;
  auto* const steps = static_cast<Journal*>(journal);
  if (steps != nullptr) {
    steps->reserve();
    steps->nodes().reserveReset();
  }
  Container former;
  former.swap(m_elements);
  if (steps != nullptr) {
    steps->nodes().reset(std::move(former));
    steps->note(false);
  }
}

void ReferenceMap::basicClear() {
  if (m_elements.empty() && proxies() == nullptr) return;
  Operation operation(*this);
  CollectionJournal* const journal = modifying();
  resetElements(journal);
  copyProxies(nullptr, journal);
  operation.commit();
}

void ReferenceMap::basicCopyValues(ReferenceCollection const* other) {
  auto const* const source = static_cast<ReferenceMap const*>(other);
  Container copy = source == nullptr ? Container() : source->m_elements;
  Operation operation(*this, Operation::WHOLE);
  CollectionJournal* const journal = modifying();
  resetElements(journal);
  for (auto const& entry : copy) insertRaw(m_elements.end(), entry.second, journal);
  copyProxies(source, journal);
  operation.commit();
}

void ReferenceMap::forEachReal(std::function<void(ModelElementImpl&)> const& visit) const {
  for (auto const& entry : m_elements) visit(*entry.second);
}

std::size_t ReferenceMap::oldSize() const {
  auto const* const kept = static_cast<Journal const*>(journal());
  return kept == nullptr ? m_elements.size() : kept->nodes().oldSize(m_elements.size());
}

std::unique_ptr<AbstractOwnedCollection> ReferenceMap::oldContents() const {
  auto copy = makeDetached();
  auto const* const kept = static_cast<Journal const*>(journal());
  copy->m_elements = kept == nullptr ? m_elements : kept->nodes().oldContents(m_elements);
  if (kept != nullptr && proxies() != nullptr) {
    copy->requireProxyTable() = kept->proxySteps().oldContents(*proxies());
  } else {
    copy->copyProxies(this, nullptr);
  }
  return copy;
}

std::unique_ptr<AbstractOwnedCollection> ReferenceMap::detachedCopy() const {
  auto copy = makeDetached();
  copy->m_elements = m_elements;
  copy->copyProxies(this, nullptr);
  return copy;
}

namespace {

/// The untyped view of a map.
class MapInterface final : public GenericMapInterface {
 public:
  explicit MapInterface(ReferenceMap& map) noexcept : m_map(&map) {}
  std::uint32_t genericSize() const override { return static_cast<std::uint32_t>(m_map->size()); }
  void genericAdd(ModelElement const& element) override { m_map->genericAdd(element); }
  void genericRemove(ModelElement const& element) override { m_map->genericRemove(element); }
  void genericClear() override { m_map->clear(); }
  void genericBasicClear() override { m_map->basicClear(); }
  bool genericContains(ModelElement const& element) const override { return m_map->genericContains(element); }
  ModelElement genericGet(Value const& key) const override {
    return m_map->findElement(key.getValue<std::u16string>());
  }
  std::vector<Value> genericKeys() const override { return m_map->getAllKeys(); }
  meta::Type getQualifierType() const override { return m_map->getQualifierType(); }

 private:
  ReferenceMap* m_map;
};

}  // namespace

std::unique_ptr<GenericCollectionInterface> ReferenceMap::makeGenericInterface() {
  return std::make_unique<MapInterface>(*this);
}

}  // namespace plinth
