#include "plinth/Changes.hpp"

#include <boost/dynamic_bitset.hpp>

#include "RecordPool.hpp"
#include "plinth/Messages.hpp"
#include "plinth/Model.hpp"
#include "plinth/Value.hpp"
#include "plinth/meta/Property.hpp"

namespace plinth {

Changes::~Changes() = default;

Model Changes::getModel() const noexcept { return Model(m_model); }

BitSet Changes::changeBits() const { return BitSet(m_count, m_bits); }

Storage::~Storage() = default;

void Storage::setOldContainer(ModelElement const& container, meta::Property const& property) noexcept {
  m_oldContainer = container;
  m_oldContainmentProperty = property.impl();
}

void Storage::revertUnchanged(ModelElementImpl* element) {
  if (isChanged(0) && internal::core(*element).basicContainer() == m_oldContainer.impl() &&
      internal::core(*element).basicContainmentFeature() == m_oldContainmentProperty) {
    clearBit(0);
  }
}

Value Storage::getOldValue(meta::Property const& property, ReflectionPrivateTag const&) const {
  reportException(messages::NoSuchProperty(property.isEmpty() ? std::u16string() : property->getName(),
                                           metaClassImpl().getQualifiedName()));
}

void Storage::sealOldValues() noexcept {}

void* Storage::operator new(std::size_t size, RecordPool& pool) { return pool.allocate(size); }
// A constructor of a record does not throw, so that this form is never called.
void Storage::operator delete(void*, RecordPool&) noexcept {}
void Storage::operator delete(void* record) noexcept { RecordPool::release(record); }

void Storage::mergeInto(Storage& outer) noexcept {
  if (isChanged(0) && !outer.isChanged(0)) {
    outer.m_oldContainer = std::move(m_oldContainer);
    outer.m_oldContainmentProperty = m_oldContainmentProperty;
    outer.setBit(0);
  }
}

}  // namespace plinth
