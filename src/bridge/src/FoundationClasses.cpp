// The packages "plinth" and "plinth.meta", and the classes of elements and of meta classes.
#include "FoundationClasses.hpp"

#include <boost/uuid/uuid_io.hpp>

#include "ModelErrors.hpp"
#include "corvid/HostError.hpp"
#include "corvid/factory/AdaptedClass.hpp"
#include "corvid/factory/StringDataTypes.hpp"
#include "groundwork/Unicode.hpp"
#include "plinth/bridge/FoundationPackage.hpp"
#include "plinth/bridge/PlinthWrapperInfo.hpp"
#include "plinth/meta/MetaRegistry.hpp"

namespace plinth::bridge {

using corvid::CorvidClass;
using corvid::CorvidPackage;
using corvid::MethodCall;
using corvid::internal::makeInterned;

namespace {

constexpr std::string_view CLASS = "plinth.meta.Class";

void outputText(MethodCall& call, std::u16string const& text) { call.setOutput(kestrel::createChar(text)); }

meta::Property requireProperty(ModelElement const& element, kestrel_array const& name) {
  std::u16string const text(kestrel::scalarText(name));
  meta::Class const& metaClass = element->getMetaClass();
  meta::PropertyImpl* const property = metaClass->findProperty(text);
  if (property == nullptr) reportException(messages::NoSuchProperty(text, metaClass->getQualifiedName()));
  return meta::Property(property);
}

/// The root of all model classes; what every element has stands here.
class ModelElementWrapper final : public PlinthWrapperInfo<ModelElement> {
 public:
  using PlinthWrapperInfo::PlinthWrapperInfo;

  void initializeClass(CorvidClass* hostClass) override {
    addMethods(*hostClass);
    detail::endClass(*hostClass, &ModelElement::metaClass);
  }

 protected:
  void describe(Rows&) const override {}
  void addMethods(CorvidClass& hostClass) const override {
    MethodAdder<ModelElement> const methods(hostClass);
    methods.read("model", "plinth.Model", {},
                 [](ModelElement const& self, MethodCall& call) { call.setOutput(announceModel(self->getModel())); });
    methods.read("uuid", TEXT, {}, [](ModelElement const& self, MethodCall& call) {
      outputText(call, groundwork::toUtf16(to_string(self->getUuid())));
    });
    methods.read("metaClass", CLASS, {}, [](ModelElement const& self, MethodCall& call) {
      call.setOutput(announceElement(self->getMetaClass(), makeInterned(CLASS)));
    });
    methods.read("container", ELEMENT, {}, [](ModelElement const& self, MethodCall& call) {
      call.setOutput(announceElement(self->container(), makeInterned(ELEMENT)));
    });
    methods.read("containmentProperty", TEXT, {}, [](ModelElement const& self, MethodCall& call) {
      meta::Property const property = self->containmentFeature();
      outputText(call, property.isEmpty() ? std::u16string() : property->getName());
    });
    methods.read("isProxy", TRUTH, {}, [](ModelElement const& self, MethodCall& call) {
      call.setOutput(kestrel::createScalar(self->isProxy()));
    });
    methods.read("hasValue", TRUTH, {TEXT}, [](ModelElement const& self, MethodCall& call) {
      call.setOutput(kestrel::createScalar(self->hasPropertyValue(requireProperty(self, call.input(1)))));
    });
    methods.add("destroy", "", {}, [](ModelElement const& self, MethodCall&) { self->destroy(); });
  }
};

/// A class of the metamodel, to be looked at.
class MetaClassWrapper final : public PlinthWrapperInfo<meta::Class> {
 public:
  using PlinthWrapperInfo::PlinthWrapperInfo;

  void initializeClass(CorvidClass* hostClass) override {
    hostClass->addSuperclass(makeInterned(ELEMENT), 1, 0, 1);
    corvid::factory::detail::initStringDataTypes();
    addReadOnly<std::u16string const&>(
        *hostClass, "Name", [](meta::Class const& self) -> std::u16string const& { return self->getName(); });
    addReadOnly<std::u16string const&>(
        *hostClass, "QualifiedName",
        [](meta::Class const& self) -> std::u16string const& { return self->getQualifiedName(); });
    addReadOnly<bool>(*hostClass, "IsAbstract", [](meta::Class const& self) { return self->isAbstract(); });
    addReadOnly<meta::Class>(*hostClass, "Superclass", [](meta::Class const& self) { return self->getSuperclass(); });
    addMethods(*hostClass);
  }
  bool isHidden() const override { return false; }
  bool isAbstract() const override { return true; }

 protected:
  void describe(Rows&) const override {}
  void addMethods(CorvidClass& hostClass) const override {
    MethodAdder<meta::Class> const methods(hostClass);
    methods.read("properties", "CorvidFactoryString vector", {}, [](meta::Class const& self, MethodCall& call) {
      std::vector<std::u16string> names;
      for (meta::PropertyImpl const* property : self->allProperties()) names.push_back(property->getName());
      call.setOutput(kestrel::createStringRow(names));
    });
    methods.read("conformsTo", TRUTH, {"any"}, [](meta::Class const& self, MethodCall& call) {
      call.setOutput(kestrel::createScalar(self->conformsTo(*readClass(call.input(1)).impl())));
    });
  }

 private:
  template <class V>
  static void addReadOnly(CorvidClass& hostClass, char const* name,
                          typename corvid::factory::AdaptedClassGetter<V, meta::Class>::Adapter read) {
    hostClass.addProperty(std::make_unique<corvid::factory::impl::PropertyImpl>(
        makeInterned(name), 0, std::make_unique<corvid::factory::AdaptedClassGetter<V, meta::Class>>(read), nullptr));
  }
};

class PlinthPackage final : public EmptyParentPackage {
 public:
  PlinthPackage() : EmptyParentPackage("plinth") {}
  void initializePackage(CorvidPackage* package) override {
    addElementClass(*package);
    addModelClasses(*package);
    addCollectionClasses(*package);
  }
};

class PlinthMetaPackage final : public EmptyParentPackage {
 public:
  PlinthMetaPackage() : EmptyParentPackage("plinth.meta") {}
  void initializePackage(CorvidPackage* package) override { addClass<MetaClassWrapper>(*package, "Class"); }
};

}  // namespace

void addElementClass(CorvidPackage& package) { addClass<ModelElementWrapper>(package, "ModelElement"); }

meta::Class readClass(kestrel_array const& value) {
  if (auto const named = corvid::factory::impl::selfOf<meta::Class>(value)) return named;
  if (!kestrel::isOneText(value))
    reportInvalidValue("expected a class or the full name of one, not " + corvid::describeValue(value) + ".");
  std::u16string const name(kestrel::scalarText(value));
  meta::Type const type = meta::MetaRegistry::getInstance().getType(name);
  auto* const metaClass = dynamic_cast<meta::ClassImpl*>(type.impl());
  if (metaClass == nullptr) reportException(messages::NoSuchType(name));
  return meta::Class(metaClass);
}

void registerFoundation() {
  EmptyParentPackage::registerPackage(std::make_unique<PlinthPackage>());
  EmptyParentPackage::registerPackage(std::make_unique<PlinthMetaPackage>());
}

}  // namespace plinth::bridge
