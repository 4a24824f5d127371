#include "UndoLog.hpp"

#include <algorithm>

#include "ModelState.hpp"
#include "Prefetch.hpp"
#include "RecordAccess.hpp"
#include "plinth/FailurePoint.hpp"

namespace plinth {

using internal::core;
using internal::RecordAccess;

Undoable::~Undoable() = default;

UndoLog::UndoLog(internal::ModelState& model) noexcept : m_model(&model), m_step(&internal::stepOf(model)) {}

void UndoLog::grow() {
  failurePoint("undo-log-grow");
  m_entries.reserve(std::max<std::size_t>(64, 2 * m_entries.capacity()));
}

void UndoLog::touch(Undoable& journal) {
  if (journal.m_touchedLevel == level()) return;
  reserve();
  journal.m_firstOwnStep = static_cast<std::uint32_t>(journal.steps());
  m_entries.emplace_back(&journal, Kind::JOURNAL, journal.m_firstOwnStep);
  journal.m_touchedLevel = level();
}

void UndoLog::begin() {
  m_levels.emplace_back(m_entries.size(), m_lastSerial + 1);
  ++m_lastSerial;
  noteLevel();
}

void UndoLog::commitInner() noexcept {
  std::size_t const mark = m_levels.back().mark;
  m_levels.pop_back();
  noteLevel();
  auto const outer = level();
  for (std::size_t i = mark; i < m_entries.size(); ++i) {
    Entry& entry = m_entries[i];
    if (entry.kind == Kind::RECORD) {
      handRecordOver(entry, outer);
    } else if (entry.kind == Kind::JOURNAL) {
      static_cast<Undoable*>(entry.object)->m_touchedLevel = outer;
    } else if (entry.kind == Kind::CREATED) {
      core(*static_cast<ModelElementImpl*>(entry.object)).m_createdLevel = static_cast<std::uint16_t>(outer);
    }
  }
}

void UndoLog::handRecordOver(Entry& entry, std::uint32_t level) noexcept {
  internal::ElementCore& element = core(*static_cast<ModelElementImpl*>(entry.object));
  Storage* const record = element.m_record;
  Storage* const outer = RecordAccess::outer(*record);
  if (element.m_createdLevel == level) {  // goes with the element when that level is taken back
    entry.kind = Kind::NOTHING;
    element.m_record = outer;
    delete record;
  } else if (outer == nullptr || RecordAccess::level(*outer) < level) {
    RecordAccess::level(*record) = level;
  } else {
    RecordAccess::merge(*record, *outer);
    entry.kind = Kind::NOTHING;
    element.m_record = outer;
    delete record;
  }
}

void UndoLog::dropRecord(internal::ElementCore& element) noexcept {
  Storage* const record = element.m_record;
  if (record == nullptr) return;
  element.m_record = RecordAccess::outer(*record);
  delete record;
}

void UndoLog::prefetchRecord(std::vector<Entry> const& entries, std::size_t next, std::size_t afterNext) noexcept {
  auto const elementAt = [&](std::size_t position) -> internal::ElementCore const* {
    bool const isRecord = position < entries.size() && entries[position].kind == Kind::RECORD;
    return isRecord ? &core(*static_cast<ModelElementImpl*>(entries[position].object)) : nullptr;
  };
  if (auto const* const element = elementAt(afterNext)) detail::prefetch(element, detail::ELEMENT_BYTES);
  if (auto const* const element = elementAt(next)) detail::prefetch(element->m_record, sizeof(Storage));
}

void UndoLog::commitOutermost() noexcept {
  m_levels.pop_back();
  noteLevel();
  std::vector<Entry> entries;  // burying runs destructors, which must find the log empty
  entries.swap(m_entries);
  bool anyDestroyed = false;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    Entry const& entry = entries[i];
    prefetchRecord(entries, i + 4, i + 8);
    if (entry.kind == Kind::RECORD) {
      dropRecord(core(*static_cast<ModelElementImpl*>(entry.object)));
    } else if (entry.kind == Kind::JOURNAL) {
      auto& journal = *static_cast<Undoable*>(entry.object);
      journal.m_touchedLevel = 0;
      journal.forget();
    } else if (entry.kind == Kind::CREATED) {
      core(*static_cast<ModelElementImpl*>(entry.object)).m_createdLevel = internal::ElementCore::NO_LEVEL;
    } else if (entry.kind == Kind::DESTROYED) {
      anyDestroyed = true;
    }
  }
  if (anyDestroyed) bury(entries, 0, Kind::DESTROYED);
  forgetSteps(entries);
  if (m_entries.empty()) m_entries.swap(entries);
  m_model->pool.trim();
}

void UndoLog::rollBack() noexcept {
  std::size_t const mark = m_levels.back().mark;
  m_step->isLogOff = true;
  for (std::size_t i = m_entries.size(); i > mark; --i) {
    prefetchRecord(m_entries, i - 5, i - 9);  // wraps round to no position at all
    undo(m_entries[i - 1]);
  }
  m_levels.pop_back();
  noteLevel();
  bury(m_entries, mark, Kind::CREATED);
  m_entries.resize(mark);
  if (mark == 0) {
    forgetSteps(m_entries);
    m_model->pool.trim();
  }
  m_step->isLogOff = false;
}

void UndoLog::undo(Entry const& entry) noexcept {
  switch (entry.kind) {
    case Kind::RECORD: {
      internal::ElementCore& element = core(*static_cast<ModelElementImpl*>(entry.object));
      element.copyStateFromStorage(element.m_record);
      dropRecord(element);
      break;
    }
    case Kind::JOURNAL: {
      auto& journal = *static_cast<Undoable*>(entry.object);
      journal.undoTo(entry.mark);
      journal.m_touchedLevel = 0;  // an enclosing level that touched it writes a second entry, which does no harm
      if (entry.mark == 0) journal.forget();
      break;
    }
    case Kind::CREATED: {
      internal::ElementCore& element = core(*static_cast<ModelElementImpl*>(entry.object));
      if (element.isLive()) m_model->elements.remove(element);
      element.m_live = 0;
      element.m_state |= internal::ElementCore::DESTROYED;
      break;
    }
    case Kind::DESTROYED: {
      internal::ElementCore& element = core(*static_cast<ModelElementImpl*>(entry.object));
      m_model->elements.add(element);
      element.m_live = 1;
      element.m_state &= static_cast<std::uint8_t>(~internal::ElementCore::DESTROYED);
      break;
    }
    case Kind::NOTHING:
      break;
  }
}

void UndoLog::bury(std::vector<Entry> const& entries, std::size_t first, Kind kind) noexcept {
  // Each lets go of what it refers to before it goes itself. One that still has links is held by the log, so that at
  // most an element without links ends here on its own: nothing recurses.
  constexpr std::size_t AHEAD = 6;
  for (std::size_t i = first; i < entries.size(); ++i) {
    if (i + AHEAD < entries.size() && entries[i + AHEAD].kind == kind) {
      detail::prefetch(entries[i + AHEAD].object, detail::ELEMENT_BYTES);
    }
    if (entries[i].kind == kind) core(*static_cast<ModelElementImpl*>(entries[i].object)).bury();
  }
}

}  // namespace plinth
