// An ordered collection of elements of class T; see ReferenceSequence for what its operations do and cost.
// Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include "plinth/collections/ReferenceSequence.hpp"
#include "plinth/collections/TypedReferenceCollection.hpp"

namespace plinth {

template <class T>
class ElementSequence final : public TypedReferenceCollection<T, ReferenceSequence> {
  using Base = TypedReferenceCollection<T, ReferenceSequence>;

 public:
  using typename Base::Iterator;
  using reverse_iterator = std::reverse_iterator<Iterator>;
  using const_reverse_iterator = reverse_iterator;

  /// The handle of a slot's element, which can be assigned: `sequence[3] = element`. What it names is what the slot
  /// held when it was indexed, or what has been assigned through it.
  class IndexedReference : public T {
   public:
    IndexedReference(ElementSequence& sequence, std::size_t index)
        : T(sequence.at(index)), m_sequence(&sequence), m_index(index) {}
    IndexedReference(IndexedReference const&) = default;
    ~IndexedReference() = default;
    IndexedReference& operator=(IndexedReference const& other) { return *this = static_cast<T const&>(other); }
    IndexedReference& operator=(T const& element) {
      m_sequence->replaceAt(m_index, element);
      static_cast<T&>(*this) = element;
      return *this;
    }

   private:
    ElementSequence* m_sequence;
    std::size_t m_index;
  };

  explicit ElementSequence(CollectionPrivateTag, ModelElementImpl* owner = nullptr,
                           meta::PropertyImpl* property = nullptr, meta::PropertyImpl* opposite = nullptr) noexcept
      : Base(owner, property, opposite) {}

  /// Whether the element was added.
  bool add(T const& element) { return this->addElement(element); }
  std::size_t insert(std::size_t position, T const& element) { return this->insertElement(position, element); }
  Iterator insert(Iterator position, T const& element) { return iteratorAt(insert(indexOf(position), element)); }
  /// Whether the element was there.
  bool remove(T const& element) { return this->removeElement(element); }
  std::size_t erase(std::size_t position) { return erase(position, position + 1); }
  std::size_t erase(std::size_t first, std::size_t last) { return this->eraseRange(first, last); }
  Iterator erase(Iterator position) { return erase(position, std::next(position)); }
  Iterator erase(Iterator first, Iterator last) { return iteratorAt(erase(indexOf(first), indexOf(last))); }
  bool contains(T const& element) const { return this->containsElement(element); }
  /// The first position of the element, or ABSENT. Linear.
  std::size_t indexOf(T const& element) const {
    std::size_t const position = this->positionOf(element);
    return position == this->size() ? ReferenceSequence::ABSENT : position;
  }
  /// The element in a slot, resolved if it can be; it may still be a proxy.
  T at(std::size_t index) { return static_cast<T const&>(this->resolveAt(index)); }
  IndexedReference operator[](std::size_t index) { return IndexedReference(*this, index); }
  /// The slot as it stands.
  T const& operator[](std::size_t index) const { return this->begin()[static_cast<std::ptrdiff_t>(index)]; }
  reverse_iterator rbegin() const { return reverse_iterator(this->end()); }
  reverse_iterator rend() const { return reverse_iterator(this->begin()); }

 protected:
  std::unique_ptr<ReferenceSequence> makeDetached() const override {
    return std::make_unique<ElementSequence>(CollectionPrivateTag(), nullptr, this->property(), this->opposite());
  }

 private:
  std::size_t indexOf(Iterator position) const { return static_cast<std::size_t>(position - this->begin()); }
  Iterator iteratorAt(std::size_t position) const { return this->begin() + static_cast<std::ptrdiff_t>(position); }
};

}  // namespace plinth
