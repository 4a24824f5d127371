#include "plinth/diagnostics/ElementPath.hpp"

#include <algorithm>
#include <boost/uuid/uuid_io.hpp>
#include <unordered_set>

#include "groundwork/Unicode.hpp"
#include "plinth/ElementMembers.hpp"
#include "plinth/diagnostics/ValueText.hpp"

namespace plinth {
namespace detail {
namespace {

std::string shortUuid(ModelElementImpl const& element) {
  constexpr std::size_t SHOWN_DIGITS = 8;
  return "{" + boost::uuids::to_string(element.getUuid()).substr(0, SHOWN_DIGITS) + "}";
}

std::size_t positionIn(ModelElementImpl const& container, meta::PropertyImpl const& property,
                       ModelElementImpl const& element) {
  ReferenceCollection const* const collection = core(container).referenceCollection(property);
  if (property.valueFlags() != meta::SEQUENCE || collection == nullptr) return NO_POSITION;
  std::vector<ModelElement> const members = collection->getAllValuesAndProxies();
  auto const found = std::find_if(members.begin(), members.end(),
                                  [&](ModelElement const& member) { return member.impl() == &element; });
  return found == members.end() ? NO_POSITION : static_cast<std::size_t>(found - members.begin());
}

std::string bracketed(std::string const& text) { return "[" + text + "]"; }

}  // namespace

std::string shortName(ModelElementImpl const& element) {
  return groundwork::toUtf8(element.getMetaClass()->getName()) + shortUuid(element);
}

std::string pathStep(meta::PropertyImpl const& property, ModelElementImpl const& element, std::size_t position) {
  std::string const name = groundwork::toUtf8(property.getName());
  if (!property.isMany()) return name;
  if (meta::PropertyImpl* const qualifier = property.qualifiedBy();
      qualifier != nullptr && !element.isProxy() && element.getMetaClass()->conformsTo(*qualifier->owningType())) {
    return name + bracketed(escaped(keyBorneBy(element, *qualifier)));
  }
  return name + (position == NO_POSITION ? shortUuid(element) : bracketed(std::to_string(position)));
}

std::string elementPath(ModelElementImpl const& element, ContainerFilter const& filter) {
  std::vector<std::string> steps;
  std::unordered_set<ModelElementImpl const*> passed;
  ModelElementImpl const* each = &element;
  while (true) {
    ModelElementImpl const* const container = core(*each).basicContainer();
    meta::PropertyImpl const* const feature = core(*each).basicContainmentFeature();
    if (container == nullptr || feature == nullptr || !filter(*container)) {
      steps.push_back(shortName(*each));
      break;
    }
    steps.push_back(pathStep(*feature, *each, positionIn(*container, *feature, *each)));
    if (!passed.insert(each).second) {
      steps.back() = "...";
      break;
    }
    each = container;
  }
  std::string path = std::move(steps.back());
  std::for_each(steps.rbegin() + 1, steps.rend(), [&](std::string const& step) { path += "/" + step; });
  return path;
}

}  // namespace detail

std::string elementPath(ModelElementImpl const& element) {
  return detail::elementPath(element, [](ModelElementImpl const&) { return true; });
}

}  // namespace plinth
