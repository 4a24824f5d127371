// Reflection over any class: prints an element and all that it contains without a line that knows a class of the model,
// and sets a property by names that could come from a file.
#include <groundwork/Unicode.hpp>
#include <iostream>
#include <plinth/Model.hpp>
#include <plinth/ReferenceCollection.hpp>
#include <plinth/Value.hpp>
#include <plinth/diagnostics/ValueText.hpp>
#include <plinth/meta/Property.hpp>
#include <plinth/meta/Type.hpp>
#include <string>
#include <tessel_config_datamodel/data/DoubleParamData.hpp>
#include <tessel_config_datamodel/runtime/ConfigurationState.hpp>
#include <tessel_config_datamodel/runtime/ParamState.hpp>

namespace data = tessel::internal::config::data;
namespace runtime = tessel::internal::config::runtime;
namespace meta = plinth::meta;

namespace {

std::string utf8(std::u16string const& text) { return groundwork::toUtf8(text); }

void print(plinth::ModelElement const& element, std::size_t depth = 0) {
  std::string const indent(2 * depth, ' ');
  meta::Class const type = element->getMetaClass();
  std::cout << indent << utf8(type->getName()) << '\n';
  for (meta::PropertyImpl const* each : type->allProperties()) {
    meta::Property const property = element->getPropertyByIndex(static_cast<unsigned long>(each->index()));
    if (each->isDerived() || !element->hasPropertyValue(property)) {
      continue;  // a view shows what another property holds
    }
    plinth::Value const value = element->getPropertyValue(property);
    if (!each->isComposite()) {
      // Links and rows of values are left out. Any other value has a text.
      if (each->isMany() || property->getType()->isClass()) continue;
      std::cout << indent << "  " << utf8(each->getName()) << " = " << plinth::valueText(value) << '\n';
    } else if (each->isMany()) {
      for (plinth::ModelElement const& inner : value.referenceCollection().getAllValues()) print(inner, depth + 1);
    } else {
      print(value.getValue<plinth::ModelElement>(), depth + 1);
    }
  }
}

}  // namespace

int main() {
  auto const model = plinth::Model::create();
  auto const state = runtime::ConfigurationState::create(model);
  auto const param = runtime::ParamState::create(model);
  param->setKey(u"gain");
  state->getParamsMutable()->insert(param);
  auto const number = data::DoubleParamData::create(model);
  param->setData(number);

  // Any element, and the name of a property: what it takes is told by the metamodel.
  plinth::ModelElement const any = number;
  meta::Property const property(any->getMetaClass()->findProperty(u"Value"));
  std::cout << "Value is a " << utf8(property->getType()->getName()) << '\n';
  any->setPropertyValue(property, plinth::Value::createPrimitiveValue(property, 1.5));
  print(state);
}
