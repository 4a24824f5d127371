#include "tessel_config_datamodel/frame/SingleElement.hpp"

#include "plinth/CascadeSteps.hpp"
#include "plinth/Messages.hpp"
#include "plinth/ProxyId.hpp"
#include "plinth/Step.hpp"

namespace tessel::frame {

using plinth::ModelElement;
using plinth::ModelElementImpl;

namespace {

/// Resolving is no modification and needs no notice, as long as the element, and its end of the link, can't go back to
/// where they came from; in another model the proxy stays until they can't. In a containment it is one: the element
/// becomes a child.
void takePlaceOfProxy(Element& self, ElementField& field, PropertyDescriptor const& row, ModelElement real) {
  if (row.property->isComposite()) {
    plinth::Step step(self.model(), plinth::Step::WHOLE);
    core(self).notifyModifying(row.index);
    core(self)._setContainedByThis(real.impl(), *row.property);
    field = std::move(real);
    step.commit();
    return;
  }
  bool const mayBeTakenBack = core(*real).mayBeTakenBack(row.property->opposite());
  if (mayBeTakenBack && &real->model() != &self.model()) return;
  if (mayBeTakenBack && self.model().level() > 0) core(self).notifyModifying(row.index);
  field = std::move(real);
}

}  // namespace

namespace {

/// Puts what a proxy names in its place, if it can be had and may stand there.
void resolveElement(Element& self, ElementField& field, PropertyDescriptor const& row) {
  ModelElement const held(&self);  // a loader may destroy it
  ModelElement const proxy = field;
  ModelElement resolved = self.model().resolveProxy(&self, proxy);
  if (field != proxy) return;  // a loader has set it
  if (!core(self).mayReplaceProxy(*resolved, *row.property)) return;
  auto* const opposite = row.property->opposite();
  if (opposite != nullptr && !core(self)._inverseContainsThis(resolved.impl(), *opposite)) return;
  takePlaceOfProxy(self, field, row, std::move(resolved));
}

}  // namespace

ElementField const& refreshElement(Element& self, ElementField& field, PropertyDescriptor const& row) {
  static ElementField const none;
  if (field) {
    resolveElement(self, field, row);
  } else if (core(*field.impl()).modelIdentity() != core(self).modelIdentity()) {
    // One that its model's open transaction has destroyed may live again: it stays, and is not shown.
    if (core(*field.impl()).mayLiveAgain()) return none;
    field = ModelElement();
  }
  return field;
}

namespace {

/// The setter of every kind of single element: checks, compares, and runs `store` in a step.
template <class Store>
void setElement(Element& self, ElementField& field, ModelElement const& target, PropertyDescriptor const& row,
                plinth::Step::Extent extent, Store const& store) {
  core(self).requireModifiable();
  if (readElement(self, field, row) == target) return;
  core(self).requireModifiable();  // a loader may have destroyed it
  core(self).checkCompatibleModel(target.impl(), *row.property);
  plinth::Step step(self.model(), extent);
  core(self).notifyModifying(row.index);
  store();
  step.commit();
}

}  // namespace

void setReference(Element& self, ElementField& field, ModelElement const& target, PropertyDescriptor const& row) {
  setElement(self, field, target, row, plinth::Step::STORE, [&] { basicSetElement(field, target); });
}

void setOppositeReference(Element& self, ElementField& field, ModelElement const& target,
                          PropertyDescriptor const& row) {
  setElement(self, field, target, row, plinth::Step::WHOLE, [&] {
    auto& opposite = *row.property->opposite();
    ModelElement const former = field;
    if (former) core(self)._inverseRemoveThis(former.impl(), opposite);
    basicSetElement(field, target);
    core(self)._inverseAddThis(target.impl(), opposite, true);
  });
}

void setContainment(Element& self, ElementField& field, ModelElement const& target, PropertyDescriptor const& row) {
  // A child that no container gives up, for a field that is empty: once its link is announced, nothing can fail any
  // more.
  bool const isFirst = field.isEmpty() && target && core(*target).basicContainer() == nullptr;
  setElement(self, field, target, row, isFirst ? plinth::Step::STORE : plinth::Step::WHOLE, [&] {
    if (isFirst) core(*target).notifyModifying(0);  // of a proxy, which has no container, nothing is kept
    if (field && !field->isProxy()) core(self)._basicSetUncontained(field.impl());
    basicSetElement(field, target);
    if (target) core(self)._setContainedByThis(target.impl(), *row.property);
  });
}

void basicSet(ModelElement const& element, plinth::meta::Property const& property, ModelElement const& target) {
  auto& owner = static_cast<Element&>(*element);
  auto const* const row = property.isEmpty() ? nullptr : findDescriptor(owner.classTable(), *property.impl());
  if (row == nullptr || row->kind->group() != FieldGroup::SINGLE_ELEMENT) {
    plinth::reportException(plinth::messages::NoSuchProperty(
        property.isEmpty() ? std::u16string() : property->getName(), owner.getMetaClass()->getQualifiedName()));
  }
  basicSetElement(fieldOf<ElementField>(owner, *row), target);
}

bool SingleElementKind::has(Element const& element, Row const& row) const {
  return static_cast<bool>(fieldOf<ElementField>(element, row));
}

plinth::Value SingleElementKind::get(Element& element, Row const& row, Tag const& tag) const {
  auto& field = fieldOf<ElementField>(element, row);
  ModelElement const target = tag.resolvesProxies() ? readElement(element, field, row) : field;
  plinth::meta::TypeImpl* const type = target ? target->getMetaClass().impl() : row.property->type();
  return plinth::Value::makeUnchecked<ModelElement>(plinth::ValueMeta(type, plinth::meta::SINGLE), target);
}

void SingleElementKind::set(Element& element, Row const& row, plinth::Value const& value, Tag const& tag) const {
  ModelElement const target = elementFrom(value, row);
  auto& field = fieldOf<ElementField>(element, row);
  if (tag.resolvesProxies() || !target || target->isProxy() || !field || !field->isProxy()) {
    store(element, row, target);
    return;
  }
  // The comparison in the setter must not resolve the proxy, so the field is cleared first: with the setter's checks
  // before it, and the proxy kept for an undo.
  core(element).requireModifiable();
  core(element).checkCompatibleModel(target.impl(), *row.property);
  plinth::Step step(element.model(), plinth::Step::WHOLE);
  core(element).notifyModifying(row.index);
  if (auto* const opposite = row.property->opposite()) core(element)._inverseRemoveThis(field.impl(), *opposite);
  field = ModelElement();
  store(element, row, target);
  step.commit();
}

plinth::Value SingleElementKind::oldValue(ElementStorage& storage, Row const& row) const {
  ModelElement const& old = slotOf<ElementField>(storage, row);
  plinth::meta::TypeImpl* const type = old ? old->getMetaClass().impl() : row.property->type();
  return plinth::Value::makeUnchecked<ModelElement>(plinth::ValueMeta(type, plinth::meta::SINGLE), old);
}

void SingleElementKind::basicDisassociate(Element& element, Row const& row) const {
  basicSetElement(fieldOf<ElementField>(element, row), ModelElement());
}

void SingleElementKind::inverseAdd(Element& element, Row const& row, ModelElementImpl& far) const {
  core(element).notifyModifying(row.index);
  basicSetElement(fieldOf<ElementField>(element, row), ModelElement(&far));
}

void SingleElementKind::inverseRemove(Element& element, Row const& row, ModelElementImpl&) const {
  core(element).notifyModifying(row.index);
  basicSetElement(fieldOf<ElementField>(element, row), ModelElement());
}

void SingleElementKind::replaceByProxy(Element& element, Row const& row, ModelElementImpl& far,
                                       ModelElement const& proxy) const {
  auto& field = fieldOf<ElementField>(element, row);
  if (field.impl() != &far) return;
  core(element).notifyModifying(row.index);
  basicSetElement(field, proxy);
}

void ReferenceKind::disassociate(Element& element, Row const& row) const {
  if (!fieldOf<ElementField>(element, row).isEmpty()) store(element, row, ModelElement());
}

bool ReferenceKind::containsProxyTo(Element& element, Row const& row, ModelElementImpl& far) const {
  auto& field = fieldOf<ElementField>(element, row);
  if (field.impl() == &far) return true;
  if (!field || !field->isProxy()) return false;
  ModelElement const found = element.model().peekResolveProxy(&element, field);
  if (found.impl() != &far) return false;
  auto* const opposite = row.property->opposite();
  bool const isConfirmed =
      opposite == nullptr || !opposite->isMany() || core(element)._inverseContainsThis(&far, *opposite);
  if (isConfirmed) takePlaceOfProxy(element, field, row, found);
  return true;
}

bool ReferenceKind::build(ElementBuilder& builder, Row const& row, plinth::Value const& value) const {
  builderFieldOf<ElementField>(builder, row) = elementFrom(value, row);
  return true;
}

void ReferenceKind::link(Element& element, ElementBuilder& builder, Row const& row) const {
  store(element, row, builderFieldOf<ElementField>(builder, row));
}

void leaveFarEnd(Element& self, ModelElement const& member, plinth::meta::PropertyImpl& opposite, bool convert,
                 boost::optional<plinth::ProxyId>& id) {
  ModelElement const far = core(self)._farEnd(member, opposite);
  if (!far) return;
  if (core(*far).modelIdentity() == core(self).modelIdentity()) {
    core(self)._inverseRemoveThis(far.impl(), opposite);
  } else if (convert) {
    if (!id) id = core(self)._getPersistentProxyId();
    core(self)._convertToProxy(far.impl(), opposite, *id);
  }
}

void OneWayReferenceKind::store(Element& element, Row const& row, ModelElement const& target) const {
  setReference(element, fieldOf<ElementField>(element, row), target, row);
}

void OneWayReferenceKind::convertToProxies(Element& element, Row const& row, bool,
                                           boost::optional<plinth::ProxyId>&) const {
  auto& field = fieldOf<ElementField>(element, row);
  if (field.isEmpty()) return;
  core(element).notifyModifying(row.index);
  basicSetElement(field, ModelElement());
}

void OppositeReferenceKind::store(Element& element, Row const& row, ModelElement const& target) const {
  setOppositeReference(element, fieldOf<ElementField>(element, row), target, row);
}

void OppositeReferenceKind::inverseAdd(Element& element, Row const& row, ModelElementImpl& far) const {
  auto& field = fieldOf<ElementField>(element, row);
  core(element).notifyModifying(row.index);
  auto& opposite = *row.property->opposite();
  ModelElement const former = core(element)._farEnd(field, opposite);  // a proxy may stand for the far end itself
  if (former && former.impl() != &far) core(element)._inverseRemoveThis(former.impl(), opposite);
  basicSetElement(field, ModelElement(&far));
}

void OppositeReferenceKind::convertToProxies(Element& element, Row const& row, bool convert,
                                             boost::optional<plinth::ProxyId>& id) const {
  auto& field = fieldOf<ElementField>(element, row);
  if (field.isEmpty()) return;
  ModelElement const target = field;
  leaveFarEnd(element, target, *row.property->opposite(), convert, id);
  core(element).notifyModifying(row.index);
  basicSetElement(field, ModelElement());
}

void ContainmentKind::store(Element& element, Row const& row, ModelElement const& target) const {
  setContainment(element, fieldOf<ElementField>(element, row), target, row);
}

void ContainmentKind::collectContained(Element const& element, Row const& row,
                                       std::vector<ModelElementImpl*>& children) const {
  auto const& field = fieldOf<ElementField>(element, row);
  if (field && !field->isProxy()) children.push_back(field.impl());
}

void ContainmentKind::destroyContained(Element& element, Row const& row, bool flag1, bool flag2) const {
  auto& field = fieldOf<ElementField>(element, row);
  if (!field) return;
  core(element).notifyModifying(row.index);
  if (!field->isProxy()) core(*field).destroyRecursively(flag1, false, flag2);
  basicSetElement(field, ModelElement());
}

bool ContainmentKind::build(ElementBuilder& builder, Row const& row,
                            std::unique_ptr<plinth::ModelElementBuilder>& child) const {
  builderFieldOf<ChildBuilder>(builder, row).set(std::move(child));
  return true;
}

void ContainmentKind::cascade(Element&, ElementBuilder& builder, Row const& row, plinth::CascadeSteps& steps) const {
  if (auto* const child = builderFieldOf<ChildBuilder>(builder, row).get()) steps.push_back({row.property, child});
}

void ContainmentKind::attach(Element& element, Row const& row, ModelElement const& child) const {
  store(element, row, child);
}

}  // namespace tessel::frame
