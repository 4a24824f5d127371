// A query: finds elements by what they hold and by what they are linked to. Conditions are written with the properties
// of the class, so that the compiler checks their types.
#include <algorithm>
#include <groundwork/Unicode.hpp>
#include <iostream>
#include <plinth/Model.hpp>
#include <plinth/Query.hpp>
#include <string>
#include <tessel_config_datamodel/runtime/ConfigurationState.hpp>
#include <tessel_config_datamodel/runtime/ParamState.hpp>
#include <tessel_config_datamodel/runtime/Queries.hpp>
#include <tessel_config_datamodel/runtime/TagState.hpp>
#include <vector>

namespace runtime = tessel::internal::config::runtime;
using plinth::query::Query;
using runtime::ParamState;

namespace {

runtime::TagState addTag(runtime::ConfigurationState const& state, char16_t const* id) {
  auto const tag = runtime::TagState::create(state->getModel());
  tag->setId(id);
  state->getTagsMutable()->insert(tag);
  return tag;
}

ParamState addParam(runtime::ConfigurationState const& state, std::u16string const& key, bool internal) {
  auto const param = ParamState::create(state->getModel());
  param->setKey(key);
  param->setInternal(internal);
  state->getParamsMutable()->insert(param);
  return param;
}

// A query gives elements in no order that anybody may rely on.
void print(char const* question, std::vector<ParamState> const& found) {
  std::vector<std::string> keys;
  for (ParamState const& param : found) {
    keys.push_back(groundwork::toUtf8(param->getKey()));
  }
  std::sort(keys.begin(), keys.end());
  std::cout << question << ':';
  for (std::string const& key : keys) {
    std::cout << ' ' << key;
  }
  std::cout << '\n';
}

}  // namespace

int main() {
  auto const model = plinth::Model::create();
  auto const state = runtime::ConfigurationState::create(model);
  auto const expert = addTag(state, u"expert");
  addParam(state, u"motor.speed", false);
  addParam(state, u"motor.ramp", false)->getTagsMutable()->add(expert);
  addParam(state, u"motor.calibration", true)->getTagsMutable()->add(expert);
  addParam(state, u"display.contrast", false);

  auto const ofMotor = ParamState::key().startsWith(u"motor.");
  print("of the motor", Query<ParamState>(model).where(ofMotor).find());
  print("of the motor, for a user", Query<ParamState>(model).where(ofMotor && ParamState::internal() == false).find());
  print("not of the motor", Query<ParamState>(model).where(!ofMotor).find());
  print("for experts", Query<ParamState>(model).where(ParamState::tags().relatesTo(expert)).find());
  print("for experts, and speed",
        Query<ParamState>(model)
            .where(ParamState::tags().relatesTo(expert) || ParamState::key().endsWith(u"speed"))
            .find());

  // A query looks at every element of its class. What has a key is found faster by the map that it lies in.
  std::cout << "by its key: " << groundwork::toUtf8(state->getParams()->find(u"display.contrast")->getKey()) << '\n';
}
