#include "plinth/collections/ReferenceSequence.hpp"

#include <algorithm>
#include <boost/functional/hash.hpp>
#include <iterator>
#include <unordered_map>
#include <unordered_set>

#include "CollectionView.hpp"
#include "SequenceSlots.hpp"
#include "plinth/FailurePoint.hpp"

namespace plinth {
namespace {

std::ptrdiff_t offset(std::size_t position) { return static_cast<std::ptrdiff_t>(position); }

}  // namespace

ReferenceSequence::ReferenceSequence(ModelElementImpl* owner, meta::PropertyImpl* property,
                                     meta::PropertyImpl* opposite) noexcept
    : ReferenceCollection(owner, property, opposite), m_unique(property != nullptr && property->isUnique()) {}

std::unique_ptr<CollectionJournal> ReferenceSequence::makeJournal() { return std::make_unique<Journal>(*this); }

ReferenceSequence::Journal* ReferenceSequence::recordingJournal() { return static_cast<Journal*>(modifying()); }

void ReferenceSequence::insertRaw(std::size_t position, ModelElement const& element, Journal* journal) {
  if (journal != nullptr) journal->reserveInsertion();
  failurePoint("sequence-insert");
  m_elements.insert(m_elements.begin() + offset(position), element);
  ++m_edits;
  if (journal != nullptr) journal->inserted(position);
  addToFilter(m_elements[position]);  // `element` may have been a slot of this very sequence
  noteRepetition(m_elements[position]);
}

void ReferenceSequence::eraseRaw(std::size_t first, std::size_t last, Journal* journal) {
  if (journal != nullptr) journal->reserve(last - first);
  if (last - first == 1) {
    ModelElement taken = std::move(m_elements[first]);
    removeFromFilter(taken);
    m_elements.erase(m_elements.begin() + offset(first));
    ++m_edits;
    if (journal != nullptr) journal->erased(first, std::move(taken));
    return;
  }
  auto const begin = m_elements.begin() + offset(first);
  auto const end = m_elements.begin() + offset(last);
  std::vector<ModelElement> taken(std::make_move_iterator(begin), std::make_move_iterator(end));
  for (ModelElement const& element : taken) removeFromFilter(element);
  m_elements.erase(begin, end);
  ++m_edits;
  if (journal != nullptr) journal->erased(first, std::move(taken));
}

void ReferenceSequence::noteRepetition(ModelElement const& element) noexcept {
  if (m_unique || m_repeats || owner() == nullptr || !isComposite()) return;
  m_repeats = core(*element).basicContainer() == owner() && core(*element).basicContainmentFeature() == property();
}

void ReferenceSequence::addToFilter(ModelElement const& element) noexcept {
  if (m_filter != nullptr && isRealElement(element)) m_filter->add(element->getUuid());
}

void ReferenceSequence::removeFromFilter(ModelElement const& element) noexcept {
  if (m_filter != nullptr && isRealElement(element)) m_filter->remove(element->getUuid());
}

void ReferenceSequence::refillFilter() noexcept {
  if (m_filter == nullptr) return;
  m_filter->clear();
  for (ModelElement const& element : m_elements) addToFilter(element);
}

bool ReferenceSequence::takes(ModelElement const& element) const {
  if (element.isEmpty()) return false;
  checkCompatibleModel(element.impl());
  return !m_unique || !containsElement(element);
}

void ReferenceSequence::insertNew(std::size_t position, ModelElement const& element) {
  ModelElementImpl& added = *element;
  Operation operation(*this, extentOfAdding(added));
  announceAdding(added);
  insertRaw(position, element, recordingJournal());
  if (hasInverse() && !added.isProxy()) inverseAfterAdding(added);
  operation.commit();
}

bool ReferenceSequence::addElement(ModelElement const& element) {
  if (!takes(element)) return false;
  insertNew(m_elements.size(), element);
  return true;
}

std::size_t ReferenceSequence::insertElement(std::size_t position, ModelElement const& element) {
  if (!takes(element)) return element.isEmpty() ? position : findResolving(element);
  insertNew(position, element);
  return position;
}

void ReferenceSequence::basicAdd(ModelElement const& element) {
  Operation operation(*this);
  insertRaw(m_elements.size(), element, recordingJournal());
  operation.commit();
}

bool ReferenceSequence::containsElement(ModelElement const& element) const {
  if (element.isEmpty() || element->isProxy()) return false;
  if (owner() != nullptr && opposite() != nullptr && opposite()->valueFlags() == meta::SINGLE) {
    if (!core(*element).inverseContainsProxyTo(*owner(), *opposite())) return false;
    // It may hold a proxy for the owner still, which the owner has not confirmed.
    meta::Property const far(opposite());
    return element->getPropertyValue(far, ReflectionPrivateTag::NO_PROXY_RESOLVE).getValue<ModelElement>().impl() ==
           owner();
  }
  if (m_filter != nullptr && !m_filter->contains(element->getUuid())) return false;
  return std::find(m_elements.begin(), m_elements.end(), element) != m_elements.end();
}

std::size_t ReferenceSequence::positionOf(ModelElement const& element) const {
  return static_cast<std::size_t>(std::find(m_elements.begin(), m_elements.end(), element) - m_elements.begin());
}

/// The first position of the element, or size(); a proxy on the way that resolves to it counts as it.
std::size_t ReferenceSequence::findResolving(ModelElement const& element) {
  ModelElement const held = heldOwner();
  for (std::size_t i = 0; i < m_elements.size(); ++i) {
    if (resolveAt(i) == element) return i;
  }
  return m_elements.size();
}

bool ReferenceSequence::removeElement(ModelElement const& element) {
  std::size_t const position = findResolving(element);
  if (position == m_elements.size()) return false;
  eraseAt(position);
  return true;
}

void ReferenceSequence::basicRemove(ModelElement const& element) {
  if (element && core(*element).isEnding() && owner() != nullptr && opposite() != nullptr) {
    core(*element).leaveLater(*this);
  } else {
    removeNow(element);
  }
}

void ReferenceSequence::basicRemoveAll(std::vector<ModelElement> const& members) {
  constexpr std::size_t FEW = 16;
  if (members.size() <= FEW) {
    for (ModelElement const& member : members) removeNow(member);
    return;
  }
  std::unordered_map<boost::uuids::uuid, ModelElement, boost::hash<boost::uuids::uuid>> leaving;
  for (ModelElement const& member : members) leaving.emplace(member->getUuid(), member);
  auto const leaves = [&](ModelElement const& slot) {
    auto const at = slot.isEmpty() ? leaving.end() : leaving.find(slot->getUuid());
    if (at == leaving.end()) return false;
    if (slot == at->second) return true;
    return slot && slot->isProxy() && core(*at->second).modelIdentity() != core(*owner()).modelIdentity() &&
           peekResolveProxy(slot) == at->second;
  };
  std::vector<ModelElement> staying;
  staying.reserve(m_elements.size());
  for (ModelElement const& element : m_elements) {
    if (!leaves(element)) staying.push_back(element);
  }
  if (staying.size() == m_elements.size()) return;
  Operation operation(*this);
  Journal* const journal = recordingJournal();
  if (journal != nullptr) journal->reserveReset();
  staying.swap(m_elements);
  ++m_edits;
  refillFilter();
  if (journal != nullptr) journal->reset(std::move(staying));
  operation.commit();
}

void ReferenceSequence::removeNow(ModelElement const& element) {
  std::size_t position = positionOf(element);
  if (position == m_elements.size()) position = positionOfProxyFor(element);
  if (position == m_elements.size()) return;
  Operation operation(*this, m_repeats ? Operation::WHOLE : Operation::SINGLE);
  Journal* const journal = recordingJournal();
  // An element that another container takes, or that ends, leaves every slot that it stands in.
  do {
    eraseRaw(position, position + 1, journal);
    if (m_repeats) position = positionOf(element);
  } while (m_repeats && position != m_elements.size());
  operation.commit();
}

void ReferenceSequence::inverseBeforeErasing(std::size_t first, std::size_t last) {
  // An element stays contained until it leaves its last slot.
  std::unordered_set<ModelElementImpl const*> leaving;
  for (std::size_t i = first; m_repeats && i < last; ++i) leaving.insert(m_elements[i].impl());
  for (std::size_t i = 0; m_repeats && i < m_elements.size(); ++i) {
    if (i < first || i >= last) leaving.erase(m_elements[i].impl());
  }
  for (std::size_t i = first; i < last; ++i) {
    ModelElement const element = m_elements[i];
    if (element.isEmpty() || (m_repeats && leaving.count(element.impl()) == 0)) continue;
    if (!element || !element->isProxy() || opposite() == nullptr) {
      inverseBeforeRemoving(*element);
      continue;
    }
    // What a proxy names may stand elsewhere itself, and stay linked; or here, since it has been looked at.
    ModelElement const far = core(*owner())._farEnd(element, *opposite());
    if (far.isEmpty()) continue;
    std::size_t const at = positionOf(far);
    bool const leaves = at == m_elements.size() || (first <= at && at < last);
    if (leaves) inverseBeforeRemoving(*far);
  }
}

std::size_t ReferenceSequence::eraseRange(std::size_t first, std::size_t last) {
  if (first == last) return first;
  Operation operation(*this, extent());
  Journal* const journal = recordingJournal();
  if (hasInverse()) inverseBeforeErasing(first, last);
  eraseRaw(first, last, journal);
  operation.commit();
  return first;
}

void ReferenceSequence::clear() {
  if (m_elements.empty()) return;
  Operation operation(*this, extent());
  modifying();
  if (hasInverse() || m_filter != nullptr) {
    std::vector<ModelElement> const snapshot = m_elements;
    for (ModelElement const& element : snapshot) {
      if (hasInverse() && !element.isEmpty()) inverseBeforeRemoving(*element);
      removeFromFilter(element);
    }
  }
  basicClear();
  operation.commit();
}

void ReferenceSequence::basicClear() {
  if (m_elements.empty()) return;
  Operation operation(*this);
  Journal* const journal = recordingJournal();
  if (journal != nullptr) journal->reserveReset();
  std::vector<ModelElement> former;
  former.swap(m_elements);
  ++m_edits;
  if (journal != nullptr) journal->reset(std::move(former));
  operation.commit();
}

void ReferenceSequence::basicCopyValues(ReferenceCollection const* other) {
  auto const* const source = static_cast<ReferenceSequence const*>(other);
  std::vector<ModelElement> copy = source == nullptr ? std::vector<ModelElement>() : source->m_elements;
  Operation operation(*this);
  Journal* const journal = recordingJournal();
  if (journal != nullptr) journal->reserveReset();
  m_repeats = m_repeats || (source != nullptr && source->m_repeats);
  copy.swap(m_elements);
  ++m_edits;
  if (journal != nullptr) journal->reset(std::move(copy));
  operation.commit();
}

void ReferenceSequence::replaceAt(std::size_t position, ModelElement const& element) {
  if (resolveAt(position) == element || position >= m_elements.size()) return;  // a proxy there may have gone
  if (element.isEmpty()) reportException(messages::CannotAddNonExistentObject());
  if (m_unique && containsElement(element)) reportException(messages::CannotAddSecondObject());
  checkCompatibleModel(element.impl());
  Operation operation(*this, extent());
  Journal* const journal = recordingJournal();
  if (journal != nullptr) journal->reserve();
  if (hasInverse()) inverseBeforeErasing(position, position + 1);
  ModelElement former = std::exchange(m_elements[position], element);
  ++m_edits;
  removeFromFilter(former);
  addToFilter(element);
  noteRepetition(element);
  if (journal != nullptr) journal->replaced(position, std::move(former));
  if (hasInverse() && !element->isProxy()) inverseAfterAdding(*element);
  operation.commit();
}

void ReferenceSequence::ensureAt(std::size_t position, ModelElement const& element) {
  std::size_t const at = insertElement(position, element);
  if (at == position || std::max(at, position) >= m_elements.size()) return;
  Operation operation(*this);
  Journal* const journal = recordingJournal();
  if (journal != nullptr) {
    journal->reserve();
    journal->replaced(at, m_elements[at]);
    journal->reserve();
    journal->replaced(position, m_elements[position]);
  }
  std::swap(m_elements[at], m_elements[position]);
  ++m_edits;
  operation.commit();
}

void ReferenceSequence::useFilter(std::unique_ptr<SaturatedBloomFilter> filter) {
  m_filter = std::move(filter);
  refillFilter();
}

std::vector<ModelElement> ReferenceSequence::getAllValues() {
  ModelElement const held = heldOwner();
  resolveAll();
  std::vector<ModelElement> values;
  values.reserve(m_elements.size());
  // A dead one of another model went with that model.
  auto const isShown = [&](ModelElement const& element) {
    return isRealElement(element) &&
           (element || owner() == nullptr || core(*element).modelIdentity() == core(*owner()).modelIdentity());
  };
  std::copy_if(m_elements.begin(), m_elements.end(), std::back_inserter(values), isShown);
  return values;
}

void ReferenceSequence::forEachReal(ElementVisitor visit) const {
  for (ModelElement const& element : m_elements) {
    if (isRealElement(element)) visit(*element);
  }
}

void ReferenceSequence::genericAdd(ModelElement const& element) {
  if (!element) return;
  requireFitting(element);
  addElement(element);
}

void ReferenceSequence::genericRemove(ModelElement const& element) {
  if (!element) return;
  requireFitting(element);
  removeElement(element);
}

bool ReferenceSequence::genericContains(ModelElement const& element) const {
  return fits(element) && containsElement(element);
}

std::size_t ReferenceSequence::oldSize() const {
  auto const* const kept = static_cast<Journal const*>(journal());
  return kept == nullptr ? m_elements.size() : kept->oldSize();
}

std::unique_ptr<AbstractOwnedCollection> ReferenceSequence::oldContents() const {
  auto copy = makeDetached();
  auto const* const kept = static_cast<Journal const*>(journal());
  copy->m_elements = kept == nullptr ? m_elements : kept->oldContents();
  return copy;
}

std::unique_ptr<AbstractOwnedCollection> ReferenceSequence::copyContents() const {
  auto copy = makeDetached();
  copy->m_elements = m_elements;
  return copy;
}

namespace {

/// The untyped view of a sequence.
class GenericSequence final : public CollectionView<GenericSequenceInterface, ReferenceSequence> {
 public:
  using CollectionView::CollectionView;
  void genericEnsureAt(ModelElement const& element, std::uint32_t index) override {
    if (accepts(element)) collection().ensureAt(index, element);
  }
  ModelElement genericAt(std::uint32_t index) override { return collection().resolveAt(index); }
  void genericInsert(ModelElement const& element, std::uint32_t index) override {
    if (accepts(element)) collection().insertElement(index, element);
  }
  void genericReplace(ModelElement const& element, std::uint32_t index) override {
    if (accepts(element)) collection().replaceAt(index, element);
  }
  void genericRemoveAt(std::uint32_t index) override { collection().eraseAt(index); }
  std::uint32_t genericIndexOf(ModelElement const& element) const override {
    ReferenceSequence const& sequence = collection();
    std::size_t const position = sequence.fits(element) ? sequence.positionOf(element) : sequence.size();
    return position == sequence.size() ? ABSENT : static_cast<std::uint32_t>(position);
  }

 private:
  bool accepts(ModelElement const& element) const {
    if (!element) return false;
    collection().requireFitting(element);
    return true;
  }
};

}  // namespace

std::unique_ptr<GenericCollectionInterface> ReferenceSequence::makeGenericInterface() {
  return std::make_unique<GenericSequence>(*this);
}

}  // namespace plinth
