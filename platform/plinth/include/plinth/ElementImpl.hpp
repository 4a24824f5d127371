// The reference-counted root of every implementation object: identity, count, live flag and the model it belongs to.
// The first cache line of each element: what a setter looks at before it changes anything stands here.
// Ownership: an object lives until its count reaches zero. A new object starts with a count of one, the construction
// hold, which the first handle adopts: handles made while its constructor runs can't delete it. Thread rule: the count
// is atomic, everything else belongs to the model's thread.
#pragma once

#include <atomic>
#include <boost/uuid/uuid.hpp>
#include <cstdint>

#include "groundwork/Counting.hpp"
#include "groundwork/export.hpp"
#include "plinth/ModelFwd.hpp"

namespace plinth {

class AbstractOwnedCollection;

class TESSEL_EXPORT ElementImpl {
 public:
  /// Stands in the count while the object is deleted, so that a field's release can't start a second deletion.
  static constexpr std::uint32_t REFCOUNT_DELETING = 0x80000000U;

  ElementImpl(ElementImpl const&) = delete;
  ElementImpl& operator=(ElementImpl const&) = delete;
  virtual ~ElementImpl();

  boost::uuids::uuid const& getUuid() const noexcept { return m_uuid; }
  bool isLive() const noexcept { return m_live != 0; }
  /// The model this element belongs to, or belonged to; compare only, once the element is dead.
  void const* modelIdentity() const noexcept { return m_model; }
  std::uint32_t refCount() const noexcept { return m_refCount.load(std::memory_order_relaxed); }

  void addRef() const noexcept { groundwork::addTo(m_refCount, std::uint32_t{1}); }
  /// Takes a reference unless the last one has gone. For whoever holds a pointer that is no reference.
  bool tryAddRef() const noexcept;
  /// Gives one reference back; deletes the object when it was the last.
  virtual void removeRef() noexcept;

  /// A fresh random UUID. Safe from any thread.
  static boost::uuids::uuid generateNewUuid();

  /// When set, called once for each collection of an element whose life ends (see `invalidate`).
  static void (*m_callback)(ElementImpl* element, AbstractOwnedCollection* collection);

 protected:
  ElementImpl(ModelImpl* model, boost::uuids::uuid const& uuid) noexcept : m_uuid(uuid), m_model(model) {}

  /// Takes a reference of an object that no other thread knows.
  void addRefUnshared() const noexcept { m_refCount.store(refCount() + 1, std::memory_order_relaxed); }

  /// Bits of `m_state`. The first two are what a setter refuses.
  enum State : std::uint8_t {
    PROXY = 1,
    DESTROYED = 2,
    REFUSED = 3,
    ANNOUNCED = 4,
    HAS_CONTAINED = 8,
    TEARING_DOWN = 16,
    ENDING = 32  ///< its teardown has begun and waits for what it contains, or it is being unloaded
  };

  boost::uuids::uuid m_uuid;
  mutable std::atomic<std::uint32_t> m_refCount{1};
  std::uint8_t m_live = 0;
  std::uint8_t m_state = 0;
  static constexpr std::uint16_t NO_LEVEL = 0xFFFF;
  /// The open transaction level that created this element; it needs no old values at that level.
  std::uint16_t m_createdLevel = NO_LEVEL;
  ModelImpl* m_model;
};

}  // namespace plinth
