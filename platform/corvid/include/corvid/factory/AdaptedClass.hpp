// Getter and setter objects over an adapter function: self to native, check, adapter, value to host. One template for
// each direction; what differs between shapes of values stands in ValueShape, what differs between natives in
// SelfTraits. Thread rule: the host's thread.
#pragma once

#include <type_traits>

#include "corvid/factory/PropertyImpl.hpp"
#include "corvid/factory/SelfTraits.hpp"
#include "corvid/factory/ValueShape.hpp"

namespace corvid::factory {

/// Reads values of type V off natives of type T. V may be a reference or a pointer type that ValueShape knows.
template <class V, class T>
class AdaptedClassGetter final : public impl::PropertyGetter {
 public:
  using Shape = ValueShape<std::decay_t<V>>;
  using Adapter = V (*)(typename SelfTraits<T>::Self const& self);

  /// `dataType` is for values whose type is not a matter of V alone.
  explicit AdaptedClassGetter(Adapter adapter, Identifier dataType = Shape::dataType())
      : m_adapter(adapter), m_dataType(dataType) {}

  Identifier dataType() const override { return m_dataType; }
  Multiplicity multiplicity() const override { return Shape::multiplicity; }
  kestrel::OwnedArray get(kestrel_array const& self) const override {
    auto const native = impl::selfOf<T>(self);
    impl::validateSelfPointer<T>(native);
    return Shape::toHost(m_adapter(native));
  }

 private:
  Adapter m_adapter;
  Identifier m_dataType;
};

/// Writes values of type V to natives of type T.
template <class V, class T>
class AdaptedClassSetter final : public impl::PropertySetter {
 public:
  using Shape = ValueShape<std::decay_t<V>>;
  using Adapter = void (*)(typename SelfTraits<T>::Self const& self, V value);

  explicit AdaptedClassSetter(Adapter adapter) : m_adapter(adapter) {}

  void set(kestrel_array const& self, kestrel_array const& value) const override {
    auto const native = impl::selfOf<T>(self);
    impl::validateSelfPointer<T>(native);
    m_adapter(native, Shape::fromHost(value));
  }

 private:
  Adapter m_adapter;
};

}  // namespace corvid::factory
