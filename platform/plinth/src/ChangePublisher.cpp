#include "ChangePublisher.hpp"

#include <algorithm>

#include "plinth/FailurePoint.hpp"

namespace plinth {

void ChangePublisher::Pending::clear() noexcept {
  m_created.clear();
  m_changed.clear();
  m_destroyed.clear();
  for (Storage* record : records) delete record;
  records.clear();
}

ChangePublisher::~ChangePublisher() {
  for (auto const& pending : m_queue) pending->clear();
}

ListenerRegistration ChangePublisher::add(ChangeListener listener) {
  auto const entry = std::make_shared<Listener>(Listener{std::move(listener), m_serial});
  std::weak_ptr<Listeners> const listeners = m_listeners;
  ListenerRegistration registration(entry.get(), [entry, listeners](void*) {
    if (auto const owner = listeners.lock()) {
      owner->remove(*entry);
    } else {
      ChangeListener const function = std::exchange(entry->function, nullptr);
    }
  });
  m_listeners->all.push_back(entry);
  entry->isRegistered = true;
  ++m_listeners->live;
  return registration;
}

void ChangePublisher::Listeners::remove(Listener& listener) noexcept {
  if (!listener.isRegistered) return;
  listener.isRegistered = false;
  --live;
  if (!isTelling) prune();
}

void ChangePublisher::Listeners::prune() noexcept {
  while (true) {
    auto const gone =
        std::find_if(all.begin(), all.end(), [](auto const& listener) { return !listener->isRegistered; });
    if (gone == all.end()) return;
    std::shared_ptr<Listener> const entry = std::move(*gone);
    all.erase(gone);
    // Last, for what it has captured may end the model or let go of other registrations. A registration that somebody
    // still watches keeps the entry, so that its end would not end the function.
    ChangeListener const function = std::exchange(entry->function, nullptr);
  }
}

std::unique_ptr<ChangePublisher::Pending> ChangePublisher::freshPending() {
  return m_spare != nullptr ? std::move(m_spare) : std::make_unique<Pending>();
}

void ChangePublisher::collect(UndoLog& log) {
  if (m_gathered == nullptr) m_gathered = freshPending();
  try {
    gather(log);
    m_queue.push_back(nullptr);  // room for it; filled when it is taken over
  } catch (...) {
    m_gathered->clear();  // its handles would keep in memory what is taken back now
    throw;
  }
}

void ChangePublisher::discard() noexcept {
  m_queue.pop_back();
  m_gathered->clear();
}

void ChangePublisher::gather(UndoLog& log) {
  Pending& changes = *m_gathered;
  std::size_t records = 0;
  log.forEachRecord([&](ModelElementImpl& element) {
    ++records;
    Storage* const record = internal::core(element).m_record;
    // The element was there before; if it is still, it may have changed.
    if (!element.isLive() || record == nullptr) return;
    record->revertUnchanged(&element);
    if (record->bits() != 0) changes.m_changed.push_back(record);
  });
  m_gathered->records.reserve(records);
  log.forEachLife(
      [&](ModelElementImpl& element) {
        if (element.isLive()) changes.m_created.emplace_back(&element);
      },
      [&](ModelElementImpl& element) {
        if (!internal::core(element).isProvisional()) changes.m_destroyed.emplace_back(&element);
      });
  failurePoint("collect-changes");
}

void ChangePublisher::takeOver(UndoLog& log) noexcept {
  log.forEachRecord([&](ModelElementImpl& element) {
    Storage* const record = std::exchange(internal::core(element).m_record, nullptr);
    if (record == nullptr) return;
    if (element.isLive()) {
      m_gathered->records.push_back(record);
      record->sealOldValues();
    } else {
      delete record;  // a destroyed element is told as that; its journals must not outlive the log
    }
  });
  m_gathered->serial = ++m_serial;
  m_queue.back() = std::move(m_gathered);
}

void ChangePublisher::publish() noexcept {
  if (m_publishing) return;
  m_publishing = true;
  while (!m_queue.empty()) {
    std::unique_ptr<Pending> pending = std::move(m_queue.front());
    m_queue.pop_front();
    if (!pending->empty()) tell(*pending);
    pending->clear();
    m_spare = std::move(pending);
  }
  m_publishing = false;
}

void ChangePublisher::tell(Pending const& pending) noexcept {
  std::shared_ptr<Listeners> const listeners = m_listeners;
  listeners->isTelling = true;
  // A function may add listeners and remove any, itself included: what is removed stays in the list until the end.
  for (std::size_t i = 0; i < listeners->all.size(); ++i) {
    Listener& listener = *listeners->all[i];
    if (!listener.isRegistered || listener.since >= pending.serial) continue;
    try {
      listener.function(pending);
    } catch (...) {
      noteError(std::current_exception());
    }
  }
  listeners->isTelling = false;
  if (listeners->live < listeners->all.size()) listeners->prune();
}

void ChangePublisher::noteError(std::exception_ptr error) noexcept {
  ++m_errorCount;
  if (m_errors.size() == ModelImpl::KEPT_LISTENER_ERRORS) m_errors.erase(m_errors.begin());
  try {
    m_errors.push_back(std::move(error));
  } catch (std::bad_alloc const&) {
    // There is no memory for the list: the listener's error is only counted, the commit stands.
  }
}

std::vector<std::exception_ptr> ChangePublisher::takeErrors() {
  m_errorCount = 0;
  return std::exchange(m_errors, {});
}

}  // namespace plinth
