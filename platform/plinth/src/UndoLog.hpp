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

#include "plinth/Model.hpp"
#include "plinth/Undoable.hpp"

namespace plinth {

class UndoLog {
 public:
  explicit UndoLog(internal::ModelState& model) noexcept;
  UndoLog(UndoLog const&) = delete;
  UndoLog& operator=(UndoLog const&) = delete;

  std::uint32_t level() const noexcept { return m_step->level; }
  /// What tells the transaction at this open level from all others of the model.
  unsigned long serialAt(std::uint32_t level) const noexcept { return m_levels[level - 1].serial; }
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
  static void dropRecord(internal::ElementCore& element) noexcept;
  /// Asks for the memory that the entries at these two positions will need, if there are such and they are records:
  /// first for the element, and when that has come, for the record that it names.
  static void prefetchRecord(std::vector<Entry> const& entries, std::size_t next, std::size_t afterNext) noexcept;

  /// To be called whenever m_levels has changed.
  void noteLevel() noexcept { m_step->level = static_cast<std::uint32_t>(m_levels.size()); }

  internal::ModelState* m_model;
  internal::StepState* m_step;
  std::vector<Entry> m_entries;
  std::vector<Level> m_levels;
  unsigned long m_lastSerial = 0;
};

}  // namespace plinth
