// A view of those members of another collection that are of a class and pass a filter, without their element type. It
// stores nothing: what is added or removed goes to the parent collection. Ownership: the parent outlives the view.
// Thread rule: the model's thread.
#pragma once

#include <functional>

#include "plinth/ReferenceCollection.hpp"

namespace plinth {

class TESSEL_EXPORT SubsetView : public ReferenceCollection {
 public:
  using Filter = std::function<bool(ModelElement const&)>;

  ReferenceCollection& parent() const noexcept { return *m_parent; }
  /// By walking the parent.
  std::size_t size() const { return rawSize(); }

  /// Adds to the parent; an empty handle is ignored. Raises CannotAddIncompatibleObjectSubset for an element that the
  /// filter rejects, CannotAddNonExistentObject for a destroyed one, and what the parent raises.
  void addElement(ModelElement const& element);
  bool containsElement(ModelElement const& element) const;

  std::vector<ModelElement> getAllValues() override;
  std::vector<ModelElement> getAllValuesAndProxies() const override;
  void forEachReal(ElementVisitor visit) const override;
  void genericAdd(ModelElement const& element) override;
  void genericRemove(ModelElement const& element) override;
  bool genericContains(ModelElement const& element) const override { return containsElement(element); }
  void clear() override;
  void replaceProxy(ModelElement const& element) override { m_parent->replaceProxy(element); }
  void resolveAll() override { m_parent->resolveAll(); }
  void resolveLocal() override { m_parent->resolveLocal(); }
  void convertToProxy(ModelElementImpl&, ModelElement const&) override {}

  std::size_t oldSize() const override { return rawSize(); }
  std::unique_ptr<AbstractOwnedCollection> oldContents() const override { return nullptr; }
  std::unique_ptr<AbstractOwnedCollection> copyContents() const override { return nullptr; }

 protected:
  SubsetView(ReferenceCollection& parent, Filter filter, ModelElementImpl* owner, meta::PropertyImpl* property);
  std::unique_ptr<GenericCollectionInterface> makeGenericInterface() override;
  std::unique_ptr<CollectionJournal> makeJournal() override { return nullptr; }
  void basicAdd(ModelElement const&) override {}
  void basicRemove(ModelElement const&) override {}
  void basicClear() override {}
  void basicCopyValues(ReferenceCollection const*) override {}
  bool basicContainsProxyTo(ModelElementImpl&) override { return false; }
  /// What a walk over the view meets.
  virtual std::vector<ModelElement> shown() const = 0;
  bool shows(ModelElement const& element) const { return fits(element) && (!m_filter || m_filter(element)); }

 private:
  ReferenceCollection* m_parent;
  Filter m_filter;
};

}  // namespace plinth
