#include "plinth/collections/ReferenceSet.hpp"

#include "plinth/FailurePoint.hpp"

namespace plinth {

bool ReferenceSet::insertRaw(ModelElement const& element, CollectionJournal* journal) {
  return insertNode(journal, [&](Container& elements) {
    failurePoint("set-insert");
    return elements.insert(element);
  });
}

void ReferenceSet::addElement(ModelElement const& element) {
  if (element.isEmpty()) return;
  checkCompatibleModel(element.impl());
  if (element->isProxy()) {
    addProxy(element);
    return;
  }
  if (holds(element)) return;
  Operation operation(*this, extentOfAdding(*element));
  announceAdding(*element);
  insertRaw(element, modifying());
  if (hasInverse()) inverseAfterAdding(*element);
  operation.commit();
}

void ReferenceSet::genericAdd(ModelElement const& element) {
  if (!element) return;
  requireFitting(element);
  addElement(element);
}

}  // namespace plinth
