// The proxies of a set or map of elements, and the undo of both.
// Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "plinth/ProxyId.hpp"
#include "plinth/collections/NodeJournal.hpp"
#include "plinth/collections/ReferenceAssociative.hpp"

namespace plinth {

class ProxyTable : public std::unordered_map<ProxyId, ModelElement, ProxyIdHash> {
 public:
  using unordered_map::unordered_map;
};

namespace detail {

class ProxySteps : public NodeSteps<ProxyTable> {};

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
  ProxySteps& proxySteps() noexcept { return m_proxySteps; }
  ProxySteps const& proxySteps() const noexcept { return m_proxySteps; }

 protected:
  virtual void undoElement() noexcept = 0;
  virtual void clearElements() noexcept = 0;

 private:
  std::unique_ptr<ProxyTable>* m_proxyTable;
  ProxySteps m_proxySteps;
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
