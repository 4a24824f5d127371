#include "plinth/Query.hpp"

#include "plinth/ReferenceCollection.hpp"

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

/// Calls `test` for each real target of the property until one holds.
template <class Test>
bool anyTarget(ModelElementImpl& element, meta::Property const& property, Test const& test) {
  auto const& tag = ReflectionPrivateTag::NO_PROXY_RESOLVE;
  Value const value = element.getPropertyValue(property, tag);
  if (!property->isMany()) {
    auto const* const target = static_cast<ModelElement const*>(value.content());
    return target != nullptr && *target && test(*target->impl());
  }
  auto const* const collection = static_cast<ReferenceCollection const*>(value.content());
  bool found = false;
  collection->forEachReal([&](ModelElementImpl& target) { found = found || test(target); });
  return found;
}

}  // namespace

Constraint relatesTo(meta::Property const& property, ModelElement const& target) {
  return Constraint([property, target](ModelElementImpl& element) {
    return anyTarget(element, property, [&](ModelElementImpl& each) { return &each == target.impl(); });
  });
}

Constraint isAnyOfClass(meta::Property const& property, meta::Class const& metaClass, bool withSubclasses) {
  return Constraint([property, metaClass, withSubclasses](ModelElementImpl& element) {
    return anyTarget(element, property, [&](ModelElementImpl& each) {
      meta::ClassImpl const& actual = *each.getMetaClass().impl();
      return withSubclasses ? actual.conformsTo(*metaClass.impl()) : &actual == metaClass.impl();
    });
  });
}

Constraint isSet(meta::Property const& property) {
  return Constraint([property](ModelElementImpl& element) {
    return element.hasPropertyValue(property, ReflectionPrivateTag::NO_PROXY_RESOLVE);
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
