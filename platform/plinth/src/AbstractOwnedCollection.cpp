#include "plinth/AbstractOwnedCollection.hpp"

#include "ModelState.hpp"
#include "plinth/FailurePoint.hpp"

namespace plinth {

OldCollection::~OldCollection() {
  if (m_source != nullptr && m_source->m_journal != nullptr && m_source->m_journal->m_sealed == this) {
    m_source->m_journal->m_sealed = nullptr;
    m_source->m_journal->clear();
  }
}

AbstractOwnedCollection& OldCollection::contents() {
  if (m_contents == nullptr) m_contents = m_source->oldContents();
  return *m_contents;
}

void OldCollection::seal() noexcept {
  if (m_source != nullptr && m_source->m_journal != nullptr) m_source->m_journal->m_sealed = this;
}

void OldCollection::moveFrom(OldCollection& other) noexcept {
  m_source = std::exchange(other.m_source, nullptr);
  m_contents = std::move(other.m_contents);
}

CollectionJournal::~CollectionJournal() {
  if (m_sealed != nullptr) m_sealed->m_source = nullptr;
}

void CollectionJournal::forget() noexcept {
  if (m_sealed == nullptr) clear();
}

AbstractOwnedCollection::~AbstractOwnedCollection() = default;

CollectionJournal* AbstractOwnedCollection::beginRecording() {
  if (m_owner == nullptr) return nullptr;
  if (internal::core(*m_owner).needsNoOldValues()) {
    // Steps that an inner transaction handed over don't fit what comes now. The owner ends with the level that created
    // it, so nobody needs them.
    if (m_journal != nullptr) m_journal->forget();
    return nullptr;
  }
  failurePoint("collection-modifying");
  internal::core(*m_owner).notifyJournaling(static_cast<unsigned long>(m_property->index()));
  if (m_journal == nullptr) m_journal = makeJournal();
  if (OldCollection* const sealed = m_journal->m_sealed) {  // a listener changes what it is being told about
    sealed->contents();
    m_journal->m_sealed = nullptr;
    sealed->m_source = nullptr;
    m_journal->clear();
  }
  internal::stateOf(m_owner->model()).log.touch(*m_journal);
  return m_journal.get();
}

}  // namespace plinth
