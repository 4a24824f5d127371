// An ordered collection of elements of class T; see ReferenceSequence for what its operations do and cost.
// Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include "plinth/collections/HandleIterator.hpp"
#include "plinth/collections/ReferenceSequence.hpp"

namespace plinth {

template <class T>
class ElementSequence final : public ReferenceSequence {
 public:
  using Element = T;
  using Iterator = detail::HandleIterator<T, std::vector<ModelElement>::const_iterator, detail::Itself>;
  using value_type = T;
  using const_iterator = Iterator;

  /// A slot that can be assigned: `sequence[3] = element`.
  class IndexedReference {
   public:
    IndexedReference(ElementSequence& sequence, std::size_t index) noexcept : m_sequence(&sequence), m_index(index) {}
    // NOLINTNEXTLINE(google-explicit-constructor): a slot reads as its element
    operator T() const { return m_sequence->at(m_index); }
    IndexedReference(IndexedReference const&) = default;
    IndexedReference& operator=(IndexedReference const& other) { return *this = static_cast<T>(other); }
    IndexedReference& operator=(T const& element) {
      m_sequence->replaceAt(m_index, element);
      return *this;
    }

   private:
    ElementSequence* m_sequence;
    std::size_t m_index;
  };

  explicit ElementSequence(CollectionPrivateTag, ModelElementImpl* owner = nullptr,
                           meta::PropertyImpl* property = nullptr, meta::PropertyImpl* opposite = nullptr) noexcept
      : ReferenceSequence(owner, property, opposite) {}

  meta::Class const& getCollectionType() const override { return T::metaClass(); }

  void add(T const& element) { addElement(element); }
  std::size_t insert(std::size_t position, T const& element) { return insertElement(position, element); }
  void remove(T const& element) { removeElement(element); }
  std::size_t erase(std::size_t position) { return eraseAt(position); }
  bool contains(T const& element) const { return containsElement(element); }
  /// The element in a slot, resolved if it can be; it may still be a proxy.
  T at(std::size_t index) { return static_cast<T const&>(resolveAt(index)); }
  IndexedReference operator[](std::size_t index) noexcept { return IndexedReference(*this, index); }
  Iterator begin() const { return Iterator(raw().begin()); }
  Iterator end() const { return Iterator(raw().end()); }

 protected:
  std::unique_ptr<ReferenceSequence> makeDetached() const override {
    return std::make_unique<ElementSequence>(CollectionPrivateTag(), nullptr, property(), opposite());
  }
};

}  // namespace plinth
