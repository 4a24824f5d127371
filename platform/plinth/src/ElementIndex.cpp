#include "ElementIndex.hpp"

#include <algorithm>
#include <boost/intrusive/parent_from_member.hpp>

#include "plinth/meta/Type.hpp"

namespace plinth::internal {

namespace {
constexpr std::size_t FIRST_BUCKETS = 64;
}

ElementIndex::ElementIndex()
    : m_bucketCount(FIRST_BUCKETS),
      m_buckets(std::make_unique<Bucket[]>(FIRST_BUCKETS)),
      m_byUuid(ByUuid::bucket_traits(m_buckets.get(), FIRST_BUCKETS)) {}

ElementIndex::~ElementIndex() { clear(); }

void ElementIndex::clear() noexcept {
  m_byUuid.clear();
  m_extents.clear();
}

ElementCore* ElementIndex::Links::to_value_ptr(DirectoryLink* link) noexcept {
  return boost::intrusive::get_parent_from_member<ElementCore>(link, &ElementCore::m_directoryLink);
}

ElementCore const* ElementIndex::Links::to_value_ptr(DirectoryLink const* link) noexcept {
  return boost::intrusive::get_parent_from_member<ElementCore>(link, &ElementCore::m_directoryLink);
}

void ElementIndex::reserve(ElementCore const& element) {
  if (m_byUuid.size() >= m_bucketCount) growBuckets();
  meta::ClassImpl const* const metaClass = element.self().getMetaClass().impl();
  if (metaClass->ordinal() >= m_extents.size()) m_extents.resize(metaClass->ordinal() + 1);
  m_extents[metaClass->ordinal()].metaClass = metaClass;
  auto& extent = m_extents[metaClass->ordinal()].elements;
  if (extent.size() == extent.capacity()) extent.reserve(std::max<std::size_t>(8, 2 * extent.capacity()));
}

void ElementIndex::growBuckets() {
  std::size_t const count = 4 * m_bucketCount;
  auto buckets = std::make_unique<Bucket[]>(count);
  m_byUuid.rehash(ByUuid::bucket_traits(buckets.get(), count));
  m_buckets = std::move(buckets);
  m_bucketCount = count;
}

std::vector<ModelElementImpl*>& ElementIndex::extentOf(ElementCore const& element) {
  return m_extents[element.self().getMetaClass().impl()->ordinal()].elements;
}

bool ElementIndex::add(ElementCore& element) noexcept {
  if (!m_byUuid.insert(element).second) return false;
  auto& extent = extentOf(element);
  element.m_extentSlot = static_cast<std::uint32_t>(extent.size());
  extent.push_back(&element.self());
  return true;
}

void ElementIndex::remove(ElementCore& element) noexcept {
  m_byUuid.erase(m_byUuid.iterator_to(element));
  auto& extent = extentOf(element);
  core(*extent.back()).m_extentSlot = element.m_extentSlot;
  extent[element.m_extentSlot] = extent.back();
  extent.pop_back();
}

}  // namespace plinth::internal
