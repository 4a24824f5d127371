// What queries ask of a generated class: behind its static accessors and in its Constrainables.
// Thread rule: the thread of the queried model.
#pragma once

#include "plinth/Query.hpp"
#include "tessel_config_datamodel/frame/Handles.hpp"

namespace tessel::frame {

/// The property of that index in the class that `table` describes; the metamodel is built for it.
TESSEL_EXPORT plinth::meta::Property propertyAt(ClassTable const& table, unsigned long index);

template <class X, class V, int INDEX>
plinth::query::AttributeOf<V, X> const& attribute() {
  static plinth::query::AttributeOf<V, X> const named(propertyAt(Scheme::tableOf<X>(), INDEX), {});
  return named;
}
template <class X, class T, int INDEX>
plinth::query::RelationOf<T, X> const& relation() {
  static plinth::query::RelationOf<T, X> const named(propertyAt(Scheme::tableOf<X>(), INDEX), {});
  return named;
}

/// The root of a class's Constrainables: X is the class, Base what its base has.
template <class X, class Base>
class ConstrainablesOf : public Base {
 public:
  ConstrainablesOf(plinth::query::AbstractQuery& query, plinth::meta::Class const& metaClass,
                   plinth::query::SearchClassMatchMode mode)
      : Base(query, metaClass, mode) {}
  explicit ConstrainablesOf(
      std::pair<plinth::query::AbstractQuery&, plinth::query::SearchClassMatchMode const> const& query)
      : ConstrainablesOf(query.first, X::metaClass(), query.second) {}
};

/// A property of one instance under query, in the form of whatever constrainable it becomes.
struct Queried {
  plinth::meta::Property property;
  plinth::query::InstanceAttachment instance;

  template <class Constrainable>
  operator Constrainable() const {  // NOLINT(google-explicit-constructor)
    return Constrainable(property, instance);
  }
};
template <class X>
Queried queried(plinth::query::Constrainables& instance, unsigned long index) {
  return {propertyAt(Scheme::tableOf<X>(), index), plinth::query::InstanceAttachment(instance)};
}

}  // namespace tessel::frame
