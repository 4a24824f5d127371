// Undo by rollback: an assistant tries out changes, shows what they come to, and takes them back by leaving the
// transaction open. Whatever happened inside, the model is as before: values, order, links, and elements themselves.
#include <groundwork/Unicode.hpp>
#include <iostream>
#include <plinth/Model.hpp>
#include <plinth/diagnostics/Fingerprint.hpp>
#include <stdexcept>
#include <tessel_config_datamodel/runtime/CategoryState.hpp>
#include <tessel_config_datamodel/runtime/ConfigurationState.hpp>
#include <tessel_config_datamodel/runtime/ParamState.hpp>

namespace runtime = tessel::internal::config::runtime;

namespace {

void print(char const* when, runtime::ConfigurationState const& state) {
  std::cout << when << ':';
  for (runtime::CategoryState const& category : *state->getCategories()) {
    std::cout << ' ' << groundwork::toUtf8(category->getKey()) << '(';
    char const* separator = "";
    for (runtime::ControllableState const& member : *category->getContents()) {
      std::cout << separator << groundwork::toUtf8(member->getKey());
      separator = " ";
    }
    std::cout << ')';
  }
  std::cout << '\n';
}

runtime::CategoryState addCategory(runtime::ConfigurationState const& state, char16_t const* key) {
  auto const category = runtime::CategoryState::create(state->getModel());
  category->setKey(key);
  state->getCategoriesMutable()->add(category);
  return category;
}

runtime::ParamState addParam(runtime::CategoryState const& category, runtime::ConfigurationState const& state,
                             char16_t const* key) {
  auto const param = runtime::ParamState::create(state->getModel());
  param->setKey(key);
  state->getParamsMutable()->insert(param);
  param->setCategory(category);  // the category's contents follow
  return param;
}

}  // namespace

int main() {
  auto const model = plinth::Model::create();
  auto const state = runtime::ConfigurationState::create(model);
  auto const motion = addCategory(state, u"motion");
  auto const sound = addCategory(state, u"sound");
  auto const speed = addParam(motion, state, u"speed");
  addParam(motion, state, u"ramp");
  addParam(sound, state, u"volume");
  print("as built", state);
  auto const before = plinth::Fingerprint::of(model);

  {
    auto attempt = model.beginTransaction();
    speed->setCategory(sound);
    {
      // Transactions nest. This one ends by an exception, and takes back only what was done inside it.
      try {
        auto risky = model.beginTransaction();
        motion->destroy();
        throw std::runtime_error("it was not a good idea");
      } catch (std::runtime_error const& error) {
        print(error.what(), state);
      }
    }
    state->getParams()->find(u"volume")->destroy();
    addParam(sound, state, u"tone");
    print("tried out", state);
  }  // no commit

  print("taken back", state);
  // Handles name the same objects as before, and every property of the model is what it was.
  std::cout << "speed is in " << groundwork::toUtf8(speed->getCategory()->getKey()) << "; "
            << (diff(before, plinth::Fingerprint::of(model)) ? "something differs" : "nothing differs") << '\n';
}
