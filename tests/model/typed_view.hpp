// The typed members of every class as functions of one type for each kind of member, so that one loop can call them
// all. The rows are generated from the tables, by templates/typed_view.cpp.mustache.
// Ownership: static data. Thread rule: as the members that are called.
#pragma once

#include <boost/dynamic_bitset.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "plinth/ValueText.hpp"
#include "tessel_config_datamodel/frame/ModelClass.hpp"

namespace typed {

using plinth::Model;
using plinth::ModelElement;
using plinth::Value;
using plinth::meta::Property;
using tessel::frame::Element;
using tessel::frame::ElementBuilder;
using Values = std::vector<Value>;
using Child = std::unique_ptr<plinth::ModelElementBuilder>;

/// What a call of the chaining form came to.
struct Chained {
  bool givesBuilder;
  boost::dynamic_bitset<std::uint64_t> mask;
};

/// Members that the kind of the property has none of are null.
struct PropertyView {
  char16_t const* name;

  std::string (*get)(Element& element, Property const& property) = nullptr;
  void (*set)(Element& element, Value const& value) = nullptr;
  bool (*has)(Element& element) = nullptr;
  void (*basicSet)(Element& element, ModelElement const& target) = nullptr;
  plinth::AbstractOwnedCollection* (*collection)(Element& element) = nullptr;
  plinth::AbstractOwnedCollection* (*mutableCollection)(Element& element) = nullptr;
  ModelElement (*createInto)(Element& element, Child child) = nullptr;

  std::string (*given)(ElementBuilder& builder, Property const& property) = nullptr;
  /// Of single properties the first value; of many-valued ones each form of doAdd in turn.
  void (*give)(ElementBuilder& builder, Values const& values) = nullptr;
  void (*giveChild)(ElementBuilder& builder, Child child) = nullptr;
  void (*clear)(ElementBuilder& builder) = nullptr;
  /// All chaining members of the property in one expression.
  Chained (*chain)(Model const& model, Values const& values, Child child) = nullptr;
};

struct ClassView {
  plinth::meta::Class const& (*metaClass)();
  boost::uuids::uuid const& (*uuid)();
  ModelElement (*create)(Model const& model);  ///< null for an abstract class
  ModelElement (*self)(Element& element);
  std::vector<PropertyView> properties;
  /// What the members that queries use name, by the name that they should.
  std::vector<std::pair<char16_t const*, Property>> (*queried)();
};

/// The views of all classes.
inline std::vector<ClassView>& classes() {
  static std::vector<ClassView> views;
  return views;
}
/// For static objects of the generated rows.
struct Registration {
  Registration(std::initializer_list<ClassView> views) { classes().insert(classes().end(), views); }
};

/// The plain value as what the setter of a property of value type T takes.
template <class T>
T content(Value const& value) {
  if constexpr (!plinth::detail::isMany<T> && !plinth::detail::isOptional<T>) {
    return value.getValue<T>();
  } else {
    return value.getValue<typename T::value_type>();
  }
}

template <class T>
std::string text(Property const& property, T const& value) {
  return plinth::valueText(Value::make<T>(plinth::ValueMeta(property), value));
}
inline std::string text(Property const& property, kestrel_array const* array) {
  return text(property, tessel::frame::HostArray(array));
}
inline std::string text(Property const&, ModelElement const& element) {
  return (element.isEmpty() ? "none" : boost::uuids::to_string(element->getUuid())) + ' ';
}

template <class X>
X target(Value const& value) {
  return plinth::element_cast<X>(value.getValue<ModelElement>());
}

/// Whether X can be created, and has a builder, under its own name; it may inherit neither.
template <class X, class = void>
inline constexpr bool isCreatable = false;
template <class X>
inline constexpr bool isCreatable<X, std::void_t<decltype(X::create(std::declval<Model const&>()))>> = true;
template <class X, class = void>
inline constexpr bool hasBuilder = false;
template <class X>
inline constexpr bool hasBuilder<X, std::void_t<typename X::Builder>> = true;

/// The chaining form of the builder operations of X and its bases, also where X is abstract.
template <class X>
class Chain final : public X::Impl::template BuilderBase<Chain<X>, typename X::Impl::BuilderImpl> {
 public:
  explicit Chain(Model const& model) : Chain::BuilderBase(X::Impl::table(), model) {}
};

template <class X, class Use>
Chained chain(Model const& model, Use const& use) {
  Chain<X> builder(model);
  bool const givesBuilder = &use(builder) == &builder;
  return {givesBuilder, builder.setMask()};
}

}  // namespace typed
