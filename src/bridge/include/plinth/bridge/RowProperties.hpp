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

/// A row, and the elements of its class.
class TESSEL_EXPORT RowOfElements {
 public:
  explicit RowOfElements(Row const& row) : m_row(&row), m_owner(hostName(*row.property->owningType())) {}

  Row const& operator*() const noexcept { return *m_row; }
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
};

/// The kind of a property whose setter does nothing but set a field of type F.
template <class F>
struct PlainKind {
  using Type = tessel::frame::PlainAttributeKind<F>;
};
template <class T>
struct PlainKind<boost::optional<T>> {
  using Type = tessel::frame::OptionalKind<T>;
};

/// Reads a field of type F from the element to the host.
template <class F>
class FieldGetter final : public corvid::factory::impl::PropertyGetter {
 public:
  using Shape = corvid::factory::ValueShape<F>;

  explicit FieldGetter(Row const& row) : m_row(row) {}

  corvid::Identifier dataType() const override { return Shape::dataType(); }
  corvid::Multiplicity multiplicity() const override { return Shape::multiplicity; }
  kestrel::OwnedArray get(kestrel_array const& self) const override {
    return Shape::toHost(tessel::frame::fieldOf<F>(m_row.elementOf(self), *m_row));
  }

 private:
  RowOfElements m_row;
};

/// Writes a field of type F; one whose kind has more to do than that, as a key has, is set by its kind.
template <class F>
class FieldSetter final : public corvid::factory::impl::PropertySetter {
 public:
  explicit FieldSetter(Row const& row)
      : m_row(row), m_isPlain(typeid(*row.kind) == typeid(typename PlainKind<F>::Type)) {}

  void set(kestrel_array const& self, kestrel_array const& value) const override {
    tessel::frame::Element& element = m_row.elementOf(self);
    Row const& row = *m_row;
    F const given = corvid::factory::ValueShape<F>::fromHost(value);
    if (m_isPlain) return tessel::frame::setAttribute<F>(element, tessel::frame::fieldOf<F>(element, row), given, row);
    row.kind->set(element, row, Value::make<F>(ValueMeta(*row.property), given), ReflectionPrivateTag::PUBLIC_ACCESS);
  }

 private:
  RowOfElements m_row;
  bool m_isPlain;
};

/// The property of a row that keeps its value in a field of type F; null for any other row.
template <class F>
std::unique_ptr<corvid::CorvidPropInfo> makeFieldProperty(Row const& row) {
  if (dynamic_cast<tessel::frame::ValueFieldKind<F> const*>(row.kind) == nullptr) return nullptr;
  return describeProperty(*row.property, 0, std::make_unique<FieldGetter<F>>(row),
                          std::make_unique<FieldSetter<F>>(row));
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
