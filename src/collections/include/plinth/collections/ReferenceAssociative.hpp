// What sets and maps of elements share: a table of proxies beside the real elements, since a proxy has no key to be
// trusted. Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include <memory>
#include <vector>

#include "plinth/ReferenceCollection.hpp"

namespace plinth {

class ProxyTable;
namespace detail {
class ProxySteps;
}

class TESSEL_EXPORT ReferenceAssociative : public ReferenceCollection {
 public:
  ~ReferenceAssociative() override;

  /// The proxies that have not been resolved; null while there has been none. Complete with ProxyTable.hpp.
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
  ReferenceAssociative(ModelElementImpl* owner, meta::PropertyImpl* property, meta::PropertyImpl* opposite) noexcept;

  virtual bool holds(ModelElement const& element) const = 0;
  /// The insertion when a proxy resolves; whether it inserted.
  virtual bool resolveAdd(ModelElement const& element) = 0;
  /// Removes a real element, with its inverse step; whether it was there.
  virtual bool removeElement(ModelElement const& element) = 0;
  /// Gives up the real elements; the caller has announced it.
  virtual void resetElements(CollectionJournal* journal) = 0;
  /// Puts the element in the place of the proxy that stands for it; whether there was one.
  bool replaceProxyBy(ModelElement const& element);
  detail::ProxySteps* proxySteps(CollectionJournal* journal);
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

}  // namespace plinth
