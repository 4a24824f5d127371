// Drives the teardown of an element and of all it contains: children in the order of their properties, each with all
// below it, and then the element itself. What waits stands in a list of the model, so that the depth of a tree costs no
// stack. Thread rule: the model's thread.
#pragma once

#include "plinth/Model.hpp"

namespace plinth {

class Teardown {
 public:
  static void destroy(ModelElementImpl& element);
  /// Raises CannotModifyOutsideTransaction.
  static void destroyContained(ModelElementImpl& element, bool flag1, bool detach, bool flag2);

 private:
  static void drain(ModelImpl& model, bool flag1, bool flag2);
  static void begin(ModelElementImpl& element, bool flag1, bool flag2);
  static void end(ModelElementImpl& element);
  static void detach(ModelElementImpl& element);
};

}  // namespace plinth
