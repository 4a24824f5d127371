// The typed members of every class as functions of one type for each kind of member, so that one loop can call them
// all. The rows are generated from the tables, by templates/typed_view.cpp.mustache.
// Ownership: static data. Thread rule: as the members that are called.
#pragma once

#include <boost/uuid/uuid_io.hpp>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "plinth/diagnostics/ValueText.hpp"
#include "tessel_config_datamodel/frame/Builders.hpp"
#include "tessel_config_datamodel/frame/Queries.hpp"

namespace typed {

using plinth::Model;
using plinth::ModelElement;
using plinth::Value;
using plinth::meta::Property;
using tessel::frame::ClassTable;
using tessel::frame::Element;
using tessel::frame::ElementBuilder;
using Values = std::vector<Value>;
using Child = std::unique_ptr<plinth::ModelElementBuilder>;

/// Members that the kind of the property has none of are null.
struct PropertyView {
  char16_t const* name;

  std::string (*get)(Element& element, Property const& property) = nullptr;
  void (*set)(Element& element, Value const& value) = nullptr;
  bool (*has)(Element& element) = nullptr;
  plinth::AbstractOwnedCollection* (*collection)(Element& element) = nullptr;
  plinth::AbstractOwnedCollection* (*mutableCollection)(Element& element) = nullptr;
  ModelElement (*createInto)(Element& element, Child child) = nullptr;

  /// A builder with the operations of the class that declares the property, for elements of the class of `table`.
  std::unique_ptr<ElementBuilder> (*builder)(ClassTable const& table, Model const& model) = nullptr;
  std::string (*given)(ElementBuilder& builder, Property const& property) = nullptr;
  // Each tells whether it gave the builder back.
  /// Of single properties the first value; of many-valued ones each form of adding in turn.
  bool (*give)(ElementBuilder& builder, Values const& values) = nullptr;
  bool (*giveChild)(ElementBuilder& builder, Child child) = nullptr;
  bool (*clear)(ElementBuilder& builder) = nullptr;
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

/// The builder operations of X and its bases, also where X is abstract.
template <class X>
class Chain final : public X::Impl::template BuilderBase<Chain<X>> {
 public:
  Chain(ClassTable const& table, Model const& model) : X::Impl::template BuilderBase<Chain>(table, model) {}
};

template <class X>
std::unique_ptr<ElementBuilder> chain(ClassTable const& table, Model const& model) {
  return std::make_unique<Chain<X>>(table, model);
}

}  // namespace typed
