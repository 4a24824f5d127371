#include "plinth/ElementDirectory.hpp"

#include <algorithm>

#include "ElementIndex.hpp"
#include "plinth/meta/Type.hpp"

namespace plinth {

ModelElementImpl* ElementDirectory::find(boost::uuids::uuid const& uuid) const noexcept {
  auto& elements = const_cast<internal::ElementIndex*>(static_cast<internal::ElementIndex const*>(this))->m_byUuid;
  auto const found = elements.find(uuid);
  return found == elements.end() ? nullptr : &found->self();
}

std::size_t ElementDirectory::size() const noexcept {
  return static_cast<internal::ElementIndex const*>(this)->m_byUuid.size();
}

std::vector<ModelElementImpl*> const& ElementDirectory::elementsOf(meta::ClassImpl const& metaClass) const {
  static std::vector<ModelElementImpl*> const none;
  return metaClass.ordinal() < m_extents.size() ? m_extents[metaClass.ordinal()].elements : none;
}

std::vector<meta::ClassImpl const*> ElementDirectory::classes() const {
  std::vector<meta::ClassImpl const*> result;
  for (Extent const& extent : m_extents) {
    if (!extent.elements.empty()) result.push_back(extent.metaClass);
  }
  std::sort(result.begin(), result.end(),
            [](auto const* a, auto const* b) { return a->getQualifiedName() < b->getQualifiedName(); });
  return result;
}

std::vector<ModelElementImpl*> ElementDirectory::all() const {
  std::vector<ModelElementImpl*> result;
  result.reserve(size());
  for (meta::ClassImpl const* metaClass : classes()) {
    auto const& extent = elementsOf(*metaClass);
    result.insert(result.end(), extent.begin(), extent.end());
  }
  return result;
}

}  // namespace plinth
