// The proxies of a sequence: resolved in their slots, found for what they name, and put in the place of what leaves.
#include <algorithm>
#include <unordered_set>

#include "SequenceSlots.hpp"
#include "plinth/FailurePoint.hpp"
#include "plinth/ProxyId.hpp"

namespace plinth {

std::size_t ReferenceSequence::positionOfProxyFor(ModelElement const& element) const {
  // A link between models only: within a model the far end is real when it lets go.
  if (owner() == nullptr || !element || core(*element).modelIdentity() == core(*owner()).modelIdentity())
    return m_elements.size();
  auto const standsForIt = [&](ModelElement const& slot) {
    bool const mayStand = !slot.isEmpty() && slot->isProxy() && slot->getUuid() == element->getUuid();
    return mayStand && peekResolveProxy(slot) == element;
  };
  return static_cast<std::size_t>(std::find_if(m_elements.begin(), m_elements.end(), standsForIt) - m_elements.begin());
}

/// The members of a unique sequence while its proxies are resolved one after the other, so that none of them costs a
/// search. A loader may change the sequence meanwhile.
class ReferenceSequence::Members {
 public:
  bool has(ReferenceSequence const& sequence, ModelElement const& element) {
    if (!m_known || m_edits != sequence.m_edits) {
      m_elements.clear();
      for (ModelElement const& each : sequence.m_elements) m_elements.insert(each.impl());
      m_edits = sequence.m_edits;
      m_known = true;
    }
    return m_elements.count(element.impl()) != 0;
  }
  void takenIn(ReferenceSequence const& sequence, ModelElement const& element) {
    m_elements.insert(element.impl());
    m_edits = sequence.m_edits;
  }

 private:
  std::unordered_set<ModelElementImpl const*> m_elements;
  std::uint32_t m_edits = 0;
  bool m_known = false;
};

bool ReferenceSequence::resolveSlot(std::size_t position, Members* members) {
  ModelElement const proxy = m_elements[position];
  if (proxy.isEmpty() || !proxy->isProxy()) return false;
  auto const stands = [&] { return position < m_elements.size() && m_elements[position] == proxy; };
  ModelElement const found = resolveProxy(proxy);
  if (!stands()) return false;  // a loader has changed it
  // The far end, when it is asked, may look here for the owner and put the element in its place.
  return isConfirmed(found) && stands() && takePlaceOfProxy(position, found, members);
}

/// Resolving is no modification, with no Operation and no notice, as long as the element, and its end of the link,
/// can't go back to where they came from. In a containment it is one: the element becomes a child. So it is where a
/// unique sequence holds the element already: the proxy goes. Whether the element stands in the sequence then.
bool ReferenceSequence::takePlaceOfProxy(std::size_t position, ModelElement real, Members* members) {
  bool const mayBeTakenBack = core(*real).mayBeTakenBack(opposite());
  if (mayBeTakenBack && &real->model() != &owner()->model()) return false;
  bool const isIn =
      m_unique && (members != nullptr ? members->has(*this, real) : positionOf(real) != m_elements.size());
  if (isIn) {
    if (owner()->model().isFrozen()) return false;
    Operation operation(*this);
    eraseRaw(position, position + 1, recordingJournal());
    operation.commit();
    return true;
  }
  if (isComposite()) {
    replaceProxyAt(real, position);
    return true;
  }
  Journal* const journal = mayBeTakenBack && owner()->model().level() > 0 ? recordingJournal() : nullptr;
  if (journal != nullptr) {
    journal->reserve();
    journal->replaced(position, m_elements[position]);
  }
  m_elements[position] = std::move(real);
  ++m_edits;
  if (m_unique && members != nullptr) members->takenIn(*this, m_elements[position]);
  addToFilter(m_elements[position]);
  return true;
}

ModelElement const& ReferenceSequence::resolveAt(std::size_t position) {
  static ModelElement const none;
  ModelElement const held = heldOwner();
  for (std::size_t size = m_elements.size() + 1; position < m_elements.size() && m_elements.size() < size;) {
    if (isRealElement(m_elements[position])) return m_elements[position];
    size = m_elements.size();
    resolveSlot(position);  // a proxy may go, and the next slot move up
  }
  bool const isThere = position < m_elements.size() && (held.isEmpty() || held);
  return isThere ? m_elements[position] : none;
}

void ReferenceSequence::replaceProxy(ModelElement const& element) {
  if (!mayTakePlace(element)) return;
  for (std::size_t i = 0; i < m_elements.size(); ++i) {
    ModelElement const& slot = m_elements[i];
    if (!slot->isProxy()) continue;
    if (peekResolveProxy(slot) == element) {
      replaceProxyAt(element, i);
      return;
    }
  }
}

void ReferenceSequence::replaceProxyAt(ModelElement const& element, std::size_t position) {
  if (m_unique && positionOf(element) != m_elements.size()) {
    takePlaceOfProxy(position, element);
    return;
  }
  Operation operation(*this, Operation::WHOLE);
  Journal* const journal = recordingJournal();
  if (journal != nullptr) journal->reserve();
  ModelElement former = std::exchange(m_elements[position], element);
  ++m_edits;
  addToFilter(element);
  noteRepetition(element);
  if (journal != nullptr) journal->replaced(position, std::move(former));
  if (hasInverse() && !listsOwner(*element)) inverseAfterAdding(*element);
  operation.commit();
}

void ReferenceSequence::resolveAll() { resolveSlots(false); }
void ReferenceSequence::resolveLocal() { resolveSlots(true); }

void ReferenceSequence::resolveSlots(bool localOnly) {
  ModelElement const held = heldOwner();
  Members members;
  for (std::size_t i = 0; i < m_elements.size();) {
    std::size_t const size = m_elements.size();
    boost::optional<ProxyId> const id = m_elements[i]->getProxyId();
    if (id && (id->isLocal() || !localOnly)) resolveSlot(i, &members);
    if (m_elements.size() >= size) ++i;  // otherwise the next one stands here now
  }
}

void ReferenceSequence::convertToProxy(ModelElementImpl& element, ModelElement const& proxy) {
  for (std::size_t i = 0; i < m_elements.size(); ++i) {
    if (m_elements[i].impl() != &element) continue;
    Operation operation(*this);
    Journal* const journal = recordingJournal();
    if (journal != nullptr) journal->reserve();
    ModelElement former = std::exchange(m_elements[i], proxy);
    ++m_edits;
    if (journal != nullptr) journal->replaced(i, std::move(former));
    operation.commit();
  }
}

bool ReferenceSequence::basicContainsProxyTo(ModelElementImpl& target) {
  if (owner() == nullptr) return false;
  if (positionOf(ModelElement(&target)) != m_elements.size()) return true;
  for (std::size_t i = 0; i < m_elements.size(); ++i) {
    ModelElement const& slot = m_elements[i];
    if (!slot->isProxy() || slot->getUuid() != target.getUuid()) continue;
    ModelElement const found = peekResolveProxy(slot);
    if (found.impl() != &target || found->isProxy() || !fits(found)) continue;
    takePlaceOfProxy(i, found);  // also if it has to wait for an open transaction: it stands for the target
    return true;
  }
  return false;
}

}  // namespace plinth
