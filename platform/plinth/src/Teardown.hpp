// Drives the teardown of an element and of all it contains. Children wait in a list of the model, so that the depth of
// a tree costs no stack. Thread rule: the model's thread.
#pragma once

#include "plinth/Model.hpp"

namespace plinth {

class Teardown {
 public:
  static void destroy(ModelElementImpl& element);
  static void destroyContained(ModelElementImpl& element, bool flag1, bool detach, bool flag2);

 private:
  static void drain(ModelImpl& model, bool flag1, bool flag2);
  static void end(ModelElementImpl& element, bool flag1, bool flag2);
  static void detach(ModelElementImpl& element);
};

}  // namespace plinth
