// Queries: find the elements of a class whose properties meet constraints.
//
// A constraint is built from constrainables, which name a property: the static accessors of a class
// (`ConfigEntry::key()`) or the members of its `Constrainables`. A query looks only at the elements of its class, by
// the model's lists of elements by class, never at the whole model. Ownership: constraints are values; a query holds
// its model. Thread rule: the model's thread.
#pragma once

#include <boost/optional.hpp>
#include <functional>
#include <utility>
#include <vector>

#include "plinth/Value.hpp"

namespace plinth::query {

/// Whether elements of subclasses count.
enum class SearchClassMatchMode { EXACT_CLASS, WITH_SUBCLASSES };

/// A test of one element.
class TESSEL_EXPORT Constraint {
 public:
  using Test = std::function<bool(ModelElementImpl&)>;
  explicit Constraint(Test test) : m_test(std::move(test)) {}
  bool holds(ModelElementImpl& element) const { return m_test(element); }

  friend Constraint operator&&(Constraint left, Constraint right) {
    return Constraint([l = std::move(left), r = std::move(right)](auto& e) { return l.holds(e) && r.holds(e); });
  }
  friend Constraint operator||(Constraint left, Constraint right) {
    return Constraint([l = std::move(left), r = std::move(right)](auto& e) { return l.holds(e) || r.holds(e); });
  }
  friend Constraint operator!(Constraint inner) {
    return Constraint([i = std::move(inner)](auto& e) { return !i.holds(e); });
  }

 private:
  Test m_test;
};

/// A search in a model. Raises NoSuchProperty when a constraint names a property that the class doesn't have.
class TESSEL_EXPORT AbstractQuery {
 public:
  AbstractQuery(Model model, meta::Class metaClass, SearchClassMatchMode mode) noexcept
      : m_model(std::move(model)), m_class(std::move(metaClass)), m_mode(mode) {}

  /// Adds a constraint; all that were added must hold.
  void addConstraint(Constraint constraint) { m_constraints.push_back(std::move(constraint)); }
  /// The elements that meet all constraints, class by class. Raises NoModel. Linear in the elements of the class.
  [[nodiscard]] std::vector<ModelElement> execute() const;
  [[nodiscard]] std::size_t count() const { return execute().size(); }
  meta::Class const& metaClass() const noexcept { return m_class; }
  SearchClassMatchMode matchMode() const noexcept { return m_mode; }

 private:
  Model m_model;
  meta::Class m_class;
  SearchClassMatchMode m_mode;
  std::vector<Constraint> m_constraints;
};

/// The properties of a class instance under query; generated classes add a member for each. The members point at the
/// object, so it stays where it is.
class TESSEL_EXPORT Constrainables {
 public:
  Constrainables(AbstractQuery& query, meta::Class metaClass, SearchClassMatchMode mode) noexcept
      : m_query(&query), m_class(std::move(metaClass)), m_mode(mode) {}
  Constrainables(Constrainables const&) = delete;
  Constrainables& operator=(Constrainables const&) = delete;
  AbstractQuery& query() const noexcept { return *m_query; }
  meta::Class const& queriedClass() const noexcept { return m_class; }
  SearchClassMatchMode matchMode() const noexcept { return m_mode; }

 private:
  AbstractQuery* m_query;
  meta::Class m_class;
  SearchClassMatchMode m_mode;
};

/// Bound to one Constrainables object.
class InstanceAttachment {
 public:
  explicit InstanceAttachment(Constrainables& instance) noexcept : m_instance(&instance) {}
  Constrainables& instance() const noexcept { return *m_instance; }

 private:
  Constrainables* m_instance;
};

/// Bound to the class X alone.
template <class X>
struct MetaclassAttachment {};

/// Names a property of value type V.
template <class V, class A, bool>
class AbstractConstrainable {
 public:
  AbstractConstrainable(meta::Property property, A attachment)
      : m_attachment(std::move(attachment)), m_property(std::move(property)) {}
  virtual ~AbstractConstrainable() = default;
  A const& attachment() const noexcept { return m_attachment; }
  meta::Property const& property() const noexcept { return m_property; }

 private:
  A m_attachment;
  meta::Property m_property;
};

namespace detail {
TESSEL_EXPORT Constraint relatesTo(meta::Property const& property, ModelElement const& target);
TESSEL_EXPORT Constraint isAnyOfClass(meta::Property const& property, meta::Class const& metaClass,
                                      bool withSubclasses);
TESSEL_EXPORT Constraint isSet(meta::Property const& property);
enum class TextMatch { STARTS_WITH, ENDS_WITH, CONTAINS };
TESSEL_EXPORT Constraint matches(meta::Property const& property, std::u16string text, TextMatch match);

/// The value of an attribute, optional or not; nothing where an optional is empty.
template <class V>
boost::optional<V> valueOf(ModelElementImpl& element, meta::Property const& property) {
  Value const value = element.getPropertyValue(property, ReflectionPrivateTag::NO_PROXY_RESOLVE);
  if (value.meta().flags() == meta::OPTIONAL) return value.getValue<boost::optional<V>>();
  return value.getValue<V>();
}
}  // namespace detail

/// An attribute: compared with a value.
template <class V, class A, bool S, class>
class ConstrainableWithAttachment : public AbstractConstrainable<V, A, S> {
  template <class T>
  using IfForeign = std::enable_if_t<!std::is_convertible_v<T const&, V>>;

 public:
  using AbstractConstrainable<V, A, S>::AbstractConstrainable;

  /// Holds where `compare(property's value, value)` does; never for an optional that is empty.
  template <class Compare>
  Constraint compare(V value, Compare compare) const {
    return Constraint([property = this->property(), value = std::move(value), compare](ModelElementImpl& element) {
      auto const present = detail::valueOf<V>(element, property);
      return present && compare(*present, value);
    });
  }
  friend Constraint operator==(ConstrainableWithAttachment const& c, V v) {
    return c.compare(std::move(v), std::equal_to<V>());
  }
  friend Constraint operator!=(ConstrainableWithAttachment const& c, V v) {
    return c.compare(std::move(v), std::not_equal_to<V>());
  }
  friend Constraint operator<(ConstrainableWithAttachment const& c, V v) {
    return c.compare(std::move(v), std::less<V>());
  }
  friend Constraint operator<=(ConstrainableWithAttachment const& c, V v) {
    return c.compare(std::move(v), std::less_equal<V>());
  }
  friend Constraint operator>(ConstrainableWithAttachment const& c, V v) {
    return c.compare(std::move(v), std::greater<V>());
  }
  friend Constraint operator>=(ConstrainableWithAttachment const& c, V v) {
    return c.compare(std::move(v), std::greater_equal<V>());
  }

  // What is no value of the property's type says so.
  template <class T, class = IfForeign<T>>
  friend Constraint operator==(ConstrainableWithAttachment const&, T const&) {
    return refuse<T>();
  }
  template <class T, class = IfForeign<T>>
  friend Constraint operator!=(ConstrainableWithAttachment const&, T const&) {
    return refuse<T>();
  }

  // For strings, by code units.
  Constraint startsWith(std::u16string text) const { return match(std::move(text), detail::TextMatch::STARTS_WITH); }
  Constraint endsWith(std::u16string text) const { return match(std::move(text), detail::TextMatch::ENDS_WITH); }
  Constraint contains(std::u16string text) const { return match(std::move(text), detail::TextMatch::CONTAINS); }

 private:
  template <class T>
  static Constraint refuse() {
    static_assert(std::is_convertible_v<T const&, V>,
                  "the value is not of the property's type; a text is UTF-16: u\"...\"");
    return Constraint({});
  }
  Constraint match(std::u16string text, detail::TextMatch how) const {
    static_assert(std::is_same_v<V, std::u16string>, "only strings are matched by their text");
    return detail::matches(this->property(), std::move(text), how);
  }
};

/// An element-valued property, single or many: related to elements of class T. A proxy counts as what it stands for, if
/// that is in memory; no proxy is resolved in place. Targets that have been destroyed don't count.
template <class T, class A>
class ConstrainableRelationWithAttachment : public AbstractConstrainable<T, A, false> {
 public:
  using AbstractConstrainable<T, A, false>::AbstractConstrainable;
  /// Holds where the property holds, or has among its members, this element; for an empty handle, where there is no
  /// target.
  Constraint relatesTo(T const& target) const { return detail::relatesTo(this->property(), target); }
  /// Holds where a target is of the class.
  Constraint anyIsA(meta::Class const& metaClass,
                    SearchClassMatchMode mode = SearchClassMatchMode::WITH_SUBCLASSES) const {
    return detail::isAnyOfClass(this->property(), metaClass, mode == SearchClassMatchMode::WITH_SUBCLASSES);
  }
  /// Holds where there is a target.
  Constraint isSet() const { return detail::isSet(this->property()); }
};

/// A search for elements of class X.
template <class X>
class Query : public AbstractQuery {
 public:
  explicit Query(Model model, SearchClassMatchMode mode = SearchClassMatchMode::WITH_SUBCLASSES)
      : AbstractQuery(std::move(model), X::metaClass(), mode) {}
  /// Adds a constraint; all that were added must hold.
  Query& where(Constraint constraint) & {
    addConstraint(std::move(constraint));
    return *this;
  }
  /// The same on a query that has no name yet, which goes on as the result.
  [[nodiscard]] Query where(Constraint constraint) && {
    addConstraint(std::move(constraint));
    return std::move(*this);
  }
  /// The elements that meet all constraints. Raises NoModel. Linear in the elements of the class.
  [[nodiscard]] std::vector<X> find() const {
    std::vector<X> found;
    for (ModelElement const& element : execute()) found.push_back(static_cast<X const&>(element));
    return found;
  }
};

template <class V, class X>
using AttributeOf = ConstrainableWithAttachment<V, MetaclassAttachment<X>, false, void>;
template <class T, class X>
using RelationOf = ConstrainableRelationWithAttachment<T, MetaclassAttachment<X>>;
template <class V>
using InstanceAttribute = ConstrainableWithAttachment<V, InstanceAttachment, false, void>;
template <class T>
using InstanceRelation = ConstrainableRelationWithAttachment<T, InstanceAttachment>;

}  // namespace plinth::query
