// The elements of a model, to look at: by UUID, and for each class the list of its elements.
// Ownership: the model's; the lists hold one reference on each element. Thread rule: the model's thread.
#pragma once

#include <cstddef>
#include <vector>

#include "plinth/ModelElement.hpp"

namespace plinth {

class TESSEL_EXPORT ElementDirectory {
 public:
  ElementDirectory(ElementDirectory const&) = delete;
  ElementDirectory& operator=(ElementDirectory const&) = delete;

  /// Null where no live element has this UUID. O(1).
  ModelElementImpl* find(boost::uuids::uuid const& uuid) const noexcept;
  std::size_t size() const noexcept;
  /// The elements of exactly this class, in no particular order; valid until the next element comes or goes.
  std::vector<ModelElementImpl*> const& elementsOf(meta::ClassImpl const& metaClass) const;
  /// The classes that have elements, by name.
  std::vector<meta::ClassImpl const*> classes() const;
  /// A snapshot of all elements, class by class.
  std::vector<ModelElementImpl*> all() const;

 protected:
  /// The elements of one class; no class where it never had one.
  struct Extent {
    meta::ClassImpl const* metaClass = nullptr;
    std::vector<ModelElementImpl*> elements;
  };

  ElementDirectory() = default;
  ~ElementDirectory() = default;

  std::vector<Extent> m_extents;  ///< by the ordinals of the classes
};

}  // namespace plinth
