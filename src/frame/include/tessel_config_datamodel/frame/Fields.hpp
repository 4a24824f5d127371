// The fields in which an element keeps its properties, and the accessors of each kind of property: all that the header
// of a generated class says of the scheme. What an accessor does stands with its kind. Ownership: the element owns its
// fields. Thread rule: the model's thread.
#pragma once

#include <boost/optional.hpp>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "kestrel/ArrayBase.hpp"
#include "plinth/ModelElement.hpp"
#include "tessel_config_datamodel/frame/OptionalText.hpp"
#include "tessel_config_datamodel/frame/PropertyDescriptor.hpp"

namespace tessel::frame {

/// A copy of a host array, or null.
using HostArrayField = kestrel::PropertyArray;
/// A counted handle to one element. What makes a child owned is its container link.
using ElementField = plinth::ModelElement;
/// Any collection, made when somebody first asks for it.
using CollectionField = std::unique_ptr<plinth::AbstractOwnedCollection>;

/// How a setter takes a value of type T.
template <class T>
using In = std::conditional_t<std::is_scalar_v<T>, T, T const&>;

/// The setter of an attribute, optional or not. Raises CannotModifyProxy and CannotModifyDestroyedElement; a value that
/// is there already changes nothing.
template <class T>
TESSEL_EXPORT void setAttribute(Element& self, T& field, In<T> value, PropertyDescriptor const& row);
/// The setter of a text that keys maps of the container: the element leaves the map under its old key and enters it
/// under the new one. Raises UniquenessConstraint for a key that is taken, before any change.
TESSEL_EXPORT void setQualifier(Element& self, std::u16string& field, std::u16string const& value,
                                PropertyDescriptor const& row);
/// The setter that a subclass wraps around that of its base, whose elements lie in maps that this property keys. Raises
/// as setQualifier does.
TESSEL_EXPORT void overrideQualifier(Element& self, std::u16string const& value, PropertyDescriptor const& row);
/// Stores a copy of `array`, or clears the field when it is null. The pointer that the field holds already changes
/// nothing. Linear in the array.
TESSEL_EXPORT void setHostArray(Element& self, HostArrayField& field, kestrel_array const* array,
                                PropertyDescriptor const& row);

/// Whether there is a collection in the field, with anything in it.
TESSEL_EXPORT bool holdsAny(CollectionField const& field) noexcept;
/// Whether the row's property of `element` has a value.
TESSEL_EXPORT bool hasValue(Element const& element, PropertyDescriptor const& row);

extern template void setAttribute<bool>(Element&, bool&, bool, PropertyDescriptor const&);
extern template void setAttribute<double>(Element&, double&, double, PropertyDescriptor const&);
extern template void setAttribute<int>(Element&, int&, int, PropertyDescriptor const&);
extern template void setAttribute<long>(Element&, long&, long, PropertyDescriptor const&);
extern template void setAttribute<unsigned long>(Element&, unsigned long&, unsigned long, PropertyDescriptor const&);
extern template void setAttribute<unsigned int>(Element&, unsigned int&, unsigned int, PropertyDescriptor const&);
extern template void setAttribute<std::u16string>(Element&, std::u16string&, std::u16string const&,
                                                  PropertyDescriptor const&);
extern template void setAttribute<boost::optional<unsigned int>>(Element&, boost::optional<unsigned int>&,
                                                                 boost::optional<unsigned int> const&,
                                                                 PropertyDescriptor const&);
extern template void setAttribute<boost::optional<std::u16string>>(Element&, boost::optional<std::u16string>&,
                                                                   boost::optional<std::u16string> const&,
                                                                   PropertyDescriptor const&);

}  // namespace tessel::frame
