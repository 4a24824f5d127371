// The scheme's way into a generated class: its table, its rows, and how its elements are made.
// Thread rule: any thread.
#pragma once

#include "tessel_config_datamodel/frame/Element.hpp"

namespace tessel::frame {

/// What a generated class keeps for the scheme stands behind this one friend of its Impl.
class Scheme {
 public:
  template <class X>
  static constexpr ClassTable& tableOf() noexcept {
    return X::Impl::s_table;
  }
  template <class X>
  static constexpr PropertyDescriptor& rowOf(std::size_t position) noexcept {
    return X::Impl::s_rows[position];
  }
  /// Makes an element of X with its fields at their defaults.
  template <class X>
  static Element* allocate(plinth::ModelImpl& model, boost::uuids::uuid const& uuid) {
    return new typename X::Impl(Creation(model, uuid));
  }
};

/// A new element with its properties at their defaults and its class's type stamps, in a transaction of its own. A nil
/// UUID asks for a new one. Raises CannotCreateWithoutModel, and UniquenessConstraint when the UUID is taken.
TESSEL_EXPORT plinth::ModelElement createElement(ClassTable const& table, plinth::Model const& model,
                                                 boost::uuids::uuid const& uuid);

}  // namespace tessel::frame
