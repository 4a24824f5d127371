// What one outermost commit did, as its listeners see it.
// Ownership: valid until the listener returns; handles taken from it stay valid.
// Thread rule: the model's thread.
#pragma once

#include <functional>
#include <vector>

#include "plinth/Changes.hpp"

namespace plinth {

class ChangeSet {
 public:
  /// Elements that the transaction created and did not destroy.
  std::vector<ModelElement> const& created() const noexcept { return m_created; }
  /// A record for each element that was there before, still is, and has a property whose value differs.
  std::vector<Storage const*> const& changed() const noexcept { return m_changed; }
  /// Elements that the transaction destroyed and did not create; their handles are dead.
  std::vector<ModelElement> const& destroyed() const noexcept { return m_destroyed; }
  bool empty() const noexcept { return m_created.empty() && m_changed.empty() && m_destroyed.empty(); }

 protected:
  std::vector<ModelElement> m_created;
  std::vector<Storage const*> m_changed;
  std::vector<ModelElement> m_destroyed;
};

/// Told once for each outermost commit that changed something. May open transactions of its own: those are told
/// afterwards, in order. An exception out of it stops neither the other listeners nor the commit; see
/// Model::takeListenerErrors.
class ChangeListener : public std::function<void(ChangeSet const&)> {
 public:
  using function::function;
};

}  // namespace plinth
