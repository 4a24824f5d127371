#include "plinth/ElementDirectory.hpp"

#include <algorithm>

#include "plinth/meta/Type.hpp"

namespace plinth {

namespace {
constexpr std::size_t FIRST_BUCKETS = 64;
}

ElementDirectory::ElementDirectory()
    : m_bucketCount(FIRST_BUCKETS),
      m_buckets(std::make_unique<Bucket[]>(FIRST_BUCKETS)),
      m_byUuid(ByUuid::bucket_traits(m_buckets.get(), FIRST_BUCKETS)) {}

ElementDirectory::~ElementDirectory() { clear(); }

void ElementDirectory::clear() noexcept {
  m_byUuid.clear();
  m_extents.clear();
}

ModelElementImpl* ElementDirectory::find(boost::uuids::uuid const& uuid) const noexcept {
  auto const found = m_byUuid.find(uuid);
  return found == m_byUuid.end() ? nullptr : const_cast<ModelElementImpl*>(&*found);
}

void ElementDirectory::reserve(ModelElementImpl const& element) {
  if (m_byUuid.size() >= m_bucketCount) growBuckets();
  meta::ClassImpl const* const metaClass = element.getMetaClass().impl();
  if (metaClass->ordinal() >= m_extents.size()) m_extents.resize(metaClass->ordinal() + 1);
  m_extents[metaClass->ordinal()].metaClass = metaClass;
  auto& extent = m_extents[metaClass->ordinal()].elements;
  if (extent.size() == extent.capacity()) extent.reserve(std::max<std::size_t>(8, 2 * extent.capacity()));
}

void ElementDirectory::growBuckets() {
  std::size_t const count = 4 * m_bucketCount;
  auto buckets = std::make_unique<Bucket[]>(count);
  m_byUuid.rehash(ByUuid::bucket_traits(buckets.get(), count));
  m_buckets = std::move(buckets);
  m_bucketCount = count;
}

std::vector<ModelElementImpl*>& ElementDirectory::extentOf(ModelElementImpl const& element) {
  return m_extents[element.getMetaClass().impl()->ordinal()].elements;
}

bool ElementDirectory::add(ModelElementImpl& element) noexcept {
  if (!m_byUuid.insert(element).second) return false;
  auto& extent = extentOf(element);
  element.m_extentSlot = static_cast<std::uint32_t>(extent.size());
  extent.push_back(&element);
  return true;
}

void ElementDirectory::remove(ModelElementImpl& element) noexcept {
  m_byUuid.erase(m_byUuid.iterator_to(element));
  auto& extent = extentOf(element);
  extent.back()->m_extentSlot = element.m_extentSlot;
  extent[element.m_extentSlot] = extent.back();
  extent.pop_back();
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
