// What a model's open transactions have done, in order, so that any of them can be taken back exactly.
//
// The log holds one short entry for each record made, journal touched, element created and element destroyed. A
// transaction level is a mark into it: rolling back replays the entries behind the mark from the last to the first, and
// committing an inner level hands its entries to the enclosing one. Whatever an entry needs for its undo is allocated
// before the change that it describes, so that taking back can't fail. Ownership: change records and destroyed elements
// belong to the log while it holds an entry for them. Thread rule: the model's thread.
#pragma once

#include <cstdint>
#include <vector>

#include "plinth/ModelElement.hpp"

namespace plinth {

/// Empties what a transaction has written down, and keeps its room for the next one unless it is much.
template <class T>
void forgetSteps(std::vector<T>& steps) noexcept {
  constexpr std::size_t KEPT_BYTES = 64 * 1024;
  steps.clear();
  if (steps.capacity() * sizeof(T) > KEPT_BYTES) std::vector<T>().swap(steps);
}

/// A thing that keeps its own undo, such as a collection's journal. The log knows how far to take it back.
class TESSEL_EXPORT Undoable {
 public:
  virtual ~Undoable();
  /// Takes back all steps beyond the first `mark`.
  virtual void undoTo(std::size_t mark) noexcept = 0;
  virtual std::size_t steps() const noexcept = 0;
  /// The outermost transaction has ended: what is kept can go.
  virtual void forget() noexcept = 0;

 protected:
  /// The steps before this one are an enclosing level's, or may be: they stand as they are.
  std::size_t firstOwnStep() const noexcept { return m_firstOwnStep; }

 private:
  friend class UndoLog;
  std::uint32_t m_touchedLevel = 0;
  std::uint32_t m_firstOwnStep = 0;
};

class UndoLog {
 public:
  explicit UndoLog(ModelImpl& model) noexcept : m_model(&model) {}
  UndoLog(UndoLog const&) = delete;
  UndoLog& operator=(UndoLog const&) = delete;

  std::uint32_t level() const noexcept { return static_cast<std::uint32_t>(m_levels.size()); }
  /// What tells the transaction at this open level from all others of the model.
  unsigned long serialAt(std::uint32_t level) const noexcept { return m_levels[level - 1].serial; }
  /// Whether changes need no undo at present: they are undo themselves, or a store that nothing takes back.
  bool isOff() const noexcept { return m_off; }
  void setOff(bool off) noexcept { m_off = off; }
  std::size_t size() const noexcept { return m_entries.size(); }

  /// Makes room for one more entry; call before the change. Raises std::bad_alloc.
  void reserve() {
    if (m_entries.size() == m_entries.capacity()) grow();
  }
  void recordMade(ModelElementImpl& element) noexcept { m_entries.emplace_back(&element, Kind::RECORD); }
  void created(ModelElementImpl& element) noexcept { m_entries.emplace_back(&element, Kind::CREATED); }
  void destroyed(ModelElementImpl& element) noexcept { m_entries.emplace_back(&element, Kind::DESTROYED); }
  /// Notes that `journal` changes at the present level; an entry is written the first time only. Raises std::bad_alloc.
  void touch(Undoable& journal);
  /// Whether it has been touched at the present level, so that another touch would do nothing.
  bool isTouched(Undoable const& journal) const noexcept {
    return journal.m_touchedLevel == level() && journal.m_touchedLevel != 0;
  }

  void begin();
  /// Ends the innermost level, which is not the outermost: its entries go to the enclosing one.
  void commitInner() noexcept;
  /// Ends the outermost level. The records have been given away or are dropped here, destroyed elements let go.
  void commitOutermost() noexcept;
  /// Takes back the innermost level and ends it.
  void rollBack() noexcept;

  template <class Visitor>
  void forEachRecord(Visitor visitor) const {
    for (Entry const& entry : m_entries) {
      if (entry.kind == Kind::RECORD) visitor(*static_cast<ModelElementImpl*>(entry.object));
    }
  }
  template <class OnCreated, class OnDestroyed>
  void forEachLife(OnCreated onCreated, OnDestroyed onDestroyed) const {
    for (Entry const& entry : m_entries) {
      if (entry.kind == Kind::CREATED) onCreated(*static_cast<ModelElementImpl*>(entry.object));
      if (entry.kind == Kind::DESTROYED) onDestroyed(*static_cast<ModelElementImpl*>(entry.object));
    }
  }

 private:
  enum class Kind : std::uint32_t { NOTHING, RECORD, JOURNAL, CREATED, DESTROYED };
  // With constructors, both are written where they are to stand; put together elsewhere and then copied, they cost a
  // wait for what has just been stored.
  struct Entry {
    explicit Entry(void* changed = nullptr, Kind how = Kind::NOTHING, std::uint32_t steps = 0) noexcept
        : object(changed), kind(how), mark(steps) {}
    void* object;
    Kind kind;
    std::uint32_t mark;
  };

  struct Level {
    Level(std::size_t entries, unsigned long number) noexcept : mark(entries), serial(number) {}
    std::size_t mark;  ///< the number of entries at its begin
    unsigned long serial;
  };

  void grow();
  void handRecordOver(Entry& entry, std::uint32_t level) noexcept;
  void undo(Entry const& entry) noexcept;
  /// Lets go of the elements that the entries from `first` on are about, if they are of that kind.
  static void bury(std::vector<Entry> const& entries, std::size_t first, Kind kind) noexcept;
  static void dropRecord(ModelElementImpl& element) noexcept;
  /// Asks for the memory that the entries at these two positions will need, if there are such and they are records:
  /// first for the element, and when that has come, for the record that it names.
  static void prefetchRecord(std::vector<Entry> const& entries, std::size_t next, std::size_t afterNext) noexcept;

  ModelImpl* m_model;
  std::vector<Entry> m_entries;
  std::vector<Level> m_levels;
  unsigned long m_lastSerial = 0;
  bool m_off = false;
};

}  // namespace plinth
