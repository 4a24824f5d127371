// What a generated source needs of the scheme: the kinds of its properties, and how children come into being inside a
// containment property. Thread rule: the model's thread.
#pragma once

#include "tessel_config_datamodel/frame/Attribute.hpp"
#include "tessel_config_datamodel/frame/ElementCollection.hpp"
#include "tessel_config_datamodel/frame/HostArray.hpp"
#include "tessel_config_datamodel/frame/Qualifier.hpp"
#include "tessel_config_datamodel/frame/Scheme.hpp"
#include "tessel_config_datamodel/frame/SingleElement.hpp"
#include "tessel_config_datamodel/frame/ValueCollection.hpp"

namespace tessel::frame {

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
