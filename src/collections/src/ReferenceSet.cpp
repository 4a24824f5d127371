#include "plinth/collections/ReferenceSet.hpp"

#include "plinth/FailurePoint.hpp"
#include "plinth/collections/ProxyTable.hpp"

namespace plinth {

bool ReferenceSet::insertRaw(ModelElement const& element, CollectionJournal* journal) {
  return insertNode(journal, [&](Container& elements) {
    failurePoint("set-insert");
    return elements.insert(element);
  });
}

bool ReferenceSet::addElement(ModelElement const& element) {
  if (element.isEmpty()) return false;
  checkCompatibleModel(element.impl());
  if (element->isProxy()) return addProxy(element);
  if (holds(element)) return false;
  if (replaceProxyBy(element)) return true;  // the far end may list the owner already
  Operation operation(*this, extentOfAdding(*element));
  announceAdding(*element);
  insertRaw(element, modifying());
  if (hasInverse()) inverseAfterAdding(*element);
  operation.commit();
  return true;
}

void ReferenceSet::genericAdd(ModelElement const& element) {
  if (!element) return;
  requireFitting(element);
  addElement(element);
}

}  // namespace plinth
