// A test that leaves a model with one element behind: the listener has to fail it.
#include <gtest/gtest.h>

#include <tessel_config_datamodel/ext/ConfigStore.hpp>

#include "plinth/Model.hpp"

namespace {

plinth::Model& keptModel() {
  static plinth::Model model;
  return model;
}

TEST(CensusListener, Leaves) {
  keptModel() = plinth::Model::create();
  static_cast<void>(tessel::internal::ext::ConfigStore::create(keptModel()));
}

TEST(CensusListener, LeavesNothing) {
  auto const model = plinth::Model::create();
  static_cast<void>(tessel::internal::ext::ConfigStore::create(model));
}

}  // namespace
