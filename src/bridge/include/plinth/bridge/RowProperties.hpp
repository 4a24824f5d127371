// The properties of a model class as the host sees them, made of the rows of the class's table: how one crosses follows
// from its kind and, where it holds values, from the marshaler of their type.
// Ownership: rows are static data; what is made is the host's. Thread rule: the host's thread.
#pragma once

#include <memory>
#include <typeinfo>

#include "corvid/factory/PropertyImpl.hpp"
#include "corvid/factory/SelfTraits.hpp"
#include "groundwork/export.hpp"
#include "plinth/bridge/ValueShapes.hpp"
#include "tessel_config_datamodel/frame/Attribute.hpp"

namespace plinth::bridge {

using Row = tessel::frame::PropertyDescriptor;

/// The host's property of a row. Raises NoSuchType for values of a type that has no marshaler.
TESSEL_EXPORT std::unique_ptr<corvid::CorvidPropInfo> makeProperty(Row const& row);

namespace detail {

/// A property by its parts; `flags` stand on one that is not hidden.
TESSEL_EXPORT std::unique_ptr<corvid::CorvidPropInfo> describeProperty(
    meta::PropertyImpl const& property, unsigned flags, std::unique_ptr<corvid::factory::impl::PropertyGetter> getter,
    std::unique_ptr<corvid::factory::impl::PropertySetter> setter);

/// A row as its getter and setter need it: with the elements of its class, and the host data type of its values.
class TESSEL_EXPORT RowOfElements {
 public:
  RowOfElements(Row const& row, corvid::Identifier dataType)
      : m_row(&row), m_owner(hostName(*row.property->owningType())), m_dataType(dataType) {}

  Row const& operator*() const noexcept { return *m_row; }
  corvid::Identifier dataType() const noexcept { return m_dataType; }
  /// The element of a script object for the length of a call. Whoever calls holds the script object and by it the
  /// element: counting it once more would be most of what reading a number costs. Raises InvalidHandle.
  tessel::frame::Element& elementOf(kestrel_array const& self) const {
    auto* const native = static_cast<ModelElementImpl*>(corvid::factory::impl::nativeOf(self, m_owner));
    if (native == nullptr || !native->isLive()) corvid::factory::impl::reportInvalidSelf(m_owner);
    return static_cast<tessel::frame::Element&>(*native);
  }

 private:
  Row const* m_row;
  corvid::Identifier m_owner;
  corvid::Identifier m_dataType;
};

/// Puts a value of type V where the row's property of an element stands.
template <class V>
using Store = void (*)(tessel::frame::Element& element, V const& value, Row const& row);

// Getter and setter of a row. A crossing C has
//   static constexpr Multiplicity MULTIPLICITY;
//   static Identifier dataType(Row const& row);
//   static kestrel::OwnedArray read(Element& element, RowOfElements const& row);
// and, for properties that scripts set,
//   using Given = ...;                                       what a setter takes
//   static Given fromHost(kestrel_array const& value, Identifier dataType);
//   static Store<Given> storeOf(Row const& row);             asked once for each row

template <class C>
class RowGetter final : public corvid::factory::impl::PropertyGetter {
 public:
  explicit RowGetter(Row const& row) : m_row(row, C::dataType(row)) {}

  corvid::Identifier dataType() const override { return m_row.dataType(); }
  corvid::Multiplicity multiplicity() const override { return C::MULTIPLICITY; }
  kestrel::OwnedArray get(kestrel_array const& self) const override { return C::read(m_row.elementOf(self), m_row); }

 private:
  RowOfElements m_row;
};

template <class C>
class RowSetter final : public corvid::factory::impl::PropertySetter {
 public:
  explicit RowSetter(Row const& row) : m_row(row, C::dataType(row)), m_store(C::storeOf(row)) {}

  void set(kestrel_array const& self, kestrel_array const& value) const override {
    tessel::frame::Element& element = m_row.elementOf(self);
    m_store(element, C::fromHost(value, m_row.dataType()), *m_row);
  }

 private:
  RowOfElements m_row;
  Store<typename C::Given> m_store;
};

template <class C>
std::unique_ptr<corvid::CorvidPropInfo> readWrite(Row const& row) {
  return describeProperty(*row.property, 0, std::make_unique<RowGetter<C>>(row), std::make_unique<RowSetter<C>>(row));
}

/// The kind of a property whose setter does nothing but set a field of type F.
template <class F>
struct PlainKind {
  using Type = tessel::frame::PlainAttributeKind<F>;
};
template <class T>
struct PlainKind<boost::optional<T>> {
  using Type = tessel::frame::OptionalKind<T>;
};

/// The setter of a text that keys maps, or that a subclass overrides; null for any other.
TESSEL_EXPORT Store<std::u16string> keyStoreOf(Row const& row);

/// A field of type F crosses as it is, straight between element and array.
template <class F>
class FieldCrossing {
 public:
  using Shape = corvid::factory::ValueShape<F>;
  using Given = F;
  static constexpr corvid::Multiplicity MULTIPLICITY = Shape::multiplicity;

  static corvid::Identifier dataType(Row const&) { return Shape::dataType(); }
  static kestrel::OwnedArray read(tessel::frame::Element& element, RowOfElements const& row) {
    return Shape::toHost(tessel::frame::fieldOf<F>(element, *row));
  }
  static F fromHost(kestrel_array const& value, corvid::Identifier) { return Shape::fromHost(value); }
  /// A kind that does more than set the field is asked to.
  static Store<F> storeOf(Row const& row) {
    if constexpr (std::is_same_v<F, std::u16string>) {
      if (Store<F> const store = keyStoreOf(row)) return store;
    }
    return typeid(*row.kind) == typeid(typename PlainKind<F>::Type) ? &storePlain : &storeByKind;
  }

 private:
  static void storePlain(tessel::frame::Element& element, F const& value, Row const& row) {
    tessel::frame::setAttribute<F>(element, tessel::frame::fieldOf<F>(element, row), value, row);
  }
  static void storeByKind(tessel::frame::Element& element, F const& value, Row const& row) {
    Value const given = Value::make<F>(ValueMeta(*row.property), value);
    row.kind->set(element, row, given, ReflectionPrivateTag::PUBLIC_ACCESS);
  }
};

/// The property of a row that keeps its value in a field of type F; null for any other row.
template <class F>
std::unique_ptr<corvid::CorvidPropInfo> makeFieldProperty(Row const& row) {
  bool const isField = dynamic_cast<tessel::frame::ValueFieldKind<F> const*>(row.kind) != nullptr;
  return isField ? readWrite<FieldCrossing<F>>(row) : nullptr;
}

}  // namespace detail

/// A marshaler M of values of type T for the rows of elements: a field of T, or of T or none, crosses as it is.
template <class T, class M>
class FieldMarshaler final : public M {
 public:
  using M::M;

  std::unique_ptr<corvid::CorvidPropInfo> makeProperty(Row const& row) const override {
    if (auto property = detail::makeFieldProperty<T>(row)) return property;
    if (auto property = detail::makeFieldProperty<boost::optional<T>>(row)) return property;
    return M::makeProperty(row);
  }
};

}  // namespace plinth::bridge
