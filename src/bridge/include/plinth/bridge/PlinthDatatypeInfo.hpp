// The description of a value datatype: a script object owns a value, which is copied with it.
// Ownership: the host's. Thread rule: the host's thread.
#pragma once

#include "corvid/factory/CorvidFactoryClassInfo.hpp"
#include "corvid/factory/CorvidMethod.hpp"
#include "kestrel/Array.hpp"
#include "plinth/bridge/PropertyRows.hpp"

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
  using Rows = PropertyRows<T>;
  using corvid::factory::NonHandleClassInfo<T, T>::NonHandleClassInfo;

  void initializeClass(corvid::CorvidClass* hostClass) override {
    detail::beginDatatype(*hostClass, [](corvid::MethodCall& call) {
      auto value = std::make_unique<T>();
      corvid::factory::basic::BindingRegistry::announceForConstructor(value.get(), hostNameOf<T>(), call.newObject(),
                                                                      false);
      value.release();
    });
    Rows rows(*hostClass, detail::VALUE_PROPERTY);
    describe(rows);
    detail::announceOperations(*hostClass, *MetaTypeOf<T>::type());
    detail::addComparison(*hostClass, "eq", &compare<std::equal_to<T>>);
    detail::addComparison(*hostClass, "ne", &compare<std::not_equal_to<T>>);
    detail::addComparison(*hostClass, "lt", &compare<std::less<T>>);
  }

 protected:
  /// Adds the properties.
  virtual void describe(Rows& rows) const = 0;

 private:
  template <class Comparison>
  static void compare(corvid::MethodCall& call) {
    using Shape = corvid::factory::ValueShape<T>;
    bool const result = Comparison()(Shape::fromHost(call.input(0)), Shape::fromHost(call.input(1)));
    call.setOutput(kestrel::createScalar(result));
  }
};

}  // namespace plinth::bridge
