// The description of a model class: a script object is a handle on an element. The generated wrapper of each class adds
// the properties and `createInto` methods; all else follows from the metamodel.
// Ownership: the host's. Thread rule: the host's thread.
#pragma once

#include "corvid/factory/CorvidFactoryClassInfo.hpp"
#include "plinth/bridge/Construct.hpp"
#include "plinth/bridge/CreateInto.hpp"
#include "plinth/bridge/PropertyRows.hpp"

namespace plinth::bridge {

namespace detail {

/// Adds superclass, string types and, for a class that is not abstract, the constructor: what precedes the properties.
TESSEL_EXPORT void beginClass(corvid::CorvidClass& hostClass, meta::Class const& metaClass);
/// Adds the static method that gives the meta class: what follows all other members.
TESSEL_EXPORT void endClass(corvid::CorvidClass& hostClass, meta::Class const& (*metaClass)());

}  // namespace detail

template <class T>
class PlinthWrapperInfo : public corvid::factory::HandleClassInfo<T, false> {
 public:
  using Rows = PropertyRows<T>;
  using Construct = plinth::bridge::Construct;
  using corvid::factory::HandleClassInfo<T, false>::HandleClassInfo;

  void initializeClass(corvid::CorvidClass* hostClass) override {
    detail::beginClass(*hostClass, T::metaClass());
    Rows rows(*hostClass, 0);
    describe(rows);
    addMethods(*hostClass);
    detail::endClass(*hostClass, &T::metaClass);
  }
  /// There is no element without a model.
  void* createDefaultInstance() const override { return nullptr; }
  void destroyInstance(void* native) const override { releaseElement(native); }
  bool isLive(void const* native) const override { return static_cast<ModelElementImpl const*>(native)->isLive(); }
  bool isHidden() const override { return T::metaClass()->isCorvidHidden(); }
  bool isAbstract() const override { return T::metaClass()->isAbstract(); }

 protected:
  /// Adds the class's own properties, single-valued ones first.
  virtual void describe(Rows& rows) const = 0;
  /// Adds the method of each containment of the class.
  virtual void addMethods(corvid::CorvidClass&) const {}
};

}  // namespace plinth::bridge
