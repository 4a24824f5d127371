// Model elements and models as natives of the host: under which class they are known, and what a script object holds.
//
// Ownership: the binding of an element holds one reference on it and one on its model, so that what a script holds can
// be used as long as it is not destroyed. Thread rule: the host's thread.
#pragma once

#include <type_traits>
#include <vector>

#include "corvid/factory/SelfTraits.hpp"
#include "groundwork/export.hpp"
#include "plinth/Model.hpp"
#include "plinth/ReferenceCollection.hpp"
#include "plinth/meta/Type.hpp"

namespace plinth::bridge {

/// The name under which the host knows a type of the metamodel. Cost: a hash look-up after the first time.
TESSEL_EXPORT corvid::Identifier hostName(meta::TypeImpl const& type);
/// The name of a property, literal or operation. Cost: interning.
TESSEL_EXPORT corvid::Identifier memberName(meta::MetaElementImpl const& member);

/// The script object of an element under the element's own class, or the nearest one above that the host knows, in a 1
/// by 1 array; an empty array of the class `declared` for an empty handle. Raises NoSuchClass.
TESSEL_EXPORT kestrel::OwnedArray announceElement(ModelElement const& element, corvid::Identifier declared);
/// The script objects of elements in one row, which settles to their nearest common class; an empty array of the class
/// `declared` for none.
TESSEL_EXPORT kestrel::OwnedArray announceElements(std::vector<ModelElement> const& elements,
                                                   corvid::Identifier declared);
/// The script object of a model, in a 1 by 1 array.
TESSEL_EXPORT kestrel::OwnedArray announceModel(Model const& model);
/// The script object of a collection under the foundation's class for its shape; none gives an empty "plinth.Set".
TESSEL_EXPORT kestrel::OwnedArray announceCollection(ReferenceCollection const* collection);
/// Binds the object that a constructor was given to an element, under the element's own class.
TESSEL_EXPORT void bindConstructed(ModelElement const& element, kestrel_array& self);

/// Parts an element from its script object; drops what the binding held.
TESSEL_EXPORT void releaseElement(void* native) noexcept;
/// The same for a collection, whose binding holds the element that owns it.
TESSEL_EXPORT void releaseCollection(void* native) noexcept;

}  // namespace plinth::bridge

namespace corvid::factory {

/// Elements of every class are bound as their ModelElementImpl.
template <class X>
struct SelfTraits<X, std::enable_if_t<std::is_base_of_v<plinth::ModelElement, X>>> {
  using Self = X;
  static Identifier className() {
    static Identifier const name = plinth::bridge::hostName(*X::metaClass().impl());
    return name;
  }
  static Self fromNative(void* native) {
    return X(static_cast<typename X::Impl*>(static_cast<plinth::ModelElementImpl*>(native)));
  }
};

template <>
struct TESSEL_EXPORT SelfTraits<plinth::meta::Class> {
  using Self = plinth::meta::Class;
  static Identifier className();
  static Self fromNative(void* native);
};

template <>
struct TESSEL_EXPORT SelfTraits<plinth::Model> {
  using Self = plinth::Model;
  static Identifier className();
  static Self fromNative(void* native);
};

}  // namespace corvid::factory
