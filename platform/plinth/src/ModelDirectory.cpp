#include "plinth/ModelDirectory.hpp"

#include <algorithm>
#include <mutex>
#include <unordered_map>

#include "plinth/Messages.hpp"

namespace plinth {

struct ModelDirectory::State {
  std::mutex mutex;
  std::unordered_map<std::u16string, ModelImpl*> models;
  Loader loader;
};

ModelDirectory& ModelDirectory::getInstance() {
  static ModelDirectory* const instance = new ModelDirectory();
  return *instance;
}

ModelDirectory::State& ModelDirectory::state() {
  static State* const state = new State();  // outlives the models of static objects
  return *state;
}

Model ModelDirectory::find(std::u16string const& name, bool load) const {
  Loader loader;
  {
    std::lock_guard const lock(state().mutex);
    auto const found = state().models.find(name);
    // One whose last handle has gone on another thread leaves as soon as it gets the lock.
    if (found != state().models.end() && found->second->tryAddRef()) return Model(found->second, Adopt{});
    if (load) loader = state().loader;
  }
  return loader ? loader(name) : Model();
}

void ModelDirectory::setLoader(Loader loader) {
  std::lock_guard const lock(state().mutex);
  state().loader = std::move(loader);
}

std::vector<Model> ModelDirectory::models() const {
  std::vector<Model> models;
  {
    std::lock_guard const lock(state().mutex);
    for (auto const& [name, model] : state().models) {
      if (model->tryAddRef()) models.emplace_back(model, Adopt{});
    }
  }
  std::sort(models.begin(), models.end(),
            [](Model const& left, Model const& right) { return left->name() < right->name(); });
  return models;
}

void ModelDirectory::enter(std::u16string const& name, ModelImpl& model) {
  std::lock_guard const lock(state().mutex);
  if (!state().models.emplace(name, &model).second) reportException(messages::ModelNameTaken(name));
}

void ModelDirectory::leave(std::u16string const& name) noexcept {
  std::lock_guard const lock(state().mutex);
  state().models.erase(name);
}

}  // namespace plinth
