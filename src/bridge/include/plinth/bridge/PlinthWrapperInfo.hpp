// The description of a model class: a script object is a handle on an element. All of it follows from the class's
// table: properties and `createInto` methods from its rows, the rest from its meta class. Ownership: the host's. Thread
// rule: the host's thread.
#pragma once

#include "corvid/factory/CorvidFactoryClassInfo.hpp"
#include "plinth/bridge/Construct.hpp"
#include "plinth/bridge/ElementBinding.hpp"
#include "tessel_config_datamodel/frame/Scheme.hpp"

namespace plinth::bridge {

namespace detail {

/// Adds superclass, string types, the constructor of a class that is not abstract, the class's own properties,
/// single-valued ones first, the method of each containment, and the static method that gives the meta class.
TESSEL_EXPORT void describeClass(corvid::CorvidClass& hostClass, tessel::frame::ClassTable const& table);
/// Adds the static method that gives the meta class.
TESSEL_EXPORT void addStaticMetaClass(corvid::CorvidClass& hostClass, meta::Class const& (*metaClass)());

}  // namespace detail

template <class T>
class PlinthWrapperInfo : public corvid::factory::HandleClassInfo<T, false> {
 public:
  using Construct = plinth::bridge::Construct;
  using corvid::factory::HandleClassInfo<T, false>::HandleClassInfo;

  /// The classes of the foundation have no table, and describe themselves.
  void initializeClass(corvid::CorvidClass* hostClass) override {
    if constexpr (std::is_base_of_v<tessel::frame::Element, typename T::Impl>)
      detail::describeClass(*hostClass, tessel::frame::Scheme::tableOf<T>());
  }
  /// There is no element without a model.
  void* createDefaultInstance() const override { return nullptr; }
  void destroyInstance(void* native) const override { releaseElement(native); }
  bool isLive(void const* native) const override { return static_cast<ModelElementImpl const*>(native)->isLive(); }
  bool isHidden() const override { return T::metaClass()->isCorvidHidden(); }
  bool isAbstract() const override { return T::metaClass()->isAbstract(); }
};

}  // namespace plinth::bridge
