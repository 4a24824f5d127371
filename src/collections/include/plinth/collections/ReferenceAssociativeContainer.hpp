// What sets and maps of elements do alike with the container of their real members: changes that the journal can take
// back, and old contents. Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include "plinth/collections/HandleIterator.hpp"
#include "plinth/collections/ReferenceAssociative.hpp"

namespace plinth {

namespace detail {
template <class C>
class AssociativeJournalOf;
}

/// C is a node container of element handles, or of pairs of a key and an element handle.
template <class C>
class ReferenceAssociativeContainer : public ReferenceAssociative {
 public:
  using Container = C;

  /// Real members only.
  std::size_t size() const noexcept { return m_elements.size(); }
  bool empty() const noexcept override { return m_elements.empty(); }
  Container const& raw() const noexcept { return m_elements; }

  bool hasSameMembers(ReferenceCollection const& other) const override;
  void forEachReal(ElementVisitor visit) const override;

  std::size_t oldSize() const override;
  std::size_t rawSize() const override { return m_elements.size(); }
  std::unique_ptr<AbstractOwnedCollection> oldContents() const override;
  std::unique_ptr<AbstractOwnedCollection> copyContents() const override;

 protected:
  using Position = typename C::const_iterator;
  using Journal = detail::AssociativeJournalOf<C>;
  using Detached = std::unique_ptr<ReferenceAssociativeContainer>;
  using ReferenceAssociative::ReferenceAssociative;

  /// An empty collection of the same class that no element owns.
  virtual Detached makeDetached() const = 0;
  /// Where the element itself is; the container's end where it is not.
  virtual Position locate(ModelElement const& element) const = 0;
  /// Inserts a real element by insertNode; whether it did.
  virtual bool insertRaw(ModelElement const& element, CollectionJournal* journal) = 0;

  /// Runs `insert(container)`, which gives the node's position and whether it is new, and writes it to the journal.
  template <class Insert>
  bool insertNode(CollectionJournal* journal, Insert const& insert) {
    Journal* const steps = roomForOne(journal);
    auto const [at, isNew] = insert(m_elements);
    if (isNew && steps != nullptr) {
      steps->nodes().inserted(keyOfNode(*at));
      steps->note(false);
    }
    return isNew;
  }
  /// The journal with room for one step of a node; null stays null. Raises std::bad_alloc.
  static Journal* roomForOne(CollectionJournal* journal);

  std::unique_ptr<CollectionJournal> makeJournal() override;
  void basicAdd(ModelElement const& element) override;
  void basicRemove(ModelElement const& element) override;
  void basicClear() override;
  void basicCopyValues(ReferenceCollection const* other) override;
  bool holds(ModelElement const& element) const override { return locate(element) != m_elements.end(); }
  bool resolveAdd(ModelElement const& element) override { return insertRaw(element, modifying()); }
  bool removeElement(ModelElement const& element) override;
  void resetElements(CollectionJournal* journal) override;
  Container& elements() noexcept { return m_elements; }

 private:
  static ModelElement const& keyOfNode(ModelElement const& node) noexcept { return node; }
  template <class K>
  static K const& keyOfNode(std::pair<K const, ModelElement> const& node) noexcept {
    return node.first;
  }
  Journal const* kept() const noexcept { return static_cast<Journal const*>(journal()); }
  void eraseRaw(Position at, CollectionJournal* journal);

  Container m_elements;
};

}  // namespace plinth
