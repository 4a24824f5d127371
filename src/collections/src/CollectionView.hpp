// The untyped view of a collection of elements: what every such view hands on to its collection.
// Ownership: the collection owns its view. Thread rule: the model's thread.
#pragma once

#include "plinth/GenericCollection.hpp"

namespace plinth {

/// `Interface` is what the view is, `Collection` what it looks at.
template <class Interface, class Collection>
class CollectionView : public Interface {
 public:
  explicit CollectionView(Collection& collection) noexcept : m_collection(&collection) {}

  std::uint32_t genericSize() const override { return static_cast<std::uint32_t>(m_collection->rawSize()); }
  void genericAdd(ModelElement const& element) override { m_collection->genericAdd(element); }
  void genericRemove(ModelElement const& element) override { m_collection->genericRemove(element); }
  void genericClear() override { m_collection->clear(); }
  void genericBasicClear() override { internal::ElementCore::_basicClear(m_collection); }
  bool genericContains(ModelElement const& element) const override { return m_collection->genericContains(element); }

 protected:
  Collection& collection() const noexcept { return *m_collection; }

 private:
  Collection* m_collection;
};

/// The view of a set or a subset.
template <class Collection>
using WrapperInterface = CollectionView<GenericCollectionInterface, Collection>;

}  // namespace plinth
