// Drives the teardown of an element and of all it contains: children in the order of their properties, each with all
// below it, and then the element itself. What waits stands in a list of the model, so that the depth of a tree costs no
// stack. So do the far ends of links that go meanwhile: each lets go of all that has left it at the end, so that
// elements which share one cost no search each. Thread rule: the model's thread.
#pragma once

#include "ModelState.hpp"

namespace plinth {

class Teardown {
 public:
  static void destroy(ModelElementImpl& element);
  /// Raises CannotModifyOutsideTransaction.
  static void destroyContained(ModelElementImpl& element, bool flag1, bool detach, bool flag2);
  /// Has them leave all their links, with proxies left in other models; call inside a transaction.
  static void convertToProxies(internal::ModelState& model, std::vector<ModelElementImpl*> const& elements);

 private:
  /// One teardown. Another may begin while it runs, from a hook or a loader, and ends before it goes on: what waits
  /// then stands behind what was there before.
  struct Run {
    explicit Run(internal::ModelState& running) noexcept;
    Run(Run const&) = delete;
    Run& operator=(Run const&) = delete;
    ~Run();
    internal::ModelState& model;
    std::size_t waitingBefore;
    std::size_t leavingBefore;
  };

  static bool hasBegun(ModelElementImpl const& element) noexcept;
  static void wait(ModelElementImpl& element);
  static void start(ModelElementImpl& element, bool flag1, bool detachFirst, bool flag2);
  static void drain(Run const& run, bool flag1, bool flag2);
  static void begin(ModelElementImpl& element, bool flag1, bool flag2);
  static void end(ModelElementImpl& element);
  /// Has each collection that was left let go of those that left it, from that entry on.
  static void sweep(internal::ModelState& model, std::size_t from);
  static void detach(ModelElementImpl& element);
};

}  // namespace plinth
