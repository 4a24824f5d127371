// The change record of an element: behind its head a slot for each property of the class, laid out by the kinds when
// the metamodel is woven. A slot holds a value while the property's bit is set, and raw memory otherwise, so that a
// record costs what it keeps. Ownership: see plinth/Changes.hpp. Thread rule: the model's thread.
#pragma once

#include <new>

#include "plinth/Changes.hpp"
#include "plinth/Value.hpp"
#include "tessel_config_datamodel/frame/PropertyKind.hpp"

namespace tessel::frame {

class TESSEL_EXPORT ElementStorage : public plinth::Storage {
 public:
  ~ElementStorage() override;

  /// A record of `element` with no slot filled, from its model's pool.
  static ElementStorage* make(Element const& element, plinth::RecordPool& pool);
  /// Lays the slots of `table` out behind those of its base, and gives the bytes of a whole record.
  static std::size_t layOut(ClassTable& table);

  void revertUnchanged(plinth::ModelElementImpl* element) override;
  plinth::Value getOldValue(plinth::meta::Property const& property,
                            plinth::ReflectionPrivateTag const& tag) const override;
  void sealOldValues() noexcept override;

  /// Calls `visit(row)` for each property whose bit is set, by rising index; `visit` may clear that bit.
  template <class Visitor>
  void forEachChanged(Visitor visit) const {
    for (std::uint64_t left = bits() & ~std::uint64_t{1}; left != 0; left &= left - 1) {
      visit(*m_table->chain->byIndex[static_cast<std::size_t>(__builtin_ctzll(left))]);
    }
  }

 protected:
  void mergeInto(plinth::Storage& outer) noexcept override;

 private:
  explicit ElementStorage(Element const& element) noexcept;

  ClassTable const* m_table;
};

/// The slot at a row's place in `storage`.
template <class T>
T& slotOf(ElementStorage& storage, PropertyDescriptor const& row) noexcept {
  return *std::launder(reinterpret_cast<T*>(reinterpret_cast<std::byte*>(&storage) + row.old));
}
template <class T>
T const& slotOf(ElementStorage const& storage, PropertyDescriptor const& row) noexcept {
  return *std::launder(reinterpret_cast<T const*>(reinterpret_cast<std::byte const*>(&storage) + row.old));
}
/// Constructs the slot's value.
template <class T, class... Arguments>
T& fillSlot(ElementStorage& storage, PropertyDescriptor const& row, Arguments&&... arguments) {
  return *::new (reinterpret_cast<std::byte*>(&storage) + row.old) T(std::forward<Arguments>(arguments)...);
}

}  // namespace tessel::frame
