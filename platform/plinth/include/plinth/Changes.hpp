// What a transaction changed on one element: a bit for each property index, and, in Storage, the old values.
// Ownership: the model's transaction owns every record; records come from the model's pool. A listener may use one
// until its call returns: as long as a record is published, its element stays in memory, destroyed or not. Thread rule:
// the model's thread.
#pragma once

#include <boost/uuid/uuid.hpp>
#include <cstddef>
#include <cstdint>

#include "groundwork/export.hpp"
#include "plinth/ModelElement.hpp"

namespace plinth {

class RecordPool;

/// Which properties changed. Bit i stands for property index i; bit 0 is the container link. No class has more than 63
/// indexes, so one word holds them all.
class TESSEL_EXPORT Changes {
 public:
  static constexpr unsigned long INDEXES = 64;

  Changes(boost::uuids::uuid const& uuid, ModelImpl& model, meta::ClassImpl const& metaClass,
          unsigned long count) noexcept
      : m_uuid(uuid), m_model(&model), m_class(&metaClass), m_count(static_cast<std::uint32_t>(count)) {}
  Changes(Changes const&) = delete;
  Changes& operator=(Changes const&) = delete;
  virtual ~Changes();

  boost::uuids::uuid const& getUuid() const noexcept { return m_uuid; }
  Model getModel() const noexcept;
  meta::ClassImpl const& metaClassImpl() const noexcept { return *m_class; }

  bool isChanged(unsigned long index) const noexcept { return index < INDEXES && (m_bits >> index & 1U) != 0; }
  std::uint64_t bits() const noexcept { return m_bits; }
  /// `index` is below INDEXES, here and below.
  void setBit(unsigned long index) noexcept { m_bits |= std::uint64_t{1} << index; }
  void clearBit(unsigned long index) noexcept { m_bits &= ~(std::uint64_t{1} << index); }
  /// The bits as a bit set of the record's count; complete with boost/dynamic_bitset.hpp.
  BitSet changeBits() const;

 private:
  boost::uuids::uuid m_uuid;
  ModelImpl* m_model;
  meta::ClassImpl const* m_class;
  std::uint64_t m_bits = 0;
  std::uint32_t m_count;

 protected:
  std::uint32_t m_level = 0;  ///< the transaction level whose begin the old values belong to
};

/// Changes with the old values. The generated classes add a slot for each property; a slot is constructed when its bit
/// is set and only then.
class TESSEL_EXPORT Storage : public Changes {
 public:
  using Changes::Changes;
  ~Storage() override;

  /// The element whose old values these are; dead if it has been destroyed meanwhile.
  ModelElement element() const noexcept { return ModelElement(m_element); }

  virtual void setOldContainer(ModelElement const& container, meta::Property const& property) noexcept;
  ModelElement const& oldContainer() const noexcept { return m_oldContainer; }

  /// Clears the bits of properties whose present value equals the old one.
  virtual void revertUnchanged(ModelElementImpl* element);
  /// The value that `property` had when the outermost transaction began. Raises NoSuchProperty for a property that is
  /// unknown or did not change.
  virtual Value getOldValue(meta::Property const& property, ReflectionPrivateTag const& tag) const;

  /// The transaction is over, and listeners are about to read this record: old values that are still told by journals
  /// must outlast changes that the listeners make.
  virtual void sealOldValues() noexcept;

  static void* operator new(std::size_t size, RecordPool& pool);
  static void operator delete(void* record, RecordPool& pool) noexcept;
  static void operator delete(void* record) noexcept;

 protected:
  /// Moves the slots that `outer` lacks over to it; both belong to one element.
  virtual void mergeInto(Storage& outer) noexcept;

 private:
  friend struct internal::RecordAccess;

  ModelElementImpl* m_element = nullptr;
  Storage* m_outer = nullptr;  ///< the record of an enclosing level, if that level has one
  ModelElement m_oldContainer;
  meta::PropertyImpl* m_oldContainmentProperty = nullptr;
};

}  // namespace plinth
