// The root of collections of elements: what holds for sequences, sets, maps and views alike.
// Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include <vector>

#include "plinth/AbstractOwnedCollection.hpp"
#include "plinth/GenericCollection.hpp"

namespace plinth {

/// A function that is called with elements, for the length of a call that takes it.
class ElementVisitor {
 public:
  /// Any function of an element passes as it is.
  template <class F>
  // NOLINTNEXTLINE(google-explicit-constructor)
  ElementVisitor(F const& function) noexcept
      : m_function(&function),
        m_call([](void const* f, ModelElementImpl& element) { (*static_cast<F const*>(f))(element); }) {}
  ElementVisitor(ElementVisitor const&) = default;
  void operator()(ModelElementImpl& element) const { m_call(m_function, element); }

 private:
  void const* m_function;
  void (*m_call)(void const* function, ModelElementImpl& element);
};

class TESSEL_EXPORT ReferenceCollection : public AbstractOwnedCollection {
 public:
  ~ReferenceCollection() override;

  /// The class that members are of, or derive from.
  virtual meta::Class const& getCollectionType() const = 0;
  /// Whether members are contained.
  bool isComposite() const noexcept { return property() != nullptr && property()->isComposite(); }
  /// Refuses an element of another model, a dead one and, for a containment, one that would contain itself.
  void checkCompatibleModel(ModelElementImpl* element) const;
  ModelElement resolveProxy(ModelElement const& proxy) const;
  ModelElement peekResolveProxy(ModelElement const& proxy) const;

  /// The untyped view; made at the first call.
  GenericCollectionInterface* getGenericInterface();
  /// The members, proxies resolved where they can be and left out where not.
  virtual std::vector<ModelElement> getAllValues() = 0;
  /// The members as they stand, proxies included.
  virtual std::vector<ModelElement> getAllValuesAndProxies() const = 0;
  /// Whether `other`, which is of the same class, holds the same members and proxies, in the same order or under the
  /// same keys. Linear.
  virtual bool hasSameMembers(ReferenceCollection const& other) const;
  /// Calls `visit` for each real member, in order, without resolving and without counting.
  virtual void forEachReal(ElementVisitor visit) const = 0;

  virtual void genericAdd(ModelElement const& element) = 0;
  virtual void genericRemove(ModelElement const& element) = 0;
  virtual bool genericContains(ModelElement const& element) const = 0;
  virtual void clear() = 0;

  // Proxies.
  virtual void replaceProxy(ModelElement const& element) = 0;
  virtual void resolveAll() = 0;
  virtual void resolveLocal() = 0;
  /// Puts `proxy` where the collection holds `element`.
  virtual void convertToProxy(ModelElementImpl& element, ModelElement const& proxy) = 0;

  /// What the typed operations have before the generic ones, which ignore what is not there: raises
  /// CannotAddNonExistentObject for a destroyed element. An empty handle passes.
  static void requireExisting(ModelElement const& element);
  bool fits(ModelElement const& element) const;
  /// Raises CannotAddIncompatibleTypes for an element of a class that doesn't fit.
  void requireFitting(ModelElement const& element) const;

 protected:
  using AbstractOwnedCollection::AbstractOwnedCollection;

  virtual std::unique_ptr<GenericCollectionInterface> makeGenericInterface() = 0;

  // Bare changes: the container and its record, no inverse. Reached from outside by the services of ModelElementImpl.
  virtual void basicAdd(ModelElement const& element) = 0;
  virtual void basicAddWithProxy(ModelElement const& element) { basicAdd(element); }
  virtual void basicRemove(ModelElement const& element) = 0;
  /// The same for several members, which are ending. Linear in members and contents together.
  virtual void basicRemoveAll(std::vector<ModelElement> const& members);
  virtual void basicClear() = 0;
  /// Becomes a copy of `other`, which is of the same class; null empties it.
  virtual void basicCopyValues(ReferenceCollection const* other) = 0;
  virtual bool basicContainsProxyTo(ModelElementImpl& target) = 0;

  /// What follows the addition, or precedes the removal, of a member: the far end of an opposite, or the container
  /// link.
  void inverseAfterAdding(ModelElementImpl& element);
  /// A proxy has no ends of its own; what it names lets go of the owner if it is in memory.
  void inverseBeforeRemoving(ModelElementImpl& element);
  bool hasInverse() const noexcept { return owner() != nullptr && (opposite() != nullptr || isComposite()); }
  Operation::Extent extent() const noexcept { return hasInverse() ? Operation::WHOLE : Operation::SINGLE; }
  /// The step in which `element` is added. One that no container gives up is only contained: once announceAdding has
  /// been through, and room is made, nothing can fail any more.
  Operation::Extent extentOfAdding(ModelElementImpl const& element) const noexcept {
    return opposite() == nullptr && internal::core(element).basicContainer() == nullptr ? Operation::SINGLE : extent();
  }
  /// Announces what will change in `element` itself; call before the addition, inside its Operation.
  void announceAdding(ModelElementImpl& element) {
    if (owner() != nullptr && opposite() == nullptr && isComposite()) internal::core(element).notifyModifying(0);
  }
  /// The owner, to keep it while a loader runs, which may destroy it.
  ModelElement heldOwner() const noexcept { return ModelElement(owner()); }
  /// Whether the element may come in for a proxy that names it.
  bool mayTakePlace(ModelElement const& element) const;
  /// Whether `found`, which a proxy names, may come in for it: mayTakePlace, and for an opposite it lists the owner.
  /// Asking may put it in the proxy's place.
  bool isConfirmed(ModelElement const& found) const;
  /// Whether the far end of an opposite lists the owner, by a proxy if need be; false where there is no opposite.
  bool listsOwner(ModelElementImpl& element) const;

 private:
  friend internal::ElementCore;
  std::unique_ptr<GenericCollectionInterface> m_generic;
};

}  // namespace plinth
