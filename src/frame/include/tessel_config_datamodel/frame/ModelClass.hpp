// All that a generated class needs of the scheme, in one include.
// Thread rule: see each header.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "plinth/Query.hpp"
#include "tessel_config_datamodel/frame/Attribute.hpp"
#include "tessel_config_datamodel/frame/Create.hpp"
#include "tessel_config_datamodel/frame/ElementCollection.hpp"
#include "tessel_config_datamodel/frame/HostArray.hpp"
#include "tessel_config_datamodel/frame/Qualifier.hpp"
#include "tessel_config_datamodel/frame/SingleElement.hpp"
#include "tessel_config_datamodel/frame/ValueCollection.hpp"

namespace tessel::frame {

/// Makes an element of implementation class I with its fields at their defaults.
template <class I>
Element* allocate(plinth::ModelImpl& model, boost::uuids::uuid const& uuid) {
  return new I(model, uuid);
}

/// The root of the chaining form of builders: T is the concrete builder, I its BuilderImpl.
template <class T, class I>
class FluentBuilder : public I {
 protected:
  using I::I;
  T& self() noexcept { return static_cast<T&>(*this); }
};

/// The property of that name along the class's base chain.
TESSEL_EXPORT plinth::meta::Property propertyOf(plinth::meta::Class const& metaClass, char16_t const* name);

/// Whether the row's property of `element` has a value.
inline bool hasValue(Element const& element, PropertyDescriptor const& row) { return row.kind->has(element, row); }

}  // namespace tessel::frame
