#include "plinth/UndoLog.hpp"

#include <algorithm>

#include "plinth/Changes.hpp"
#include "plinth/FailurePoint.hpp"
#include "plinth/Model.hpp"

namespace plinth {

Undoable::~Undoable() = default;

void UndoLog::grow() {
  failurePoint("undo-log-grow");
  m_entries.reserve(std::max<std::size_t>(64, 2 * m_entries.capacity()));
  m_gone.reserve(m_entries.capacity());
}

void UndoLog::touch(Undoable& journal) {
  if (journal.m_touchedLevel == level()) return;
  reserve();
  m_entries.push_back({&journal, Kind::JOURNAL, static_cast<std::uint32_t>(journal.steps())});
  journal.m_touchedLevel = level();
}

void UndoLog::begin() {
  m_levels.push_back(m_entries.size());
  ++m_level;
}

void UndoLog::commitInner() noexcept {
  std::size_t const mark = m_levels.back();
  m_levels.pop_back();
  auto const outer = --m_level;
  for (std::size_t i = mark; i < m_entries.size(); ++i) {
    Entry& entry = m_entries[i];
    if (entry.kind == Kind::RECORD) {
      handRecordOver(entry, outer);
    } else if (entry.kind == Kind::JOURNAL) {
      static_cast<Undoable*>(entry.object)->m_touchedLevel = outer;
    } else if (entry.kind == Kind::CREATED) {
      static_cast<ModelElementImpl*>(entry.object)->m_createdLevel = static_cast<std::uint16_t>(outer);
    }
  }
}

void UndoLog::handRecordOver(Entry& entry, std::uint32_t level) noexcept {
  auto& element = *static_cast<ModelElementImpl*>(entry.object);
  Storage* const record = element.m_record;
  Storage* const outer = record->m_outer;
  if (element.m_createdLevel == level) {  // goes with the element when that level is taken back
    entry.kind = Kind::NOTHING;
    element.m_record = outer;
    delete record;
  } else if (outer == nullptr || outer->m_level < level) {
    record->m_level = level;
  } else {
    record->mergeInto(*outer);
    entry.kind = Kind::NOTHING;
    element.m_record = outer;
    delete record;
  }
}

void UndoLog::dropRecord(ModelElementImpl& element) noexcept {
  Storage* const record = element.m_record;
  if (record == nullptr) return;
  element.m_record = record->m_outer;
  delete record;
}

void UndoLog::commitOutermost() noexcept {
  m_levels.pop_back();
  --m_level;
  std::vector<Entry> entries;  // burying runs destructors, which must find the log empty
  entries.swap(m_entries);
  for (Entry const& entry : entries) {
    if (entry.kind == Kind::RECORD) {
      dropRecord(*static_cast<ModelElementImpl*>(entry.object));
    } else if (entry.kind == Kind::JOURNAL) {
      auto& journal = *static_cast<Undoable*>(entry.object);
      journal.m_touchedLevel = 0;
      journal.forget();
    } else if (entry.kind == Kind::CREATED) {
      static_cast<ModelElementImpl*>(entry.object)->m_createdLevel = ElementImpl::NO_LEVEL;
    } else if (entry.kind == Kind::DESTROYED) {
      m_gone.push_back(static_cast<ModelElementImpl*>(entry.object));
    }
  }
  if (!m_gone.empty()) bury(m_gone);
  entries.clear();
  if (m_entries.empty()) m_entries.swap(entries);
}

void UndoLog::rollBack() noexcept {
  std::size_t const mark = m_levels.back();
  m_replaying = true;
  while (m_entries.size() > mark) {
    Entry const entry = m_entries.back();
    m_entries.pop_back();
    undo(entry, m_gone);
  }
  m_levels.pop_back();
  --m_level;
  if (!m_gone.empty()) bury(m_gone);
  m_replaying = false;
}

void UndoLog::undo(Entry const& entry, std::vector<ModelElementImpl*>& gone) noexcept {
  switch (entry.kind) {
    case Kind::RECORD: {
      auto& element = *static_cast<ModelElementImpl*>(entry.object);
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
      auto& element = *static_cast<ModelElementImpl*>(entry.object);
      if (element.isLive()) m_model->m_directory.remove(element);
      element.m_live = 0;
      element.m_state |= ElementImpl::DESTROYED;
      gone.push_back(&element);
      break;
    }
    case Kind::DESTROYED: {
      auto& element = *static_cast<ModelElementImpl*>(entry.object);
      m_model->m_directory.add(element);
      element.m_live = 1;
      element.m_state &= static_cast<std::uint8_t>(~ElementImpl::DESTROYED);
      break;
    }
    case Kind::NOTHING:
      break;
  }
}

void UndoLog::bury(std::vector<ModelElementImpl*>& elements) noexcept {
  // All links first, then the objects: each is still held while the others let go of it, so that nothing recurses.
  std::vector<ModelElementImpl*> dead;
  dead.swap(elements);
  for (ModelElementImpl* element : dead) {
    element->m_state &= static_cast<std::uint8_t>(~ElementImpl::ANNOUNCED);
    element->invalidate();
    element->basicDisassociateAll();
    element->m_container = nullptr;
    element->m_containmentProperty = nullptr;
  }
  for (ModelElementImpl* element : dead) element->removeRef();
  dead.clear();
  if (elements.empty()) elements.swap(dead);
}

}  // namespace plinth
