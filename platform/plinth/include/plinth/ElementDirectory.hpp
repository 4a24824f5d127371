// The elements of a model: by UUID, and for each class the list of its elements.
// Ownership: the lists hold one reference on each element; see UndoLog for destroyed ones.
// Thread rule: the model's thread.
#pragma once

#include <boost/intrusive/unordered_set.hpp>
#include <cstring>
#include <memory>
#include <vector>

#include "plinth/ModelElement.hpp"

namespace plinth {

/// Hash of a UUID: random ones are their own hash, name-based ones are digests.
inline std::size_t hashOf(boost::uuids::uuid const& uuid) noexcept {
  std::uint64_t low = 0;
  std::uint64_t high = 0;
  std::memcpy(&low, uuid.data, sizeof low);
  std::memcpy(&high, uuid.data + sizeof low, sizeof high);
  return static_cast<std::size_t>((low ^ (high * 0x9E3779B97F4A7C15ULL)) * 0xD6E8FEB86659FD93ULL);
}

class TESSEL_EXPORT ElementDirectory {
 public:
  ElementDirectory();
  ~ElementDirectory();
  ElementDirectory(ElementDirectory const&) = delete;
  ElementDirectory& operator=(ElementDirectory const&) = delete;

  ModelElementImpl* find(boost::uuids::uuid const& uuid) const noexcept;
  std::size_t size() const noexcept { return m_byUuid.size(); }

  /// Makes room for `element`, so that `add` can't fail. Raises std::bad_alloc.
  void reserve(ModelElementImpl const& element);
  /// False, with nothing changed, when there is an element of this UUID.
  bool add(ModelElementImpl& element) noexcept;
  /// Takes the element out; its room stays, so that it can be added again.
  void remove(ModelElementImpl& element) noexcept;

  void clear() noexcept;

  /// The elements of exactly this class, in no particular order; valid until the next element comes or goes.
  std::vector<ModelElementImpl*> const& elementsOf(meta::ClassImpl const& metaClass) const;
  /// The classes that have or had elements.
  std::vector<meta::ClassImpl const*> classes() const;
  /// A snapshot of all elements, class by class.
  std::vector<ModelElementImpl*> all() const;

 private:
  struct UuidOf {
    using type = boost::uuids::uuid;
    type const& operator()(ModelElementImpl const& element) const noexcept { return element.getUuid(); }
  };
  struct UuidHash {
    std::size_t operator()(boost::uuids::uuid const& uuid) const noexcept { return hashOf(uuid); }
  };
  using Hook = boost::intrusive::member_hook<ModelElementImpl, ModelElementImpl::DirectoryHook,
                                             &ModelElementImpl::m_directoryHook>;
  using ByUuid =
      boost::intrusive::unordered_set<ModelElementImpl, Hook, boost::intrusive::key_of_value<UuidOf>,
                                      boost::intrusive::hash<UuidHash>, boost::intrusive::power_2_buckets<true>>;
  using Bucket = ByUuid::bucket_type;

  /// The elements of one class; no class where it never had one.
  struct Extent {
    meta::ClassImpl const* metaClass = nullptr;
    std::vector<ModelElementImpl*> elements;
  };

  void growBuckets();
  std::vector<ModelElementImpl*>& extentOf(ModelElementImpl const& element);

  std::size_t m_bucketCount;
  std::unique_ptr<Bucket[]> m_buckets;
  ByUuid m_byUuid;
  std::vector<Extent> m_extents;  ///< by the ordinals of the classes
};

}  // namespace plinth
