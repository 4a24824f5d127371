// How enumerations and value datatypes cross to the host, one value at a time.
// Thread rule: the host's thread.
#pragma once

#include <boost/optional.hpp>
#include <memory>
#include <type_traits>

#include "corvid/factory/BindingRegistry.hpp"
#include "corvid/factory/Marshaler.hpp"
#include "corvid/factory/ValueShape.hpp"
#include "plinth/AbstractPrimitiveCollection.hpp"
#include "plinth/bridge/ElementBinding.hpp"

namespace plinth::bridge {

/// True for the value datatypes of a model: classes that give their fields.
template <class T, class = void>
struct IsDatatype : std::false_type {};
template <class T>
struct IsDatatype<T, std::void_t<decltype(T::properties()), decltype(std::declval<T const&>().fields())>>
    : std::true_type {};

/// The host's name of the type that T stands for.
template <class T>
corvid::Identifier hostNameOf() {
  static corvid::Identifier const name = hostName(*MetaTypeOf<T>::type());
  return name;
}

/// The values of a collection as an array, as the marshaler of their type says; none gives an empty array.
TESSEL_EXPORT kestrel::OwnedArray marshalCollection(AbstractPrimitiveCollection const* collection);

}  // namespace plinth::bridge

namespace corvid::factory {

/// Values are reached by plain pointer: the script object owns them.
template <class T>
struct SelfTraits<T, std::enable_if_t<plinth::bridge::IsDatatype<T>::value>> : PointerSelf<T> {
  static Identifier className() { return plinth::bridge::hostNameOf<T>(); }
};

/// A member of an enumeration is an int32 under the class of the enumeration.
template <class E>
struct ValueShape<E, std::enable_if_t<std::is_enum_v<E>>> {
  static constexpr Multiplicity multiplicity = Multiplicity::Single;
  static Identifier dataType() {
    static Identifier const type = internal::makeInterned(plinth::bridge::hostNameOf<E>().text() + " scalar");
    return type;
  }
  static kestrel::OwnedArray toHost(E value) {
    auto number = kestrel::createScalar(static_cast<std::int32_t>(value));
    return kestrel::createBuiltInBased(plinth::bridge::hostNameOf<E>(), std::move(number));
  }
  static E fromHost(kestrel_array const& value) { return static_cast<E>(kestrel::element<std::int32_t>(value)); }
};

/// Absent is an empty array of the enumeration.
template <class E>
struct ValueShape<boost::optional<E>, std::enable_if_t<std::is_enum_v<E>>> {
  static constexpr Multiplicity multiplicity = Multiplicity::Optional;
  static Identifier dataType() { return ValueShape<E>::dataType(); }
  static kestrel::OwnedArray toHost(boost::optional<E> const& value) {
    if (value) return ValueShape<E>::toHost(*value);
    auto none = kestrel::createNumeric<std::int32_t>(kestrel::EMPTY);
    return kestrel::createBuiltInBased(plinth::bridge::hostNameOf<E>(), std::move(none));
  }
  static boost::optional<E> fromHost(kestrel_array const& value) {
    return kestrel::isEmpty(value) ? boost::optional<E>() : ValueShape<E>::fromHost(value);
  }
};

/// The script object owns a copy: later changes of either side don't reach the other.
template <class T>
struct ValueShape<T, std::enable_if_t<plinth::bridge::IsDatatype<T>::value>> {
  static constexpr Multiplicity multiplicity = Multiplicity::Single;
  static Identifier dataType() { return SelfTraits<T>::className(); }
  static kestrel::OwnedArray toHost(T const& value) {
    auto copy = std::make_unique<T>(value);
    auto array =
        basic::BindingRegistry::announceWithoutStoring(copy.get(), dataType(), &Marshaler<DataTypePolicy>::copier<T>);
    copy.release();
    return array;
  }
  static T fromHost(kestrel_array const& value) { return at(value, 0); }
  static T at(kestrel_array const& values, std::size_t index) {
    T const* const native = impl::selfOf<T>(values, index);
    impl::validateSelfPointer<T>(const_cast<T*>(native));
    return *native;
  }
};

/// Absent is an empty array of the class.
template <class T>
struct ValueShape<boost::optional<T>, std::enable_if_t<plinth::bridge::IsDatatype<T>::value>> {
  static constexpr Multiplicity multiplicity = Multiplicity::Optional;
  static Identifier dataType() { return ValueShape<T>::dataType(); }
  static kestrel::OwnedArray toHost(boost::optional<T> const& value) {
    return value ? ValueShape<T>::toHost(*value) : kestrel::createObjects(dataType(), kestrel::EMPTY);
  }
  static boost::optional<T> fromHost(kestrel_array const& value) {
    return kestrel::isEmpty(value) ? boost::optional<T>() : ValueShape<T>::fromHost(value);
  }
};

/// Scripts can't tell an absent text from an empty one, and what they write is present.
template <>
struct ValueShape<boost::optional<std::u16string>> {
  static constexpr Multiplicity multiplicity = Multiplicity::Single;
  static Identifier dataType() { return ValueShape<std::u16string>::dataType(); }
  static kestrel::OwnedArray toHost(boost::optional<std::u16string> const& value) {
    return kestrel::createChar(value ? std::u16string_view(*value) : std::u16string_view());
  }
  static boost::optional<std::u16string> fromHost(kestrel_array const& value) {
    return ValueShape<std::u16string>::fromHost(value);
  }
};

}  // namespace corvid::factory
