// What the handles of all generated classes share. X is the handle's class, Base the handle it derives from. The
// templates that name the properties to queries stand between the two, so that an inherited property is asked of X.
// Thread rule: see plinth/Handle.hpp.
#pragma once

#include <cassert>
#include <type_traits>

#include "tessel_config_datamodel/frame/Scheme.hpp"

namespace plinth {
template <class X>
class BuilderWrapper;
}

namespace plinth::query {
template <class X>
struct MetaclassAttachment;
template <class V, class A, bool S, class Enable>
class ConstrainableWithAttachment;
template <class T, class A>
class ConstrainableRelationWithAttachment;
}  // namespace plinth::query

namespace tessel::frame {

/// An attribute, or a relation to elements of class T, as queries ask it of class X. Both are complete with
/// frame/Queries.hpp. O(1); the metamodel is built at the first call.
template <class X, class V, int INDEX>
plinth::query::ConstrainableWithAttachment<V, plinth::query::MetaclassAttachment<X>, false, void> const& attribute();
template <class X, class T, int INDEX>
plinth::query::ConstrainableRelationWithAttachment<T, plinth::query::MetaclassAttachment<X>> const& relation();

/// Whether I is the implementation of class X, or of one below it.
template <class X, class I>
inline constexpr bool isElementOf = std::is_base_of_v<typename X::Impl, I>;

template <class X, class Base>
class HandleOf : public Base {
 public:
  using BuilderWrapper = plinth::BuilderWrapper<X>;

  HandleOf() noexcept = default;
  /// A counted handle to the element; null gives an empty one.
  template <class I, class = std::enable_if_t<isElementOf<X, I>>>
  explicit HandleOf(I* impl) noexcept : Base(impl) {}

  /// The element, which operator-> reaches as well; null for an empty handle, which has nothing to reach.
  [[nodiscard]] auto* impl() const noexcept { return static_cast<typename X::Impl*>(plinth::ModelElement::impl()); }
  auto* operator->() const noexcept {
    assert(!this->isEmpty() && "an empty handle has no element");
    return impl();
  }
  auto& operator*() const noexcept { return *operator->(); }

  /// The class in the metamodel, which is built at the first call, and the class's own UUID.
  static plinth::meta::Class const& metaClass() { return Scheme::tableOf<X>().metaClass(); }
  [[nodiscard]] static boost::uuids::uuid const& Uuid() noexcept { return Scheme::tableOf<X>().facts.uuid; }

 private:
  // An abstract class has no elements of its own: neither of these comes through from its bases.
  using Builder = void;
  static void create() = delete;
};

/// The handle of a class that has elements of its own.
template <class X, class Base>
class ConcreteHandleOf : public HandleOf<X, Base> {
 public:
  using HandleOf<X, Base>::HandleOf;

  /// A new element; a nil UUID asks for a fresh one. Raises CannotCreateWithoutModel and UniquenessConstraint.
  [[nodiscard]] static X create(plinth::Model const& model, boost::uuids::uuid const& uuid = {}) {
    plinth::ModelElement made = createElement(Scheme::tableOf<X>(), model, uuid);
    return static_cast<X&&>(made);
  }
};

}  // namespace tessel::frame
