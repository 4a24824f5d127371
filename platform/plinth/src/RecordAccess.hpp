// The kernel's door to a change record.
// Thread rule: the model's thread.
#pragma once

#include "plinth/Changes.hpp"

namespace plinth::internal {

struct RecordAccess {
  static std::uint32_t& level(Storage& record) noexcept { return record.m_level; }
  static ModelElementImpl*& element(Storage& record) noexcept { return record.m_element; }
  static Storage*& outer(Storage& record) noexcept { return record.m_outer; }
  static Storage const* outer(Storage const& record) noexcept { return record.m_outer; }
  static ModelElement& oldContainer(Storage& record) noexcept { return record.m_oldContainer; }
  static meta::PropertyImpl*& oldContainmentProperty(Storage& record) noexcept {
    return record.m_oldContainmentProperty;
  }
  static void merge(Storage& inner, Storage& outer) noexcept { inner.mergeInto(outer); }
};

}  // namespace plinth::internal
