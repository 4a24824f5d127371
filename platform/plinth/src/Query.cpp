#include "plinth/Query.hpp"

#include "plinth/ElementDirectory.hpp"
#include "plinth/ElementMembers.hpp"

namespace plinth::query {

std::vector<ModelElement> AbstractQuery::execute() const {
  ElementDirectory const& directory = m_model.require().directory();
  std::vector<ModelElement> found;
  auto const search = [&](meta::ClassImpl const& metaClass) {
    for (ModelElementImpl* element : directory.elementsOf(metaClass)) {
      bool meets = true;
      for (Constraint const& constraint : m_constraints) meets = meets && constraint.holds(*element);
      if (meets) found.emplace_back(element);
    }
  };
  if (m_mode == SearchClassMatchMode::EXACT_CLASS) {
    search(*m_class.impl());
    return found;
  }
  for (meta::ClassImpl const* metaClass : directory.classes()) {
    if (metaClass->conformsTo(*m_class.impl())) search(*metaClass);
  }
  return found;
}

namespace detail {
namespace {

/// What `proxy` stands for if that is in memory, else itself. Nothing is stored or loaded.
ModelElement realOf(ModelElement const& element) {
  return element && element->isProxy() ? element->model().peekResolveProxy(nullptr, element) : element;
}

/// Whether `test` holds for a target of the property; dead ones are none.
template <class Test>
bool anyTarget(ModelElementImpl& element, meta::Property const& property, Test const& test) {
  // Raises NoSuchProperty. It can't tell that there is nothing: a set of proxies alone has no value.
  element.hasPropertyValue(property, ReflectionPrivateTag::NO_PROXY_RESOLVE);
  for (ModelElement const& target : plinth::detail::membersOf(element, *property.impl())) {
    if (target && test(realOf(target))) return true;
  }
  return false;
}

}  // namespace

Constraint relatesTo(meta::Property const& property, ModelElement const& target) {
  if (target.isEmpty()) return !isSet(property);
  return Constraint([property, target](ModelElementImpl& element) {
    ModelElement const real = realOf(target);
    return anyTarget(element, property, [&](ModelElement const& each) { return each == real; });
  });
}

Constraint isAnyOfClass(meta::Property const& property, meta::Class const& metaClass, bool withSubclasses) {
  return Constraint([property, metaClass, withSubclasses](ModelElementImpl& element) {
    return anyTarget(element, property, [&](ModelElement const& each) {
      meta::ClassImpl const& actual = *each->getMetaClass().impl();
      return withSubclasses ? actual.conformsTo(*metaClass.impl()) : &actual == metaClass.impl();
    });
  });
}

Constraint isSet(meta::Property const& property) {
  return Constraint([property](ModelElementImpl& element) {
    return anyTarget(element, property, [](ModelElement const&) { return true; });
  });
}

Constraint matches(meta::Property const& property, std::u16string text, TextMatch match) {
  return Constraint([property, text = std::move(text), match](ModelElementImpl& element) {
    auto const value = valueOf<std::u16string>(element, property);
    if (!value || value->size() < text.size()) return false;
    if (match == TextMatch::STARTS_WITH) return value->compare(0, text.size(), text) == 0;
    if (match == TextMatch::ENDS_WITH) return value->compare(value->size() - text.size(), text.size(), text) == 0;
    return value->find(text) != std::u16string::npos;
  });
}

}  // namespace detail

}  // namespace plinth::query
