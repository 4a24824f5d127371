// Adds the properties of one class to the host's class object: a generated description names getter and setter of each,
// and what they return decides how the property crosses.
// Thread rule: the host's thread.
#pragma once

#include "corvid/CorvidClass.hpp"
#include "corvid/factory/AdaptedClass.hpp"
#include "plinth/bridge/ElementShapes.hpp"
#include "plinth/bridge/PrimitiveProperty.hpp"
#include "plinth/bridge/ValueShapes.hpp"
#include "plinth/collections/ElementSequence.hpp"
#include "plinth/collections/PrimitiveMap.hpp"
#include "plinth/collections/PrimitiveSequence.hpp"
#include "plinth/collections/PrimitiveSet.hpp"

namespace plinth::bridge {

namespace detail {

/// The class by which the host shows a collection of the property's shape.
TESSEL_EXPORT corvid::Identifier collectionClass(meta::PropertyImpl const& property);
/// The host data type of a whole collection of values, as the marshaler of its type says.
TESSEL_EXPORT corvid::Identifier valueCollectionType(meta::PropertyImpl const& property);
/// Clears the sequence and adds the elements, as one change.
TESSEL_EXPORT void assignMembers(ReferenceCollection& sequence, std::size_t count,
                                 ModelElement const& (*at)(void const* elements, std::size_t index),
                                 void const* elements);

/// What a setter takes.
template <class Setter>
struct SetterParameter;
template <class C, class V>
struct SetterParameter<void (C::*)(V)> {
  using Type = V;
};

/// How a property crosses whose getter returns R: a plain value unless a specialisation says otherwise.
enum class Crossing { VALUE, OPTIONAL_TEXT, MARSHALED, ELEMENT_ROW, COLLECTION, VALUE_COLLECTION };

template <class C>
constexpr Crossing crossingOfCollection(C const*) {
  return std::is_base_of_v<ReferenceCollection, C> ? Crossing::COLLECTION : Crossing::VALUE_COLLECTION;
}
template <class T>
constexpr Crossing crossingOfCollection(PrimitiveSequence<T> const*) {
  return Crossing::MARSHALED;
}
template <class E>
constexpr Crossing crossingOfCollection(ElementSequence<E> const*) {
  return Crossing::ELEMENT_ROW;
}

template <class R>
constexpr Crossing crossingOf() {
  using Value = std::decay_t<R>;
  if constexpr (std::is_same_v<Value, kestrel_array const*>) {
    return Crossing::MARSHALED;
  } else if constexpr (std::is_pointer_v<Value>) {
    return crossingOfCollection(static_cast<Value>(nullptr));
  } else {
    return std::is_same_v<Value, boost::optional<std::u16string>> ? Crossing::OPTIONAL_TEXT : Crossing::VALUE;
  }
}

}  // namespace detail

/// X is a model class or a value datatype.
template <class X>
class PropertyRows {
 public:
  /// `flags` stand on each property that is not hidden.
  PropertyRows(corvid::CorvidClass& hostClass, unsigned flags) : m_class(hostClass), m_flags(flags) {}

  /// A property of X by its getter and, unless scripts only read it, its setter.
  template <auto Getter, auto Setter = nullptr>
  void add(meta::Property const& property) {
    using Read = decltype(((*std::declval<Self const&>()).*Getter)());
    constexpr detail::Crossing crossing = detail::crossingOf<Read>();
    if constexpr (crossing == detail::Crossing::MARSHALED) {
      m_class.addProperty(std::make_unique<PrimitiveProperty>(property, flagsOf(property)));
    } else if constexpr (crossing == detail::Crossing::VALUE) {
      addValue<Read, Getter, Setter>(property);
    } else if constexpr (crossing == detail::Crossing::OPTIONAL_TEXT) {
      addAdapted<std::u16string, std::u16string const&>(property, &readText<Getter>, &writeText<Setter>);
    } else if constexpr (crossing == detail::Crossing::ELEMENT_ROW) {
      using E = typename std::remove_pointer_t<Read>::Element;
      addAdapted<std::vector<E>, std::vector<E> const&>(property, &readRow<E, Getter>, &writeRow<E, Getter>);
    } else if constexpr (crossing == detail::Crossing::COLLECTION) {
      addReadOnly<ReferenceCollection const*>(property, &readField<ReferenceCollection const*, Getter>,
                                              detail::collectionClass(*property.impl()));
    } else {
      addReadOnly<AbstractPrimitiveCollection const*>(property, &readField<AbstractPrimitiveCollection const*, Getter>,
                                                      detail::valueCollectionType(*property.impl()));
    }
  }

 private:
  using Owner = std::conditional_t<std::is_base_of_v<ModelElement, X>, Borrowed<X>, X>;
  using Self = typename corvid::factory::SelfTraits<Owner>::Self;
  template <class V>
  using ReadAdapter = corvid::factory::AdaptedClassGetter<V, Owner>;
  template <class V>
  using WriteAdapter = corvid::factory::AdaptedClassSetter<V, Owner>;

  // The adapter functions: one pair for each property.

  template <class V, auto Getter>
  static V readField(Self const& self) {
    return ((*self).*Getter)();
  }
  template <class V, auto Setter>
  static void writeField(Self const& self, V value) {
    ((*self).*Setter)(value);
  }
  /// Scripts can't tell an absent text from an empty one, and what they write is present.
  template <auto Getter>
  static std::u16string readText(Self const& self) {
    return ((*self).*Getter)().value_or(std::u16string());
  }
  template <auto Setter>
  static void writeText(Self const& self, std::u16string const& value) {
    ((*self).*Setter)(value);
  }
  template <class E, auto Getter>
  static std::vector<E> readRow(Self const& self) {
    ElementSequence<E>& sequence = *((*self).*Getter)();
    sequence.resolveAll();
    std::vector<E> members;
    members.reserve(sequence.size());
    for (ModelElement const& member : sequence.raw()) members.push_back(static_cast<E const&>(member));
    return members;
  }
  template <class E, auto Getter>
  static void writeRow(Self const& self, std::vector<E> const& members) {
    auto const at = [](void const* elements, std::size_t index) -> ModelElement const& {
      return (*static_cast<std::vector<E> const*>(elements))[index];
    };
    detail::assignMembers(*((*self).*Getter)(), members.size(), at, &members);
  }

  unsigned flagsOf(meta::Property const& property) const {
    return property->isCorvidHidden() ? corvid::HIDDEN_PROPERTY : m_flags;
  }
  template <class Read, auto Getter, auto Setter>
  void addValue(meta::Property const& property) {
    using Write = typename detail::SetterParameter<decltype(Setter)>::Type;
    addAdapted<Read, Write>(property, &readField<Read, Getter>, &writeField<Write, Setter>);
  }
  template <class Read, class Write>
  void addAdapted(meta::Property const& property, typename ReadAdapter<Read>::Adapter read,
                  typename WriteAdapter<Write>::Adapter write) {
    addImpl(property, std::make_unique<ReadAdapter<Read>>(read), std::make_unique<WriteAdapter<Write>>(write));
  }
  template <class Read>
  void addReadOnly(meta::Property const& property, typename ReadAdapter<Read>::Adapter read,
                   corvid::Identifier dataType) {
    addImpl(property, std::make_unique<ReadAdapter<Read>>(read, dataType), nullptr);
  }
  void addImpl(meta::Property const& property, std::unique_ptr<corvid::factory::impl::PropertyGetter> getter,
               std::unique_ptr<corvid::factory::impl::PropertySetter> setter) {
    m_class.addProperty(std::make_unique<corvid::factory::impl::PropertyImpl>(
        memberName(*property.impl()), flagsOf(property), std::move(getter), std::move(setter)));
  }

  corvid::CorvidClass& m_class;
  unsigned m_flags;
};

}  // namespace plinth::bridge
