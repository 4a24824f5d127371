// The root of every collection: it belongs to one property of one element, and changes only inside an Operation.
//
// A collection keeps its undo in a journal: what a transaction did to it, step by step. So a change costs what it does,
// not what the collection holds; the old contents are made from the present ones when somebody asks. Ownership: the
// element owns its collections. A detached one, with no owner, holds old values or serves by itself. Thread rule: the
// model's thread, also for reading: a read may resolve a proxy in place.
#pragma once

#include <algorithm>
#include <memory>

#include "plinth/Step.hpp"
#include "plinth/Undoable.hpp"
#include "plinth/meta/Property.hpp"

namespace plinth {

class AbstractOwnedCollection;

/// The first argument of a collection's constructor: elements make the collections of their properties, and whoever
/// else makes one says by this that no element will know of it.
struct CollectionPrivateTag {
  explicit CollectionPrivateTag() = default;
};

namespace detail {

/// Sees to it that the next `count` push_backs allocate nothing. Amortized O(count).
template <class V>
void makeRoomFor(V& steps, std::size_t count, std::size_t first = 4) {
  if (steps.capacity() - steps.size() >= count) return;
  steps.reserve(std::max(steps.size() + count, steps.empty() ? first : 2 * steps.size()));
}

}  // namespace detail

/// Where the old value of a collection is: in the collection's journal, until somebody asks or the journal has to go.
class TESSEL_EXPORT OldCollection {
 public:
  OldCollection() = default;
  OldCollection(OldCollection const&) = delete;
  OldCollection& operator=(OldCollection const&) = delete;
  ~OldCollection();

  void note(AbstractOwnedCollection& source) noexcept { m_source = &source; }
  /// The old contents as a detached collection that lives as long as this. Linear in the collection at the first call.
  AbstractOwnedCollection& contents();
  AbstractOwnedCollection* source() const noexcept { return m_source; }
  void seal() noexcept;
  void moveFrom(OldCollection& other) noexcept;

 private:
  friend class AbstractOwnedCollection;
  friend class CollectionJournal;
  AbstractOwnedCollection* m_source = nullptr;
  std::unique_ptr<AbstractOwnedCollection> m_contents;
};

/// A collection's undo. Steps are added after the change, into room that was made before it.
class TESSEL_EXPORT CollectionJournal : public Undoable {
 public:
  ~CollectionJournal() override;
  void forget() noexcept override;

 protected:
  virtual void clear() noexcept = 0;

 private:
  friend class OldCollection;
  friend class AbstractOwnedCollection;
  OldCollection* m_sealed = nullptr;  ///< a published record that still needs the steps
};

class TESSEL_EXPORT AbstractOwnedCollection {
 public:
  AbstractOwnedCollection(AbstractOwnedCollection const&) = delete;
  AbstractOwnedCollection& operator=(AbstractOwnedCollection const&) = delete;
  virtual ~AbstractOwnedCollection();

  ModelElementImpl* owner() const noexcept { return m_owner; }
  meta::Property getCollectionProperty() const noexcept { return meta::Property(m_property); }
  meta::PropertyImpl* property() const noexcept { return m_property; }
  meta::PropertyImpl* opposite() const noexcept { return m_opposite; }
  virtual bool empty() const = 0;
  /// How many members there were when the present outermost transaction began.
  virtual std::size_t oldSize() const = 0;
  virtual std::size_t rawSize() const = 0;
  /// Whether the present outermost transaction has done anything to it, also where it is back at what it was; an
  /// announced change that failed did nothing.
  bool isChanged() const noexcept { return m_journal != nullptr && m_journal->steps() > 0; }
  /// A detached collection with the contents that this one had when the present outermost transaction began.
  virtual std::unique_ptr<AbstractOwnedCollection> oldContents() const = 0;
  /// A detached collection with the present contents.
  virtual std::unique_ptr<AbstractOwnedCollection> copyContents() const = 0;

  /// One change of a collection: all or nothing.
  class Operation;

 protected:
  AbstractOwnedCollection(ModelElementImpl* owner, meta::PropertyImpl* property, meta::PropertyImpl* opposite) noexcept
      : m_owner(owner), m_property(property), m_opposite(opposite) {}

  /// Announces a change; call before it, inside an Operation. Gives the journal to write to, or null where no undo is
  /// needed. Raises what notifyModifying raises.
  CollectionJournal* modifying() { return isRecording() ? m_journal.get() : beginRecording(); }
  virtual std::unique_ptr<CollectionJournal> makeJournal() = 0;
  CollectionJournal* journal() const noexcept { return m_journal.get(); }

 private:
  friend class OldCollection;
  /// Whether the present level has announced a change already, so that a further one has only its step to add.
  bool isRecording() const noexcept {
    return m_journal != nullptr && m_journal->m_sealed == nullptr && !internal::core(*m_owner).needsNoOldValues() &&
           m_journal->isTouchedAt(m_owner->model().level());
  }
  CollectionJournal* beginRecording();

  ModelElementImpl* m_owner;
  meta::PropertyImpl* m_property;
  meta::PropertyImpl* m_opposite;
  std::unique_ptr<CollectionJournal> m_journal;
};

/// A step of the owner's model; a detached collection needs none. Raises CannotModifyDestroyedElement for a dead owner.
class AbstractOwnedCollection::Operation : public Step {
 public:
  explicit Operation(AbstractOwnedCollection& collection, Extent extent = SINGLE)
      : Step(collection.m_owner == nullptr ? nullptr : internal::core(*collection.m_owner).changingModel(), extent) {}
};

}  // namespace plinth
