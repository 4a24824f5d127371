#include "tessel_config_datamodel/frame/ElementStorage.hpp"

#include "tessel_config_datamodel/frame/Element.hpp"

namespace tessel::frame {

ElementStorage::ElementStorage(Element const& element) noexcept
    : Storage(element.getUuid(), element.model(), *element.getMetaClass().impl(), element.classTable().lastIndex + 1),
      m_table(&element.classTable()) {}

ElementStorage::~ElementStorage() {
  for (std::uint64_t bits = this->bits() >> 1U << 1U; bits != 0; bits &= bits - 1) {
    auto const* const row = findDescriptor(*m_table, static_cast<unsigned long>(__builtin_ctzll(bits)));
    row->kind->dropOld(*this, *row);
  }
}

void ElementStorage::revertUnchanged(plinth::ModelElementImpl* element) {
  auto& present = static_cast<Element&>(*element);
  forEachAlongChain(*m_table, [&](PropertyDescriptor const& row) {
    if (row.index == 0 || !isChanged(row.index) || !row.kind->isUnchanged(present, *this, row)) return;
    row.kind->dropOld(*this, row);
    clearBit(row.index);
  });
  Storage::revertUnchanged(element);
}

plinth::Value ElementStorage::getOldValue(plinth::meta::Property const& property,
                                          plinth::ReflectionPrivateTag const& tag) const {
  auto const* const row = property.isEmpty() ? nullptr : findDescriptor(*m_table, *property.impl());
  if (row == nullptr || row->index == 0 || !isChanged(row->index)) return Storage::getOldValue(property, tag);
  return row->kind->oldValue(const_cast<ElementStorage&>(*this), *row);
}

void ElementStorage::sealOldValues() noexcept {
  for (ClassTable const* each = m_table; each != nullptr; each = each->base) {
    for (PropertyDescriptor const& row : *each) {
      if (row.index != 0 && isChanged(row.index)) row.kind->sealOld(*this, row);
    }
  }
}

void ElementStorage::mergeInto(plinth::Storage& outer) noexcept {
  auto& target = static_cast<ElementStorage&>(outer);
  for (ClassTable const* each = m_table; each != nullptr; each = each->base) {
    for (PropertyDescriptor const& row : *each) {
      if (row.index == 0 || !isChanged(row.index) || target.isChanged(row.index)) continue;
      row.kind->moveOld(*this, target, row);
      target.setBit(row.index);
    }
  }
  Storage::mergeInto(outer);
}

}  // namespace tessel::frame
