// The constructor of a model class, and what scripts give elements that are to be made: UUIDs and structs of initial
// values. Thread rule: the host's thread.
#pragma once

#include <boost/optional.hpp>
#include <boost/uuid/uuid.hpp>
#include <memory>

#include "corvid/factory/CorvidMethod.hpp"
#include "groundwork/export.hpp"
#include "plinth/Builder.hpp"

namespace plinth::bridge {

namespace detail {

/// A builder of the class, with each field of one element of a struct array given through setOrAdd. A field "class"
/// names a subclass to build instead, by its full name or by its short name in the package of `metaClass`. A contained
/// element is a struct of its own, and of many a list. An empty field gives nothing, and so does a struct without
/// fields where there may be many. Raises NoSuchProperty for a field that is no property, NoSuchType and
/// CannotAddIncompatibleTypes for a wrong "class", CannotCreateAbstractClass, and what marshalers and setOrAdd raise
/// for a value of the wrong type; errors of a field are headed by its name.
TESSEL_EXPORT std::unique_ptr<ModelElementBuilder> createBuilderFromStruct(kestrel_array const& hostStruct,
                                                                           std::size_t index, Model const& model,
                                                                           meta::Class const& metaClass);
/// The same for a child, where `metaClass` is the class that a property declares, and may be abstract.
TESSEL_EXPORT std::unique_ptr<ModelElementBuilder> createBuilderFromStructFirst(kestrel_array const& hostStruct,
                                                                                std::size_t index, Model const& model,
                                                                                meta::Class const& metaClass);
/// The UUID that a text names; nothing for any other array.
TESSEL_EXPORT boost::optional<boost::uuids::uuid> extractUuid(kestrel_array const& array);
/// The same where there must be one. Raises InvalidValue.
TESSEL_EXPORT boost::uuids::uuid requireUuid(kestrel_array const& array);
/// Whether an argument is a struct of exactly one element.
TESSEL_EXPORT bool isInitialStruct(kestrel_array const& array);

}  // namespace detail

/// `X(model, opt_init, opt_uuid)`: the two optional arguments come in either order.
class TESSEL_EXPORT Construct final : public corvid::factory::impl::CorvidConstructor {
 public:
  explicit Construct(meta::Class metaClass);

  /// Raises CannotCreateWithoutModel without a valid model, InvalidValue for an argument that is neither struct nor
  /// UUID or the second of its kind, and what building the element raises.
  void invoke(corvid::MethodCall& call) const override;

 private:
  meta::Class m_metaClass;
};

}  // namespace plinth::bridge
