// What a model keeps: the one state that the sources of the kernel share. Users see ModelImpl, its base.
// Ownership and thread rule: see plinth/Model.hpp.
#pragma once

#include <unordered_map>
#include <vector>

#include "ChangePublisher.hpp"
#include "ElementIndex.hpp"
#include "LevelTies.hpp"
#include "RecordPool.hpp"
#include "UndoLog.hpp"
#include "plinth/Model.hpp"
#include "plinth/ProxyId.hpp"

namespace plinth::internal {

class ModelState final : public ModelImpl {
 public:
  ModelState();
  ~ModelState() override;

  void begin(bool thawed);
  /// Ends the innermost level for good; the outermost one tells the listeners.
  void commit();
  /// Takes back the innermost level, and what is tied to it in other models.
  void rollBack() noexcept;
  void announce(ElementCore& element);
  /// What `id` names, if it is in memory or, with `load`, a loader has it.
  ModelElement lookUp(ProxyId const& id, bool load) const;

  /// A member that has said that it leaves a collection.
  struct Leaving {
    ModelElement owner;  ///< of the collection, which ends with it
    ReferenceCollection* collection;
    ModelElement element;
  };

  StepState& step;
  RecordPool pool;
  UndoLog log;
  ElementIndex elements;
  ChangePublisher publisher;
  std::unordered_map<ModelElementImpl const*, ProxyId> proxyIds;
  LevelTies ties;
  std::vector<ModelElementImpl*> teardown;  ///< elements whose teardown waits; see Teardown
  std::vector<Leaving> leaving;             ///< see Teardown
  bool isCollectingChildren = false;        ///< an element that is torn down names what goes with it

 private:
  void commitOutermost();
  void commitGroup();
};

inline ModelState& stateOf(ModelImpl& model) noexcept { return static_cast<ModelState&>(model); }
inline ModelState const& stateOf(ModelImpl const& model) noexcept { return static_cast<ModelState const&>(model); }

}  // namespace plinth::internal
