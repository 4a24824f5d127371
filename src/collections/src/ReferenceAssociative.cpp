#include "plinth/collections/ReferenceAssociative.hpp"

#include <algorithm>

#include "CollectionView.hpp"
#include "plinth/collections/ProxyTable.hpp"

namespace plinth {
namespace detail {

void AssociativeJournal::clear() noexcept {
  clearElements();
  m_proxySteps.clear();
  m_order.clear();
}

void AssociativeJournal::reserve() { makeRoomFor(m_order, 1, 64); }

void AssociativeJournal::undoTo(std::size_t mark) noexcept {
  while (m_order.size() > mark) {
    if (m_order.back()) {
      m_proxySteps.undoLast(**m_proxyTable);
    } else {
      undoElement();
    }
    m_order.pop_back();
  }
}

}  // namespace detail

ReferenceAssociative::ReferenceAssociative(ModelElementImpl* owner, meta::PropertyImpl* property,
                                           meta::PropertyImpl* opposite) noexcept
    : ReferenceCollection(owner, property, opposite) {}

ReferenceAssociative::~ReferenceAssociative() = default;

detail::ProxySteps* ReferenceAssociative::proxySteps(CollectionJournal* journal) {
  if (journal == nullptr) return nullptr;
  auto* const steps = static_cast<detail::AssociativeJournal*>(journal);
  steps->reserve();
  steps->proxySteps().reserveReset();
  return &steps->proxySteps();
}

ProxyTable& ReferenceAssociative::requireProxyTable() {
  if (m_proxies == nullptr) m_proxies = std::make_unique<ProxyTable>();
  return *m_proxies;
}

bool ReferenceAssociative::addProxy(ModelElement const& proxy) {
  boost::optional<ProxyId> const id = proxy->getProxyId();
  if (!id) return false;
  if (isComposite() && !id->isLocal()) reportException(messages::CannotCreateCrossModelAssociation());
  ProxyTable& table = requireProxyTable();
  Operation operation(*this);
  CollectionJournal* const journal = modifying();
  auto* const steps = proxySteps(journal);
  auto const [at, inserted] = table.emplace(*id, proxy);
  if (inserted && steps != nullptr) {
    steps->inserted(at->first);
    static_cast<detail::AssociativeJournal*>(journal)->note(true);
  }
  operation.commit();
  return inserted;
}

bool ReferenceAssociative::keeps(ModelElement const& proxy) const {
  boost::optional<ProxyId> const id = proxy->getProxyId();
  if (m_proxies == nullptr || !id) return false;
  auto const found = m_proxies->find(*id);
  return found != m_proxies->end() && found->second == proxy;
}

bool ReferenceAssociative::removeProxy(ModelElement const& proxy) {
  boost::optional<ProxyId> const id = proxy->getProxyId();
  if (m_proxies == nullptr || !id || m_proxies->count(*id) == 0) return false;
  Operation operation(*this);
  CollectionJournal* const journal = modifying();
  auto* const steps = proxySteps(journal);
  auto node = m_proxies->extract(*id);
  if (steps != nullptr) {
    steps->erased(std::move(node));
    static_cast<detail::AssociativeJournal*>(journal)->note(true);
  }
  operation.commit();
  return true;
}

void ReferenceAssociative::removeProxyFor(ModelElement const& element) {
  if (m_proxies == nullptr || m_proxies->empty() || !element || element->isProxy()) return;
  for (bool const local : {true, false}) {
    ModelElement const proxy = proxyFor(element, local);
    if (!proxy.isEmpty()) removeProxy(proxy);
  }
}

ModelElement ReferenceAssociative::proxyFor(ModelElement const& element, bool local) const {
  if (m_proxies == nullptr || m_proxies->empty()) return {};
  if (local && owner() != nullptr && core(*element).modelIdentity() != core(*owner()).modelIdentity()) return {};
  auto const found = m_proxies->find(element->getPersistentProxyId(local));
  return found == m_proxies->end() ? ModelElement() : found->second;
}

void ReferenceAssociative::copyProxies(ReferenceAssociative const* other, CollectionJournal* journal) {
  bool const copies = other != nullptr && other->m_proxies != nullptr;
  if (!copies && m_proxies == nullptr) return;
  ProxyTable copy = copies ? *other->m_proxies : ProxyTable();
  ProxyTable& table = requireProxyTable();
  auto* const steps = proxySteps(journal);
  copy.swap(table);
  if (steps != nullptr) {
    steps->reset(std::move(copy));
    static_cast<detail::AssociativeJournal*>(journal)->note(true);
  }
}

void ReferenceAssociative::takeIn(ModelElement const& proxy, ModelElement const& real) {
  // A step like any other, so that taking back its transaction leaves the proxy and nothing else.
  Operation operation(*this, extent());
  bool const inserted = resolveAdd(real);
  // A proxy goes when its element is in, also if it was before; it stays while another element bears the key.
  if (inserted || holds(real)) removeProxy(proxy);
  if (inserted && hasInverse() && !listsOwner(*real)) inverseAfterAdding(*real);
  operation.commit();
}

void ReferenceAssociative::replaceProxy(ModelElement const& element) {
  if (mayTakePlace(element)) replaceProxyBy(element);
}

bool ReferenceAssociative::replaceProxyBy(ModelElement const& element) {
  for (bool const local : {true, false}) {
    ModelElement const proxy = proxyFor(element, local);
    if (proxy.isEmpty()) continue;
    takeIn(proxy, element);
    return true;
  }
  return false;
}

void ReferenceAssociative::resolve(bool localOnly) {
  if (m_proxies == nullptr || m_proxies->empty() || owner() == nullptr) return;
  if (owner()->model().isFrozen()) return;  // taking one in is a change
  ModelElement const held = heldOwner();
  std::vector<ModelElement> waiting;  // taking one in changes the table, and so may a model that is loaded for it
  waiting.reserve(m_proxies->size());
  for (auto const& [id, proxy] : *m_proxies) {
    if (!localOnly || id.isLocal()) waiting.push_back(proxy);
  }
  for (ModelElement const& proxy : waiting) {
    ModelElement const found = resolveProxy(proxy);
    // A loader may have destroyed the owner, frozen its model, or taken the proxy out.
    if (!held || owner()->model().isFrozen()) return;
    if (keeps(proxy) && isConfirmed(found)) takeIn(proxy, found);
  }
}

void ReferenceAssociative::basicAddWithProxy(ModelElement const& element) {
  if (element->isProxy()) {
    addProxy(element);
  } else {
    basicAdd(element);
  }
}

bool ReferenceAssociative::basicContainsProxyTo(ModelElementImpl& target) {
  if (holds(ModelElement(&target))) return true;
  ModelElement const element(&target);
  if (!proxyFor(element, true).isEmpty() || !proxyFor(element, false).isEmpty()) return true;
  if (m_proxies == nullptr) return false;
  // An id may name the element by another class.
  return std::any_of(m_proxies->begin(), m_proxies->end(), [&](auto const& entry) {
    ModelElement const& proxy = entry.second;
    return proxy->getUuid() == target.getUuid() && peekResolveProxy(proxy) == element;
  });
}

void ReferenceAssociative::convertToProxy(ModelElementImpl& element, ModelElement const& proxy) {
  Operation operation(*this, Operation::WHOLE);
  basicRemove(ModelElement(&element));
  addProxy(proxy);
  operation.commit();
}

std::vector<ModelElement> ReferenceAssociative::getAllValues() {
  resolveAll();
  std::vector<ModelElement> values;
  values.reserve(rawSize());
  forEachReal([&](ModelElementImpl& element) { values.emplace_back(&element); });
  return values;
}

std::vector<ModelElement> ReferenceAssociative::getAllValuesAndProxies() const {
  std::vector<ModelElement> values;
  values.reserve(rawSize() + (m_proxies == nullptr ? 0 : m_proxies->size()));
  forEachReal([&](ModelElementImpl& element) { values.emplace_back(&element); });
  if (m_proxies != nullptr) {
    for (auto const& [id, proxy] : *m_proxies) values.push_back(proxy);
  }
  return values;
}

void ReferenceAssociative::genericRemove(ModelElement const& element) {
  if (!element) return;
  requireFitting(element);
  removeMember(element);
}

bool ReferenceAssociative::removeMember(ModelElement const& element) {
  if (element.isEmpty()) return false;
  if (!element->isProxy()) return removeElement(element);
  if (!keeps(element)) return false;
  Operation operation(*this, extent());
  if (hasInverse() && opposite() != nullptr) {
    // What it names may be here itself, and stay linked.
    ModelElement const far = core(*owner())._farEnd(element, *opposite());
    if (!far.isEmpty() && !holds(far)) inverseBeforeRemoving(*far);
  }
  removeProxy(element);
  operation.commit();
  return true;
}

void ReferenceAssociative::clear() {
  bool const anyProxies = m_proxies != nullptr && !m_proxies->empty();
  if (empty() && !anyProxies) return;
  Operation operation(*this, extent());
  CollectionJournal* const journal = modifying();
  if (hasInverse()) {
    std::vector<ModelElement> const snapshot = getAllValuesAndProxies();
    for (ModelElement const& element : snapshot) inverseBeforeRemoving(*element);
  }
  resetElements(journal);
  copyProxies(nullptr, journal);
  operation.commit();
}

std::unique_ptr<GenericCollectionInterface> ReferenceAssociative::makeGenericInterface() {
  return std::make_unique<WrapperInterface<ReferenceCollection>>(*this);
}

}  // namespace plinth
