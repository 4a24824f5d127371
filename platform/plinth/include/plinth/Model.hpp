// A model: the elements that live and change together, their transactions and their listeners.
// Ownership: a model holds its elements and ends with its last handle; elements then go with it, whatever cycles of
// references they form. Handles to them that are still about become dead ones.
// Thread rule: one model is used from one thread at a time; different models are independent.
#pragma once

#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "plinth/ModelElement.hpp"
#include "plinth/Transaction.hpp"

namespace plinth {

class ChangeListener;
class ElementDirectory;

/// Keeps a listener registered; letting go of it takes the listener out.
using ListenerRegistration = std::shared_ptr<void>;

namespace internal {

/// What every step and many a setter and getter look at first. The kernel keeps it up to date.
struct StepState {
  std::uint32_t level = 0;  ///< how many transactions are open
  std::int32_t freezes = 0;
  std::int32_t resolveSuppression = 0;
  bool isLogOff = false;  ///< changes need no undo: they are undo themselves, or a store that nothing takes back
  std::size_t const* listenerCount = nullptr;
};

/// The kernel's door to a model.
inline StepState& stepOf(ModelImpl& model) noexcept;

}  // namespace internal

class TESSEL_EXPORT Model : public Handle {
 public:
  using Impl = ModelImpl;

  Model() noexcept = default;
  explicit Model(ModelImpl* impl) noexcept;
  Model(ModelImpl* impl, Adopt adopt) noexcept;

  /// A new, empty model.
  [[nodiscard]] static Model create();
  static meta::Class const& metaClass();

  ModelImpl* impl() const noexcept;
  ModelImpl* operator->() const noexcept { return impl(); }

  /// This model. Raises NoModel when the handle is empty.
  ModelImpl& require() const;

  /// Begins a transaction, nested in the innermost open one. Raises NoModel, CannotModifyFrozenModel,
  /// TransactionsNestedTooDeeply. Allocates nothing once warm.
  [[nodiscard]] Transaction beginTransaction() const;
  /// Tells `listener` of each outermost commit from now on, until the registration is let go; complete with
  /// plinth/ChangeSet.hpp. Raises NoModel, NoListener.
  [[nodiscard]] ListenerRegistration addListener(ChangeListener listener) const;

  class Freezer;
  class Thawer;
};

enum class FindElementBehavior { LOAD = 0, IN_MEMORY = 1 };

class TESSEL_EXPORT ModelImpl : public ElementImpl {
 public:
  ~ModelImpl() override;

  // Transactions.
  /// Begins a transaction, nested in the innermost open one. `thawed` is for whoever holds the thaw of a frozen model.
  /// Raises CannotModifyFrozenModel, TransactionsNestedTooDeeply. Allocates nothing once warm.
  [[nodiscard]] Transaction beginTransaction(bool thawed);
  std::uint32_t level() const noexcept { return m_step.level; }
  bool isFrozen() const noexcept { return m_step.freezes > 0; }
  /// Whether a store now is nobody's business: no transaction could take it back, and no listener hears of it.
  bool isUnobserved() const noexcept { return level() == 0 && !isFrozen() && *m_step.listenerCount == 0; }
  /// How many steps the open transactions keep for their undo; 0 where none is open.
  std::size_t undoSize() const noexcept;

  // Elements.
  /// The live element of this UUID, or an empty handle; all elements of a model are in memory, so that the behaviors
  /// agree. O(1).
  [[nodiscard]] ModelElement findElement(boost::uuids::uuid const& uuid, FindElementBehavior behavior) const;
  std::size_t elementCount() const noexcept;
  /// Complete with plinth/ElementDirectory.hpp.
  ElementDirectory const& directory() const noexcept;

  // Proxies.
  /// The live element that `proxy` names, loading its model if a loader knows it; `proxy` itself if it can't be had.
  ModelElement resolveProxy(ModelElementImpl const* referrer, ModelElement const& proxy);
  /// The same without loading anything.
  ModelElement peekResolveProxy(ModelElementImpl const* referrer, ModelElement const& proxy) const;
  /// A proxy of class `metaClass` in this model. Raises CannotCreateAbstractClass.
  ModelElement createProxy(meta::Class const& metaClass, ProxyId const& id);
  ProxyId const* proxyId(ModelElementImpl const& element) const noexcept;
  /// The proxies of this model that are in memory, in no order. Linear.
  std::vector<ModelElementImpl const*> proxies() const;
  /// Takes `element` and all it contains out of memory: other models keep proxies to it, this one lets go of it. What
  /// other models change ends as this model's transaction does. Raises CannotUnloadForeignElement for another model's
  /// element, CannotModifyProxy, and what a change that reaches into another model raises. Linear in what is unloaded.
  void unload(ModelElement const& element);

  /// While at 1 or above, getters of qualified maps leave proxies as they are.
  std::int32_t resolveSuppression() const noexcept { return m_step.resolveSuppression; }
  /// Taking in what a map's proxies name is a change: not while that is suppressed, and not while the model is frozen.
  bool mayResolveOnRead() const noexcept { return m_step.resolveSuppression < 1 && !isFrozen(); }
  class ResolveSuppression;

  /// The name under which other models find this one; empty for a model that can't be referred to.
  std::u16string const& name() const noexcept { return m_name; }
  /// Enters the model in the process-wide directory; no transaction takes it back. Raises ModelNameTaken.
  void setName(std::u16string name);

  /// The last errors, KEPT_LISTENER_ERRORS at most, that listeners have raised since the last call, oldest first.
  [[nodiscard]] std::vector<std::exception_ptr> takeListenerErrors();
  /// How many errors listeners have raised since the last call of takeListenerErrors, those included that are not kept.
  std::size_t listenerErrorCount() const noexcept;
  static constexpr std::size_t KEPT_LISTENER_ERRORS = 16;

 protected:
  ModelImpl();

 private:
  friend internal::StepState& internal::stepOf(ModelImpl& model) noexcept;

  internal::StepState m_step;
  std::u16string m_name;
};

namespace internal {
inline StepState& stepOf(ModelImpl& model) noexcept { return model.m_step; }
}  // namespace internal

/// While it lives, getters of qualified maps leave proxies as they are. Nests.
class ModelImpl::ResolveSuppression {
 public:
  explicit ResolveSuppression(ModelImpl& model) noexcept : m_step(&internal::stepOf(model)) {
    ++m_step->resolveSuppression;
  }
  ResolveSuppression(ResolveSuppression const&) = delete;
  ResolveSuppression& operator=(ResolveSuppression const&) = delete;
  ~ResolveSuppression() { --m_step->resolveSuppression; }

 private:
  internal::StepState* m_step;
};

/// A model is no element of a model.
bool operator==(Model const&, ModelElement const&) = delete;
bool operator==(ModelElement const&, Model const&) = delete;
bool operator!=(Model const&, ModelElement const&) = delete;
bool operator!=(ModelElement const&, Model const&) = delete;

inline Model::Model(ModelImpl* impl) noexcept : Handle(impl) {}
inline Model::Model(ModelImpl* impl, Adopt adopt) noexcept : Handle(impl, adopt) {}
inline ModelImpl* Model::impl() const noexcept { return static_cast<ModelImpl*>(elementImpl()); }

inline bool internal::ElementCore::needsNoOldValues() const noexcept {
  StepState const& step = stepOf(*m_model);
  return (m_state & ANNOUNCED) == 0 || m_createdLevel == step.level || step.isLogOff;
}

}  // namespace plinth
