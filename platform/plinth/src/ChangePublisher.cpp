#include "ChangePublisher.hpp"

#include <algorithm>

#include "plinth/FailurePoint.hpp"

namespace plinth {

void ChangePublisher::Pending::clear() noexcept {
  changes.m_created.clear();
  changes.m_changed.clear();
  changes.m_destroyed.clear();
  for (Storage* record : records) delete record;
  records.clear();
}

ChangePublisher::~ChangePublisher() {
  for (auto const& pending : m_queue) pending->clear();
}

ListenerRegistration ChangePublisher::add(ChangeListener listener) {
  auto entry = std::make_shared<Listener>(Listener{std::move(listener)});
  m_listeners->all.push_back(entry);
  ++m_listeners->live;
  std::weak_ptr<Listeners> const listeners = m_listeners;
  return ListenerRegistration(entry.get(), [entry, listeners](void*) {
    entry->registered = false;  // the function itself stays: it may be the one that is running
    if (auto const owner = listeners.lock()) --owner->live;
  });
}

std::unique_ptr<ChangePublisher::Pending> ChangePublisher::freshPending() {
  return m_spare != nullptr ? std::move(m_spare) : std::make_unique<Pending>();
}

void ChangePublisher::collect(UndoLog& log) {
  failurePoint("collect-changes");
  if (m_gathered == nullptr) m_gathered = freshPending();
  ChangeSet& changes = m_gathered->changes;
  changes.m_created.clear();
  changes.m_changed.clear();
  changes.m_destroyed.clear();
  std::size_t records = 0;
  log.forEachRecord([&](ModelElementImpl& element) {
    ++records;
    // The element was there before; if it is still, it may have changed.
    if (!element.isLive() || element.m_record == nullptr) return;
    element.m_record->revertUnchanged(&element);
    if (element.m_record->bits() != 0) changes.m_changed.push_back(element.m_record);
  });
  m_gathered->records.reserve(records);
  log.forEachLife(
      [&](ModelElementImpl& element) {
        if (element.isLive()) changes.m_created.emplace_back(&element);
      },
      [&](ModelElementImpl& element) {
        if (element.m_createdLevel == ModelElementImpl::NO_LEVEL) changes.m_destroyed.emplace_back(&element);
      });
  m_queue.push_back(nullptr);  // room for it; filled when it is taken over
}

void ChangePublisher::takeOver(UndoLog& log) noexcept {
  log.forEachRecord([&](ModelElementImpl& element) {
    if (element.m_record == nullptr) return;
    Storage* const record = std::exchange(element.m_record, nullptr);
    if (element.isLive()) {
      m_gathered->records.push_back(record);
      record->sealOldValues();
    } else {
      delete record;  // a destroyed element is told as that; its journals must not outlive the log
    }
  });
  m_queue.back() = std::move(m_gathered);
}

void ChangePublisher::publish() noexcept {
  if (m_publishing) return;
  m_publishing = true;
  while (!m_queue.empty()) {
    std::unique_ptr<Pending> pending = std::move(m_queue.front());
    m_queue.pop_front();
    if (!pending->changes.empty()) tell(pending->changes);
    pending->clear();
    m_spare = std::move(pending);
  }
  m_publishing = false;
}

void ChangePublisher::tell(ChangeSet const& changes) noexcept {
  // Listeners added while these are told wait for the next commit; ones removed are not told any more.
  auto& all = m_listeners->all;
  std::size_t const count = all.size();
  for (std::size_t i = 0; i < count; ++i) {
    std::shared_ptr<Listener> const listener = all[i];
    if (!listener->registered) continue;
    try {
      listener->function(changes);
    } catch (...) {
      try {
        m_errors.push_back(std::current_exception());
      } catch (std::bad_alloc const&) {
        // The error list is full for want of memory: the listener's error is lost, the commit stands.
      }
    }
  }
  all.erase(std::remove_if(all.begin(), all.end(), [](auto const& listener) { return !listener->registered; }),
            all.end());
}

std::vector<std::exception_ptr> ChangePublisher::takeErrors() { return std::exchange(m_errors, {}); }

}  // namespace plinth
