// The change record of every property that is one field: what keeping, restoring and comparing an old value come to,
// once for all kinds. Thread rule: the model's thread.
#pragma once

#include <utility>

#include "tessel_config_datamodel/frame/Element.hpp"
#include "tessel_config_datamodel/frame/ElementBuilder.hpp"
#include "tessel_config_datamodel/frame/ElementStorage.hpp"

namespace tessel::frame {

/// The field at a row's place in `element`.
template <class T>
T& fieldOf(Element& element, PropertyDescriptor const& row) noexcept {
  return *reinterpret_cast<T*>(reinterpret_cast<std::byte*>(&element) + row.field);
}
template <class T>
T const& fieldOf(Element const& element, PropertyDescriptor const& row) noexcept {
  return *reinterpret_cast<T const*>(reinterpret_cast<std::byte const*>(&element) + row.field);
}

/// How a field is copied to be kept; specialised for a type that can't be copied as it is.
template <class F>
struct KeptField {
  static F const& copyOf(F const& field) noexcept { return field; }
};

/// A property whose whole state is one field of type F.
template <class F>
class FieldKind : public PropertyKind {
 public:
  Slot slot() const noexcept final { return {sizeof(F), alignof(F)}; }
  void keepOld(Element const& element, ElementStorage& storage, Row const& row) const final {
    fillSlot<F>(storage, row, KeptField<F>::copyOf(fieldOf<F>(element, row)));
  }
  void restoreOld(Element& element, ElementStorage& storage, Row const& row) const noexcept final {
    std::swap(fieldOf<F>(element, row), slotOf<F>(storage, row));
  }
  void dropOld(ElementStorage& storage, Row const& row) const noexcept final { slotOf<F>(storage, row).~F(); }
  void moveOld(ElementStorage& from, ElementStorage& to, Row const& row) const noexcept final {
    fillSlot<F>(to, row, std::move(slotOf<F>(from, row)));
  }
  bool isUnchanged(Element const& element, ElementStorage const& storage, Row const& row) const final {
    return fieldOf<F>(element, row) == slotOf<F>(storage, row);
  }

 protected:
  ~FieldKind() = default;
};

}  // namespace tessel::frame
