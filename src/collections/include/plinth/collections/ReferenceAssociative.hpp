// What sets and maps of elements share: a table of proxies beside the real elements, since a proxy has no key to be
// trusted. Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include <memory>
#include <unordered_map>

#include "plinth/ReferenceCollection.hpp"
#include "plinth/collections/NodeJournal.hpp"

namespace plinth {

using ProxyTable = std::unordered_map<ProxyId, ModelElement, ProxyIdHash>;

class TESSEL_EXPORT ReferenceAssociative : public ReferenceCollection {
 public:
  /// The proxies that have not been resolved; null while there has been none.
  ProxyTable const* proxies() const noexcept { return m_proxies.get(); }
  /// Keeps the proxy under its id; whether it is the first of that id. Raises CannotCreateCrossModelAssociation where a
  /// containment would reach into another model.
  bool addProxy(ModelElement const& proxy);
  /// Whether there was one of that id.
  bool removeProxy(ModelElement const& proxy);
  /// Removes the proxies that stand for the element, if there are any.
  void removeProxyFor(ModelElement const& element);
  /// Removes a member, which may be dead, or a proxy; whether it was there.
  bool removeMember(ModelElement const& element);

  std::vector<ModelElement> getAllValues() override;
  std::vector<ModelElement> getAllValuesAndProxies() const override;
  bool genericContains(ModelElement const& element) const override { return fits(element) && holds(element); }
  void genericRemove(ModelElement const& element) override;
  void replaceProxy(ModelElement const& element) override;
  void resolveAll() override { resolve(false); }
  void resolveLocal() override { resolve(true); }
  void convertToProxy(ModelElementImpl& element, ModelElement const& proxy) override;
  void clear() override;

 protected:
  using ReferenceCollection::ReferenceCollection;

  virtual bool holds(ModelElement const& element) const = 0;
  /// The insertion when a proxy resolves; whether it inserted.
  virtual bool resolveAdd(ModelElement const& element) = 0;
  /// Removes a real element, with its inverse step; whether it was there.
  virtual bool removeElement(ModelElement const& element) = 0;
  /// Gives up the real elements; the caller has announced it.
  virtual void resetElements(CollectionJournal* journal) = 0;
  /// Puts the element in the place of the proxy that stands for it; whether there was one.
  bool replaceProxyBy(ModelElement const& element);
  detail::NodeSteps<ProxyTable>* proxySteps(CollectionJournal* journal);
  /// Becomes a deep copy of the other's proxies, or has none.
  void copyProxies(ReferenceAssociative const* other, CollectionJournal* journal);
  std::unique_ptr<ProxyTable>& proxyTable() noexcept { return m_proxies; }
  ProxyTable& requireProxyTable();
  std::unique_ptr<GenericCollectionInterface> makeGenericInterface() override;
  void basicAddWithProxy(ModelElement const& element) override;
  bool basicContainsProxyTo(ModelElementImpl& target) override;

 private:
  void resolve(bool localOnly);
  bool keeps(ModelElement const& proxy) const;
  /// The proxy that bears the id of the element in its model or, `local`, within one; an empty handle where none does.
  ModelElement proxyFor(ModelElement const& element, bool local) const;
  void takeIn(ModelElement const& proxy, ModelElement const& real);
  std::unique_ptr<ProxyTable> m_proxies;
};

namespace detail {

/// The journal of a set or map: its container's nodes and its proxies', in one order.
class TESSEL_EXPORT AssociativeJournal : public CollectionJournal {
 public:
  explicit AssociativeJournal(std::unique_ptr<ProxyTable>& proxies) noexcept : m_proxyTable(&proxies) {}
  std::size_t steps() const noexcept override { return m_order.size(); }
  void clear() noexcept override;
  void undoTo(std::size_t mark) noexcept override;

  /// Makes room for one step of either kind, and notes which kind it is. Call before the change.
  void reserve();
  void note(bool ofProxies) noexcept { m_order.push_back(ofProxies); }
  NodeSteps<ProxyTable>& proxySteps() noexcept { return m_proxySteps; }
  NodeSteps<ProxyTable> const& proxySteps() const noexcept { return m_proxySteps; }

 protected:
  virtual void undoElement() noexcept = 0;
  virtual void clearElements() noexcept = 0;

 private:
  std::unique_ptr<ProxyTable>* m_proxyTable;
  NodeSteps<ProxyTable> m_proxySteps;
  std::vector<bool> m_order;
};

template <class C>
class AssociativeJournalOf final : public AssociativeJournal {
 public:
  AssociativeJournalOf(C& container, std::unique_ptr<ProxyTable>& proxies) noexcept
      : AssociativeJournal(proxies), m_container(&container) {}
  NodeSteps<C>& nodes() noexcept { return m_nodes; }
  NodeSteps<C> const& nodes() const noexcept { return m_nodes; }

 protected:
  void undoElement() noexcept override { m_nodes.undoLast(*m_container); }
  void clearElements() noexcept override { m_nodes.clear(); }

 private:
  C* m_container;
  NodeSteps<C> m_nodes;
};

}  // namespace detail

}  // namespace plinth
