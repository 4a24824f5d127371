// Attributes: properties that hold one plain value, always or optionally.
// Ownership: the element owns the value. Thread rule: the model's thread.
#pragma once

#include <type_traits>
#include <utility>

#include "plinth/Messages.hpp"
#include "plinth/Step.hpp"
#include "tessel_config_datamodel/frame/FieldKind.hpp"
#include "tessel_config_datamodel/frame/Fields.hpp"
#include "tessel_config_datamodel/frame/OptionalText.hpp"

namespace tessel::frame {

/// Whether an assignment of this type that fails leaves the old value: of a string or a single number it does, of a
/// datatype of several fields it may not.
template <class T>
inline constexpr bool ASSIGNS_AS_WHOLE = std::is_nothrow_copy_assignable_v<T> || std::is_same_v<T, std::u16string>;
template <class T>
inline constexpr bool ASSIGNS_AS_WHOLE<boost::optional<T>> = ASSIGNS_AS_WHOLE<T>;

/// The value itself, or a copy of it that can be moved into the field, so that the store can't stop half-way.
template <class T>
std::conditional_t<ASSIGNS_AS_WHOLE<T>, T const&, T> storable(T const& value) {
  static_assert(ASSIGNS_AS_WHOLE<T> || std::is_nothrow_move_assignable_v<T>);
  return value;
}

template <class T>
void setAttribute(Element& self, T& field, In<T> value, PropertyDescriptor const& row) {
  core(self).requireModifiable();
  if (field == value) return;
  auto&& stored = storable<T>(value);
  plinth::Step step(self.model(), plinth::Step::STORE);
  core(self).notifyModifying(row.index);
  field = std::forward<decltype(stored)>(stored);
  step.commit();
}

template <class T>
void setOptional(Element& self, boost::optional<T>& field, boost::optional<T> const& value,
                 PropertyDescriptor const& row) {
  setAttribute<boost::optional<T>>(self, field, value, row);
}

/// What attributes share that do and don't have a value always; T is the field's type.
template <class T>
class ValueFieldKind : public FieldKind<T> {
 public:
  using typename PropertyKind::Row;
  FieldGroup group() const noexcept final { return FieldGroup::ATTRIBUTE; }
  void initialize(Element& element, ElementBuilder& builder, Row const& row) const final {
    T& given = builderFieldOf<T>(builder, row);
    if (!std::is_trivially_copyable_v<T> && builder.isSpent()) {
      fieldOf<T>(element, row) = std::move(given);
    } else {
      fieldOf<T>(element, row) = given;
    }
  }

 protected:
  ~ValueFieldKind() = default;
};

/// What attributes share that always have a value.
template <class T>
class AttributeKind : public ValueFieldKind<T> {
 public:
  using typename PropertyKind::Row;
  using typename PropertyKind::Tag;
  bool has(Element const&, Row const&) const final { return true; }
  plinth::Value get(Element& element, Row const& row, Tag const&) const final {
    return plinth::Value::makeUnchecked<T>(plinth::ValueMeta(*row.property), fieldOf<T>(element, row));
  }
  void set(Element& element, Row const& row, plinth::Value const& value, Tag const&) const override {
    setAttribute<T>(element, fieldOf<T>(element, row), value.getValue<T>(), row);
  }
  plinth::Value oldValue(ElementStorage& storage, Row const& row) const final {
    return plinth::Value::makeUnchecked<T>(plinth::ValueMeta(*row.property), slotOf<T>(storage, row));
  }
  bool build(ElementBuilder& builder, Row const& row, plinth::Value const& value) const final {
    builderFieldOf<T>(builder, row) = value.getValue<T>();
    return true;
  }
  using PropertyKind::build;
  void stamp(Element& element, Row const& row, int value) const final {
    if constexpr (std::is_enum_v<T>) setAttribute<T>(element, fieldOf<T>(element, row), static_cast<T>(value), row);
  }
  void stamp(ElementBuilder& builder, Row const& row, int value) const final {
    if constexpr (std::is_enum_v<T>) {
      builderFieldOf<T>(builder, row) = static_cast<T>(value);
      builder.markSet(row.index);
    }
  }

 protected:
  ~AttributeKind() = default;
};

/// An attribute without more to it.
template <class T>
class PlainAttributeKind final : public AttributeKind<T> {};

/// An attribute whose setter a subclass overrides: reflection goes through the virtual setter.
class TESSEL_EXPORT TextKeyKind final : public AttributeKind<std::u16string> {
 public:
  void set(Element& element, Row const& row, plinth::Value const& value, Tag const& tag) const override;
};

/// An attribute that may have no value.
template <class T>
class OptionalKind final : public ValueFieldKind<boost::optional<T>> {
 public:
  using typename PropertyKind::Row;
  using typename PropertyKind::Tag;
  using Field = boost::optional<T>;
  bool has(Element const& element, Row const& row) const final { return fieldOf<Field>(element, row).has_value(); }
  plinth::Value get(Element& element, Row const& row, Tag const&) const final {
    return toValue(fieldOf<Field>(element, row), row);
  }
  void set(Element& element, Row const& row, plinth::Value const& value, Tag const&) const final {
    setAttribute<Field>(element, fieldOf<Field>(element, row), fromValue(value), row);
  }
  plinth::Value oldValue(ElementStorage& storage, Row const& row) const final {
    return toValue(slotOf<Field>(storage, row), row);
  }
  bool build(ElementBuilder& builder, Row const& row, plinth::Value const& value) const final {
    builderFieldOf<Field>(builder, row) = fromValue(value);
    return true;
  }
  using PropertyKind::build;

 private:
  static plinth::Value toValue(Field const& field, Row const& row) {
    plinth::ValueMeta meta(*row.property);
    if (field) return plinth::Value::makeUnchecked<Field>(meta, field);
    if (meta.flags() != plinth::meta::OPTIONAL) plinth::reportException(plinth::messages::InvalidValue());
    return plinth::Value(meta.setOptionalEmpty());
  }
  /// A value of the single shape is one that is present.
  static Field fromValue(plinth::Value const& value) {
    return value.meta().flags() == plinth::meta::SINGLE ? Field(value.getValue<T>()) : value.getValue<Field>();
  }
};

template <class T>
inline constexpr PlainAttributeKind<T> attributeKind{};
template <class T>
inline constexpr OptionalKind<T> optionalKind{};
inline constexpr TextKeyKind textKeyKind{};

extern template class AttributeKind<std::u16string>;
extern template class PlainAttributeKind<bool>;
extern template class PlainAttributeKind<double>;
extern template class PlainAttributeKind<long>;
extern template class PlainAttributeKind<unsigned long>;
extern template class PlainAttributeKind<unsigned int>;
extern template class PlainAttributeKind<std::u16string>;
extern template class OptionalKind<unsigned int>;
extern template class OptionalKind<std::u16string>;

}  // namespace tessel::frame
