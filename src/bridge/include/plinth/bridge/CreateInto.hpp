// `createInto<Property>(self, opt_init, opt_uuid)`: makes an element and puts it into a containment of another one.
// Thread rule: the host's thread.
#pragma once

#include "corvid/factory/CorvidMethod.hpp"
#include "groundwork/export.hpp"
#include "plinth/ModelElement.hpp"
#include "plinth/meta/Property.hpp"

namespace plinth::bridge {

class TESSEL_EXPORT CreateInto final : public corvid::factory::CorvidMethod {
 public:
  explicit CreateInto(meta::Property property);

  /// Raises InvalidHandle for a self that is gone, InvalidValue for arguments that are not as told, and what building
  /// and adding the element raise. An element that was made stays in the model, uncontained, when adding it fails.
  void invoke(corvid::MethodCall& call) const override;

 private:
  ModelElement create(ModelElement const& self, corvid::MethodCall const& call) const;
  /// Counts arguments behind self.
  [[noreturn]] void refuseArgument(corvid::MethodCall const& call, std::size_t index, char const* expected) const;
  void store(ModelElement const& self, ModelElement const& element) const;

  meta::Property m_property;
  corvid::Identifier m_ownerClass;
};

}  // namespace plinth::bridge
