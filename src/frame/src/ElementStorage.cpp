#include "tessel_config_datamodel/frame/ElementStorage.hpp"

#include "plinth/Model.hpp"
#include "tessel_config_datamodel/frame/Element.hpp"

namespace tessel::frame {

ElementStorage::ElementStorage(Element const& element) noexcept
    : Storage(element.getUuid(), element.model(), *element.getMetaClass().impl(), element.classTable().lastIndex + 1),
      m_table(&element.classTable()) {}

ElementStorage* ElementStorage::make(Element const& element, plinth::RecordPool& pool) {
  void* const memory = operator new(element.classTable().chain->recordSize, pool);
  return ::new (memory) ElementStorage(element);
}

std::size_t ElementStorage::layOut(ClassTable& table) {
  std::size_t end = table.base != nullptr ? table.base->chain->recordSize : sizeof(ElementStorage);
  for (PropertyDescriptor& row : table) {
    PropertyKind::Slot const slot = row.kind->slot();
    if (row.index == 0 || slot.size == 0) continue;
    end = (end + slot.alignment - 1) / slot.alignment * slot.alignment;
    row.old = static_cast<std::uint16_t>(end);
    end += slot.size;
  }
  return end;
}

ElementStorage::~ElementStorage() {
  forEachChanged([&](PropertyDescriptor const& row) { row.kind->dropOld(*this, row); });
}

void ElementStorage::revertUnchanged(plinth::ModelElementImpl* element) {
  auto& present = static_cast<Element&>(*element);
  forEachChanged([&](PropertyDescriptor const& row) {
    if (!row.kind->isUnchanged(present, *this, row)) return;
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
  forEachChanged([&](PropertyDescriptor const& row) { row.kind->sealOld(*this, row); });
}

void ElementStorage::mergeInto(plinth::Storage& outer) noexcept {
  auto& target = static_cast<ElementStorage&>(outer);
  forEachChanged([&](PropertyDescriptor const& row) {
    if (target.isChanged(row.index)) return;
    row.kind->moveOld(*this, target, row);
    target.setBit(row.index);
  });
  Storage::mergeInto(outer);
}

}  // namespace tessel::frame
