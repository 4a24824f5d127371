// Elements of any class, with values of any type, made by reflection: for checks that hold for every class of the
// model. Nothing here names a class, so that a new one is covered the day that it is written.
#pragma once

#include <boost/uuid/uuid_io.hpp>
#include <string>
#include <vector>

#include "kestrel/Array.hpp"
#include "plinth/Builder.hpp"
#include "plinth/ReferenceCollection.hpp"
#include "plinth/diagnostics/ValueText.hpp"
#include "plinth/meta/MetaRegistry.hpp"
#include "plinth/meta/Serializers.hpp"
#include "tessel_config_datamodel/frame/GeneratedClass.hpp"

namespace support {

using plinth::Model;
using plinth::ModelElement;
using plinth::Value;
using plinth::ValueMeta;
using plinth::meta::ClassImpl;
using plinth::meta::Property;
using plinth::meta::PropertyImpl;
using plinth::meta::TypeImpl;

/// All classes of the model that can be instantiated, in the order of the packages. The metamodel has to stand.
inline std::vector<ClassImpl const*> concreteClasses() {
  std::vector<ClassImpl const*> classes;
  std::vector<plinth::meta::PackageImpl*> packages;
  for (auto const& root : plinth::meta::MetaRegistry::getInstance().rootPackages()) packages.push_back(root.impl());
  for (std::size_t i = 0; i < packages.size(); ++i) {
    auto const& inner = packages[i]->subPackages();
    std::vector<TypeImpl*> const types = packages[i]->types();
    packages.insert(packages.end(), inner.begin(), inner.end());
    for (TypeImpl const* type : types) {
      auto const* const metaClass = dynamic_cast<ClassImpl const*>(type);
      if (metaClass != nullptr && !metaClass->isAbstract()) classes.push_back(metaClass);
    }
  }
  return classes;
}

inline bool isElementTyped(PropertyImpl const& property) {
  return dynamic_cast<ClassImpl const*>(property.type()) != nullptr;
}
inline bool isHostArray(PropertyImpl const& property) {
  return property.type() == plinth::StandardTypes::kestrelArrayMeta();
}

/// Makes elements and values in one model; each value of a type with more than two differs from those before it.
class Specimens {
 public:
  explicit Specimens(Model model) : m_model(std::move(model)) {}

  ModelElement element(ClassImpl const& metaClass) const { return metaClass.instantiateBuilder(m_model)->create(); }
  /// Of the first class that fits.
  std::unique_ptr<plinth::ModelElementBuilder> builder(TypeImpl const& type) const {
    for (ClassImpl const* each : concreteClasses()) {
      if (each->conformsTo(type)) return each->instantiateBuilder(m_model);
    }
    return plinth::meta::Class(const_cast<ClassImpl*>(&dynamic_cast<ClassImpl const&>(type)))
        ->instantiateBuilder(m_model);
  }

  /// A single value of a plain type, other than the one before.
  Value plain(TypeImpl& type) {
    namespace meta = plinth::meta;
    using Types = plinth::StandardTypes;
    ValueMeta const single(&type, meta::SINGLE);
    ++m_count;
    if (&type == Types::booleanMeta()) return Value::make<bool>(single, true);
    if (&type == Types::stringMeta()) return Value::make<std::u16string>(single, u"text" + digits());
    if (&type == Types::realMeta()) return Value::make<double>(single, m_count + 0.5);
    if (&type == Types::integer64Meta()) return Value::make<long>(single, -static_cast<long>(m_count));
    if (&type == Types::uInteger64Meta()) return Value::make<unsigned long>(single, m_count);
    if (&type == Types::unlimitedNaturalMeta()) return Value::make<unsigned int>(single, m_count);
    if (&type == Types::kestrelArrayMeta()) {
      return Value::make(single, tessel::frame::HostArray(kestrel::createScalar<double>(m_count).get()));
    }
    auto const& serializers = meta::PropertySerializerRegistry::getInstance();
    if (auto const* const enumeration = dynamic_cast<meta::EnumImpl const*>(&type)) {
      auto const& literals = enumeration->getLiterals();
      auto const& name = literals[m_count % literals.size()]->getName();
      return serializers.propertySerializer(meta::Type(&type), "")->parseValue(name, meta::Type(&type));
    }
    auto const* const serializer = serializers.datatypeSerializer(meta::Type(&type));
    Value value = serializer->createDefaultValue();
    for (PropertyImpl* field : type.ownProperties()) {
      value = serializer->setPropertyValue(value, Property(field), plain(*field->type()));
    }
    return value;
  }

  /// Another value than the present one for a single property: of its type, or a new element.
  Value forProperty(PropertyImpl& property, ModelElement const& element) {
    if (isElementTyped(property)) {
      return Value::createElementValue(Property(&property), builder(*property.type())->create());
    }
    if (property.type() == plinth::StandardTypes::booleanMeta()) {
      bool const present = element->getPropertyValue(Property(&property)).getValue<bool>();
      return Value::createPrimitiveValue<bool>(Property(&property), !present);
    }
    Value const value = plain(*property.type());
    return value == element->getPropertyValue(Property(&property)) ? plain(*property.type()) : value;
  }

  /// Gives the property of the element another value, or one more member.
  void change(ModelElement const& element, PropertyImpl& property) {
    if (!property.isMany()) {
      element->setPropertyValue(Property(&property), forProperty(property, element));
      return;
    }
    if (!isElementTyped(property)) {
      valuesOf(element, property).genericAdd(plain(*property.type()));
      return;
    }
    ModelElement const member = builder(*property.type())->create();
    if (PropertyImpl* const qualifier = property.qualifiedBy()) change(member, *qualifier);
    membersOf(element, property).genericAdd(member);
  }
  /// The same for all properties that hold something of their own.
  void changeAll(ModelElement const& element) {
    for (PropertyImpl* property : element->getMetaClass()->allProperties()) {
      if (!property->isDerived()) change(element, *property);
    }
  }

  static plinth::ReferenceCollection& membersOf(ModelElement const& element, PropertyImpl& property) {
    return element->getPropertyValue(Property(&property)).referenceCollection();
  }
  static plinth::AbstractPrimitiveCollection& valuesOf(ModelElement const& element, PropertyImpl& property) {
    return element->getPropertyValue(Property(&property)).primitiveCollection();
  }

 private:
  std::u16string digits() const {
    std::string const text = std::to_string(m_count);
    return {text.begin(), text.end()};
  }

  Model m_model;
  unsigned m_count = 100;  ///< beyond what defaults there are
};

}  // namespace support
