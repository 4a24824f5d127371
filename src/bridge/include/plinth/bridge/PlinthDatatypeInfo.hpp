// The description of a value datatype: a script object owns a value, which is copied with it. Its properties are the
// fields that the datatype gives.
// Ownership: the host's. Thread rule: the host's thread.
#pragma once

#include <utility>

#include "corvid/CorvidClass.hpp"
#include "corvid/factory/AdaptedClass.hpp"
#include "corvid/factory/CorvidFactoryClassInfo.hpp"
#include "corvid/factory/CorvidMethod.hpp"
#include "kestrel/Array.hpp"
#include "plinth/bridge/RowProperties.hpp"

namespace plinth::bridge {

namespace detail {

/// What a constructor or comparison does.
using Body = void (*)(corvid::MethodCall& call);

/// Flag of a property of a value.
constexpr unsigned VALUE_PROPERTY = 0x40;

/// Adds string types and the constructor without arguments.
TESSEL_EXPORT void beginDatatype(corvid::CorvidClass& hostClass, Body construct);
/// Announces the operations of the datatype, which have no body here.
TESSEL_EXPORT void announceOperations(corvid::CorvidClass& hostClass, meta::TypeImpl const& type);
/// Adds a method with two inputs of the class and a truth value as its result.
TESSEL_EXPORT void addComparison(corvid::CorvidClass& hostClass, char const* name, Body compare);

}  // namespace detail

template <class T>
class PlinthDatatypeInfo : public corvid::factory::NonHandleClassInfo<T, T> {
 public:
  using corvid::factory::NonHandleClassInfo<T, T>::NonHandleClassInfo;

  void initializeClass(corvid::CorvidClass* hostClass) override {
    detail::beginDatatype(*hostClass, [](corvid::MethodCall& call) {
      auto value = std::make_unique<T>();
      corvid::factory::basic::BindingRegistry::announceForConstructor(value.get(), hostNameOf<T>(), call.newObject(),
                                                                      false);
      value.release();
    });
    addFields(*hostClass, std::make_index_sequence<std::tuple_size_v<Fields>>());
    detail::announceOperations(*hostClass, *MetaTypeOf<T>::type());
    detail::addComparison(*hostClass, "eq", &compare<std::equal_to<T>>);
    detail::addComparison(*hostClass, "ne", &compare<std::not_equal_to<T>>);
    detail::addComparison(*hostClass, "lt", &compare<std::less<T>>);
  }

 private:
  using Fields = decltype(std::declval<T const&>().fields());

  template <std::size_t... I>
  static void addFields(corvid::CorvidClass& hostClass, std::index_sequence<I...>) {
    auto const properties = T::properties();
    (addField<I>(hostClass, *properties[I]->impl()), ...);
  }
  template <std::size_t I>
  static void addField(corvid::CorvidClass& hostClass, meta::PropertyImpl const& property) {
    using Field = std::tuple_element_t<I, Fields>;
    auto const read = [](T* const& self) -> Field { return std::get<I>(std::as_const(*self).fields()); };
    auto const write = [](T* const& self, Field value) { std::get<I>(self->editableFields()) = value; };
    hostClass.addProperty(detail::describeProperty(
        property, detail::VALUE_PROPERTY, std::make_unique<corvid::factory::AdaptedClassGetter<Field, T>>(read),
        std::make_unique<corvid::factory::AdaptedClassSetter<Field, T>>(write)));
  }
  template <class Comparison>
  static void compare(corvid::MethodCall& call) {
    using Shape = corvid::factory::ValueShape<T>;
    bool const result = Comparison()(Shape::fromHost(call.input(0)), Shape::fromHost(call.input(1)));
    call.setOutput(kestrel::createScalar(result));
  }
};

}  // namespace plinth::bridge
