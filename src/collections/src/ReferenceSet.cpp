#include "plinth/collections/ReferenceSet.hpp"

#include "plinth/FailurePoint.hpp"

namespace plinth {

std::unique_ptr<CollectionJournal> ReferenceSet::makeJournal() {
  return std::make_unique<Journal>(m_elements, proxyTable());
}

bool ReferenceSet::insertRaw(ModelElement const& element, CollectionJournal* journal) {
  auto* const steps = static_cast<Journal*>(journal);
  if (steps != nullptr) {
    steps->reserve();
    steps->nodes().reserve();
  }
  failurePoint("set-insert");
  auto const [at, inserted] = m_elements.insert(element);
  if (inserted && steps != nullptr) {
    steps->nodes().inserted(*at);
    steps->note(false);
  }
  return inserted;
}

void ReferenceSet::eraseRaw(Container::const_iterator at, CollectionJournal* journal) {
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

void ReferenceSet::addElement(ModelElement const& element) {
  if (element.isEmpty()) return;
  checkCompatibleModel(element.impl());
  if (element->isProxy()) {
    addProxy(element);
    return;
  }
  if (holds(element)) return;
  Operation operation(*this, extentOfAdding(*element));
  announceAdding(*element);
  insertRaw(element, modifying());
  if (hasInverse()) inverseAfterAdding(*element);
  operation.commit();
}

void ReferenceSet::genericAdd(ModelElement const& element) {
  if (!element) return;
  requireFitting(element);
  addElement(element);
}

void ReferenceSet::removeElement(ModelElement const& element) {
  if (!holds(element)) return;
  Operation operation(*this, extent());
  CollectionJournal* const journal = modifying();
  if (hasInverse()) inverseBeforeRemoving(*element);
  auto const at = m_elements.find(element);
  if (at != m_elements.end()) eraseRaw(at, journal);
  operation.commit();
}

void ReferenceSet::basicAdd(ModelElement const& element) {
  Operation operation(*this);
  insertRaw(element, modifying());
  operation.commit();
}

bool ReferenceSet::resolveAdd(ModelElement const& element) { return insertRaw(element, modifying()); }

void ReferenceSet::basicRemove(ModelElement const& element) {
  auto const at = m_elements.find(element);
  if (at == m_elements.end()) return;
  Operation operation(*this);
  eraseRaw(at, modifying());
  operation.commit();
}

void ReferenceSet::resetElements(CollectionJournal* journal) {
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

void ReferenceSet::basicClear() {
  if (m_elements.empty() && proxies() == nullptr) return;
  Operation operation(*this);
  CollectionJournal* const journal = modifying();
  resetElements(journal);
  copyProxies(nullptr, journal);
  operation.commit();
}

void ReferenceSet::basicCopyValues(ReferenceCollection const* other) {
  auto const* const source = static_cast<ReferenceSet const*>(other);
  Container copy = source == nullptr ? Container() : source->m_elements;
  Operation operation(*this, Operation::WHOLE);
  CollectionJournal* const journal = modifying();
  resetElements(journal);
  for (ModelElement const& element : copy) insertRaw(element, journal);
  copyProxies(source, journal);
  operation.commit();
}

void ReferenceSet::forEachReal(std::function<void(ModelElementImpl&)> const& visit) const {
  for (ModelElement const& element : m_elements) visit(*element);
}

std::size_t ReferenceSet::oldSize() const {
  auto const* const kept = static_cast<Journal const*>(journal());
  return kept == nullptr ? m_elements.size() : kept->nodes().oldSize(m_elements.size());
}

std::unique_ptr<AbstractOwnedCollection> ReferenceSet::oldContents() const {
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

std::unique_ptr<AbstractOwnedCollection> ReferenceSet::detachedCopy() const {
  auto copy = makeDetached();
  copy->m_elements = m_elements;
  copy->copyProxies(this, nullptr);
  return copy;
}

}  // namespace plinth
