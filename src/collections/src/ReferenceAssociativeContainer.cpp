#include "plinth/collections/ReferenceAssociativeContainer.hpp"

#include "plinth/collections/ElementMapBase.hpp"
#include "plinth/collections/ProxyTable.hpp"
#include "plinth/collections/ReferenceSet.hpp"

namespace plinth {

template <class C>
std::unique_ptr<CollectionJournal> ReferenceAssociativeContainer<C>::makeJournal() {
  return std::make_unique<Journal>(m_elements, proxyTable());
}

template <class C>
auto ReferenceAssociativeContainer<C>::roomForOne(CollectionJournal* journal) -> Journal* {
  auto* const steps = static_cast<Journal*>(journal);
  if (steps != nullptr) {
    steps->reserve();
    steps->nodes().reserve();
  }
  return steps;
}

template <class C>
void ReferenceAssociativeContainer<C>::eraseRaw(Position at, CollectionJournal* journal) {
  Journal* const steps = roomForOne(journal);
  auto node = m_elements.extract(at);
  if (steps != nullptr) {
    steps->nodes().erased(std::move(node));
    steps->note(false);
  }
}

template <class C>
bool ReferenceAssociativeContainer<C>::removeElement(ModelElement const& element) {
  if (!holds(element)) return false;
  Operation operation(*this, extent());
  CollectionJournal* const journal = modifying();
  if (hasInverse()) inverseBeforeRemoving(*element);
  auto const at = locate(element);
  if (at != m_elements.end()) eraseRaw(at, journal);
  operation.commit();
  return true;
}

template <class C>
void ReferenceAssociativeContainer<C>::basicAdd(ModelElement const& element) {
  Operation operation(*this);
  insertRaw(element, modifying());
  operation.commit();
}

template <class C>
void ReferenceAssociativeContainer<C>::basicRemove(ModelElement const& element) {
  auto const at = locate(element);
  if (at == m_elements.end()) {
    removeProxyFor(element);
    return;
  }
  Operation operation(*this);
  eraseRaw(at, modifying());
  operation.commit();
}

template <class C>
void ReferenceAssociativeContainer<C>::resetElements(CollectionJournal* journal) {
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

template <class C>
void ReferenceAssociativeContainer<C>::basicClear() {
  if (m_elements.empty() && proxies() == nullptr) return;
  Operation operation(*this);
  CollectionJournal* const journal = modifying();
  resetElements(journal);
  copyProxies(nullptr, journal);
  operation.commit();
}

template <class C>
void ReferenceAssociativeContainer<C>::basicCopyValues(ReferenceCollection const* other) {
  auto const* const source = static_cast<ReferenceAssociativeContainer const*>(other);
  Container const copy = source == nullptr ? Container() : source->m_elements;
  Operation operation(*this, Operation::WHOLE);
  CollectionJournal* const journal = modifying();
  resetElements(journal);
  for (auto const& node : copy) insertRaw(detail::elementOf(node), journal);
  copyProxies(source, journal);
  operation.commit();
}

template <class C>
bool ReferenceAssociativeContainer<C>::hasSameMembers(ReferenceCollection const& other) const {
  auto const& store = static_cast<ReferenceAssociativeContainer const&>(other);
  auto const count = [](ProxyTable const* table) { return table == nullptr ? 0 : table->size(); };
  if (count(proxies()) != count(store.proxies()) || m_elements != store.m_elements) return false;
  return count(proxies()) == 0 || *proxies() == *store.proxies();
}

template <class C>
void ReferenceAssociativeContainer<C>::forEachReal(ElementVisitor visit) const {
  for (auto const& node : m_elements) visit(*detail::elementOf(node));
}

template <class C>
std::size_t ReferenceAssociativeContainer<C>::oldSize() const {
  return kept() == nullptr ? m_elements.size() : kept()->nodes().oldSize(m_elements.size());
}

template <class C>
std::unique_ptr<AbstractOwnedCollection> ReferenceAssociativeContainer<C>::oldContents() const {
  if (kept() == nullptr) return copyContents();
  Detached copy = makeDetached();
  copy->m_elements = kept()->nodes().oldContents(m_elements);
  if (proxies() != nullptr) copy->requireProxyTable() = kept()->proxySteps().oldContents(*proxies());
  return copy;
}

template <class C>
std::unique_ptr<AbstractOwnedCollection> ReferenceAssociativeContainer<C>::copyContents() const {
  Detached copy = makeDetached();
  copy->m_elements = m_elements;
  copy->copyProxies(this, nullptr);
  return copy;
}

template class ReferenceAssociativeContainer<MapContainer>;
template class ReferenceAssociativeContainer<SetContainer>;

}  // namespace plinth
