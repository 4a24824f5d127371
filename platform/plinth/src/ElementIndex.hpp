// The model's directory of its elements, to change.
// Ownership: the lists hold one reference on each element; see UndoLog for destroyed ones.
// Thread rule: the model's thread.
#pragma once

#include <boost/intrusive/unordered_set.hpp>
#include <memory>
#include <vector>

#include "plinth/ElementDirectory.hpp"
#include "plinth/Hashing.hpp"

namespace plinth::internal {

class ElementIndex final : public ElementDirectory {
 public:
  ElementIndex();
  ~ElementIndex();

  /// Makes room for `element`, so that `add` can't fail. Raises std::bad_alloc.
  void reserve(ElementCore const& element);
  /// False, with nothing changed, when there is an element of this UUID.
  bool add(ElementCore& element) noexcept;
  /// Takes the element out; its room stays, so that it can be added again.
  void remove(ElementCore& element) noexcept;
  void clear() noexcept;

 private:
  friend ElementDirectory;
  struct UuidOf {
    using type = boost::uuids::uuid;
    type const& operator()(ElementCore const& element) const noexcept { return element.getUuid(); }
  };
  struct UuidHash {
    std::size_t operator()(boost::uuids::uuid const& uuid) const noexcept { return hashOf(uuid); }
  };
  struct LinkTraits {
    using node = DirectoryLink;
    using node_ptr = DirectoryLink*;
    using const_node_ptr = DirectoryLink const*;
    static node_ptr get_next(const_node_ptr link) noexcept { return link->next; }
    static void set_next(node_ptr link, node_ptr next) noexcept { link->next = next; }
  };
  /// Elements are linked by a plain member, so that their headers know nothing of the container.
  struct Links {
    using node_traits = LinkTraits;
    using node_ptr = DirectoryLink*;
    using const_node_ptr = DirectoryLink const*;
    using value_type = ElementCore;
    using pointer = ElementCore*;
    using const_pointer = ElementCore const*;
    static constexpr auto link_mode = boost::intrusive::normal_link;
    static node_ptr to_node_ptr(value_type& element) noexcept { return &element.m_directoryLink; }
    static const_node_ptr to_node_ptr(value_type const& element) noexcept { return &element.m_directoryLink; }
    static pointer to_value_ptr(node_ptr link) noexcept;
    static const_pointer to_value_ptr(const_node_ptr link) noexcept;
  };
  using ByUuid =
      boost::intrusive::unordered_set<ElementCore, boost::intrusive::value_traits<Links>,
                                      boost::intrusive::key_of_value<UuidOf>, boost::intrusive::hash<UuidHash>,
                                      boost::intrusive::power_2_buckets<true>>;
  using Bucket = ByUuid::bucket_type;

  void growBuckets();
  std::vector<ModelElementImpl*>& extentOf(ElementCore const& element);

  std::size_t m_bucketCount;
  std::unique_ptr<Bucket[]> m_buckets;
  ByUuid m_byUuid;
};

}  // namespace plinth::internal
