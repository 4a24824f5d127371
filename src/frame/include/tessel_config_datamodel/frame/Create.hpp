// The ways in which elements come into being: alone, or inside a containment property of another one.
// Thread rule: the model's thread.
#pragma once

#include "tessel_config_datamodel/frame/ElementCollection.hpp"
#include "tessel_config_datamodel/frame/SingleElement.hpp"

namespace tessel::frame {

/// A new element with its properties at their defaults and its class's type stamps, in a transaction of its own. A nil
/// UUID asks for a new one. Raises CannotCreateWithoutModel, and UniquenessConstraint when the UUID is taken.
TESSEL_EXPORT plinth::ModelElement createElement(ClassTable const& table, plinth::Model const& model,
                                                 boost::uuids::uuid const& uuid);

template <class X>
X create(plinth::Model const& model, boost::uuids::uuid const& uuid) {
  plinth::ModelElement made = createElement(X::Impl::table(), model, uuid);
  return static_cast<X&&>(made);
}

/// What `builder`, which is one of X, makes.
template <class X>
X build(plinth::ModelElementBuilder& builder, boost::uuids::uuid const& uuid) {
  plinth::ModelElement made = builder.create(uuid);
  return static_cast<X&&>(made);
}

/// Builds a child and puts it into the containment property of the row, in one transaction. A nil UUID asks for a new
/// one.
TESSEL_EXPORT plinth::ModelElement createChild(Element& self, PropertyDescriptor const& row,
                                               plinth::ModelElementBuilder& builder, boost::uuids::uuid const& uuid);

template <class X>
X createInto(Element& self, PropertyDescriptor const& row, plinth::BuilderWrapper<X> const& builderWrapper,
             boost::uuids::uuid const& uuid) {
  plinth::ModelElement made = createChild(self, row, builderWrapper.builder(), uuid);
  return static_cast<X&&>(made);
}

}  // namespace tessel::frame
