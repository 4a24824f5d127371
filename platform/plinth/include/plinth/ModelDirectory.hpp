// The process-wide directory of models by name, by which proxies are resolved across models.
// Ownership: the directory holds no reference; a model leaves it when it ends or loses its name.
// Thread rule: safe from any thread; the models themselves are not.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "plinth/Model.hpp"

namespace plinth {

class TESSEL_EXPORT ModelDirectory {
 public:
  /// Gives the model of a name that is not in memory, or an empty handle. Whoever loads keeps the model alive.
  using Loader = std::function<Model(std::u16string const& name)>;

  static ModelDirectory& getInstance();

  /// The model of that name; `load` asks the loader for one that is not there. A model that is just ending is not
  /// there.
  Model find(std::u16string const& name, bool load) const;
  void setLoader(Loader loader);
  /// The models that have a name, in the order of their names.
  std::vector<Model> models() const;

 private:
  friend class ModelImpl;
  ModelDirectory() = default;
  /// Raises ModelNameTaken when another model has the name.
  void enter(std::u16string const& name, ModelImpl& model);
  void leave(std::u16string const& name) noexcept;

  struct State;
  static State& state();
};

}  // namespace plinth
