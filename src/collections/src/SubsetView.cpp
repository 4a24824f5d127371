#include "plinth/collections/SubsetView.hpp"

#include "CollectionView.hpp"
#include "plinth/Messages.hpp"

namespace plinth {

SubsetView::SubsetView(ReferenceCollection& parent, Filter filter, ModelElementImpl* owner,
                       meta::PropertyImpl* property)
    : ReferenceCollection(owner, property, nullptr), m_parent(&parent), m_filter(std::move(filter)) {}

void SubsetView::forEachReal(ElementVisitor visit) const {
  m_parent->forEachReal([&](ModelElementImpl& element) {
    if (shows(ModelElement(&element))) visit(element);
  });
}

void SubsetView::addElement(ModelElement const& element) {
  requireExisting(element);
  if (m_filter && !element.isEmpty() && !m_filter(element)) {
    reportException(messages::CannotAddIncompatibleObjectSubset());
  }
  m_parent->genericAdd(element);
}

bool SubsetView::containsElement(ModelElement const& element) const {
  return shows(element) && m_parent->genericContains(element);
}

std::vector<ModelElement> SubsetView::getAllValues() {
  std::vector<ModelElement> values;
  for (ModelElement const& element : m_parent->getAllValues()) {
    if (shows(element)) values.push_back(element);
  }
  return values;
}

std::vector<ModelElement> SubsetView::getAllValuesAndProxies() const {
  std::vector<ModelElement> values;
  for (ModelElement const& element : m_parent->getAllValuesAndProxies()) {
    if (shows(element)) values.push_back(element);
  }
  return values;
}

void SubsetView::genericAdd(ModelElement const& element) {
  if (!element) return;
  requireFitting(element);
  addElement(element);
}

void SubsetView::genericRemove(ModelElement const& element) {
  if (!element) return;
  requireFitting(element);
  m_parent->genericRemove(element);
}

void SubsetView::clear() {
  std::vector<ModelElement> const members = shown();
  if (members.empty()) return;
  Operation operation(*this, Operation::WHOLE);
  for (ModelElement const& element : members) m_parent->genericRemove(element);
  operation.commit();
}

std::unique_ptr<GenericCollectionInterface> SubsetView::makeGenericInterface() {
  return std::make_unique<WrapperInterface<ReferenceCollection>>(*this);
}

}  // namespace plinth
