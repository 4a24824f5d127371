// A fresh element of each class of the model, for checks that hold for every class and every property.
// Ownership: a specimen owns its model. Thread rule: one thread.
#pragma once

#include <gtest/gtest.h>

#include <boost/dynamic_bitset.hpp>
#include <string>
#include <tessel_config_datamodel/meta/MetaPackageTessel_config_datamodel.hpp>
#include <vector>

#include "plinth/diagnostics/ValueText.hpp"
#include "support/checks.hpp"
#include "support/specimens.hpp"

namespace support {

/// A fresh element of each class in a model of its own.
struct Specimen {
  explicit Specimen(ClassImpl const& metaClassOf) : metaClass(metaClassOf) {}
  ClassImpl const& metaClass;
  Model model = Model::create();
  Specimens specimens{model};
  ModelElement element = specimens.element(metaClass);
  std::vector<PropertyImpl*> properties = metaClass.allProperties();

  Value get(PropertyImpl& property) const { return element->getPropertyValue(Property(&property)); }
  /// The state of one property, so that states can be compared.
  std::string text(PropertyImpl& property) const { return textOf(get(property), property); }
  /// Of all properties but this one.
  std::vector<std::string> textsBeside(PropertyImpl const& property) const {
    std::vector<std::string> texts;
    for (PropertyImpl* each : properties) {
      if (each != &property && !each->isDerived()) texts.push_back(text(*each));
    }
    return texts;
  }
  static std::string textOf(Value const& value, PropertyImpl const& property) {
    if (!property.isMany() && !isElementTyped(property)) return plinth::valueText(value);
    std::string text;
    auto const append = [&](ModelElement const& member) {
      text += member.isEmpty() ? "none " : boost::uuids::to_string(member->getUuid()) + ' ';
    };
    if (!property.isMany()) {
      append(value.getValue<ModelElement>());
    } else if (isElementTyped(property)) {
      for (auto const& each :
           static_cast<plinth::ReferenceCollection const*>(value.content())->getAllValuesAndProxies())
        append(each);
    } else {
      auto const* const values = static_cast<plinth::AbstractPrimitiveCollection const*>(value.content());
      for (auto const& each : values->getAllValues()) text += plinth::valueText(each) + ' ';
    }
    return text;
  }
};

/// Runs `check` on a fresh specimen of every class.
template <class Check>
void forEveryClass(Check const& check) {
  MetaPackageTessel_config_datamodel::getInstance();
  auto const classes = concreteClasses();
  EXPECT_GE(classes.size(), 50U);
  for (ClassImpl const* metaClass : classes) {
    SCOPED_TRACE(metaClass->narrowName());
    Specimen specimen(*metaClass);
    check(specimen);
    EXPECT_TRUE(isSound(specimen.model));
  }
}

/// Runs `check` on every property that holds something of its own, each time on a fresh specimen.
template <class Check>
void forEveryProperty(Check const& check) {
  forEveryClass([&](Specimen& prototype) {
    for (PropertyImpl* property : prototype.properties) {
      if (property->isDerived()) continue;
      std::string const name(property->getName().begin(), property->getName().end());
      SCOPED_TRACE(name);
      Specimen specimen(prototype.metaClass);
      check(specimen, *property);
      EXPECT_TRUE(isSound(specimen.model));
    }
  });
}

}  // namespace support
