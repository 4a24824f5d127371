// A model and a listener: a small configuration is built and changed, and the model tells what came of it, once for
// each outermost transaction.
#include <groundwork/Unicode.hpp>
#include <iostream>
#include <plinth/ChangeSet.hpp>
#include <plinth/Model.hpp>
#include <plinth/meta/Property.hpp>
#include <plinth/meta/Type.hpp>
#include <string>
#include <tessel_config_datamodel/data/DoubleParamData.hpp>
#include <tessel_config_datamodel/runtime/ConfigurationState.hpp>
#include <tessel_config_datamodel/runtime/ParamState.hpp>

namespace data = tessel::internal::config::data;
namespace runtime = tessel::internal::config::runtime;

namespace {

// Handles are counted pointers: they are given and returned by value. What is created belongs to the model at once.
runtime::ParamState addNumber(runtime::ConfigurationState const& state, char16_t const* key, double value) {
  auto const number = data::DoubleParamData::create(state->getModel());
  number->setValue(value);
  auto const param = runtime::ParamState::create(state->getModel());
  param->setKey(key);
  param->setData(number);
  state->getParamsMutable()->insert(param);
  return param;
}

std::string className(plinth::ModelElement const& element) {
  return groundwork::toUtf8(element->getMetaClass()->getName());
}

// The records of a change set live as long as the call; each knows which properties differ, and their old values.
void print(plinth::ChangeSet const& changes) {
  std::cout << changes.created().size() << " created, " << changes.destroyed().size() << " destroyed\n";
  for (plinth::Storage const* record : changes.changed()) {
    for (plinth::meta::PropertyImpl const* property : record->element()->getMetaClass()->allProperties()) {
      if (record->isChanged(static_cast<unsigned long>(property->index()))) {
        std::cout << "  " << className(record->element()) << '.' << groundwork::toUtf8(property->getName())
                  << " differs\n";
      }
    }
  }
}

}  // namespace

int main() {
  auto const model = plinth::Model::create();
  auto const state = runtime::ConfigurationState::create(model);
  // A listener is told as long as what addListener returns is kept.
  auto const listening = model.addListener(print);

  std::cout << "Two parameters in one transaction:\n";
  {
    auto transaction = model.beginTransaction();
    addNumber(state, u"gain", 1.5);
    addNumber(state, u"offset", 0);
    transaction.commit();
  }

  auto const gain = plinth::element_cast<data::DoubleParamData>(state->getParams()->find(u"gain")->getData());
  std::cout << "One setter, a transaction of its own:\n";
  gain->setValue(3);

  std::cout << "There and back again, which nobody is told of:\n";
  {
    auto transaction = model.beginTransaction();
    gain->setValue(7);
    gain->setValue(3);
    transaction.commit();
  }

  std::cout << "What is destroyed takes along what it contains:\n";
  state->getParams()->find(u"offset")->destroy();
}
