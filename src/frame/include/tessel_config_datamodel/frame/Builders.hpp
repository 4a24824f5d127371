// What the builders of all generated classes share: the chaining form of their operations. T is the concrete builder.
// Each operation marks its property as given. Ownership and thread rule: see plinth/Builder.hpp.
#pragma once

#include <initializer_list>
#include <utility>

#include "tessel_config_datamodel/frame/ElementBuilder.hpp"
#include "tessel_config_datamodel/frame/HostArray.hpp"
#include "tessel_config_datamodel/frame/Scheme.hpp"

namespace tessel::frame {

/// Several values, of a list in braces or of a vector, for the length of a call.
template <class V>
class Several {
 public:
  // Both are meant to pass as they are.
  // NOLINTBEGIN(google-explicit-constructor)
  Several(std::initializer_list<V> values) noexcept : m_list(values) {}
  Several(std::vector<V> const& values) noexcept : m_vector(&values) {}
  // NOLINTEND(google-explicit-constructor)
  template <class F>
  void appendTo(F& field) const {
    if (m_vector != nullptr) {
      field.insert(field.end(), m_vector->begin(), m_vector->end());
    } else {
      field.insert(field.end(), m_list.begin(), m_list.end());
    }
  }

 private:
  std::initializer_list<V> m_list;
  std::vector<V> const* m_vector = nullptr;
};

template <class T>
class FluentBuilder : public ElementBuilder {
 protected:
  using ElementBuilder::ElementBuilder;

  T& self() noexcept { return static_cast<T&>(*this); }
  template <class F, class V>
  T& give(F& field, V&& value, unsigned long index) {
    field = std::forward<V>(value);
    markSet(index);
    return self();
  }
  template <class F, class V>
  T& append(F& field, V const& value, unsigned long index) {
    field.push_back(value);
    markSet(index);
    return self();
  }
  template <class F, class V>
  T& appendAll(F& field, Several<V> const& values, unsigned long index) {
    values.appendTo(field);
    markSet(index);
    return self();
  }
  template <class F>
  T& drop(F& field) noexcept {
    field.clear();
    return self();
  }
  T& giveChild(std::unique_ptr<plinth::ModelElementBuilder> child, unsigned long index) {
    takeChild(index, std::move(child));
    return self();
  }
  template <class X>
  X madeBy(ChildBuilder const& child) const {
    return plinth::element_cast<X>(made(child));
  }
};

/// The builder of class X, on top of its own BuilderBase.
template <class X, class Base>
class BuilderOf : public Base {
 public:
  /// Builds in `model`, with the class's type stamps.
  explicit BuilderOf(plinth::Model const& model) : Base(Scheme::tableOf<X>(), model) { this->giveStamps(); }
  /// The model comes later, by setModel; no type stamps.
  BuilderOf() : Base(Scheme::tableOf<X>()) {}
  /// As the operation of every builder that it hides, with the handle of the class.
  X create(boost::uuids::uuid const& uuid = {}) {
    plinth::ModelElement made = ElementBuilder::create(uuid);
    return static_cast<X&&>(made);
  }
};

}  // namespace tessel::frame
