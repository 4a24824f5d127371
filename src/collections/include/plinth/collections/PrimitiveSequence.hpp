// An ordered collection of plain values. Values repeat, whatever the property's metamodel says, unless the collection
// was made unique. Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include <algorithm>
#include <initializer_list>

#include "plinth/FailurePoint.hpp"
#include "plinth/PrimitiveCollection.hpp"
#include "plinth/collections/SequenceJournal.hpp"

namespace plinth {

template <class T>
class PrimitiveSequence final : public AbstractPrimitiveCollection {
 public:
  using Element = T;
  using Iterator = typename std::vector<T>::const_iterator;
  using value_type = T;
  using const_iterator = Iterator;
  /// The untyped view.
  class SequenceInterface;

  explicit PrimitiveSequence(CollectionPrivateTag, ModelElementImpl* owner = nullptr,
                             meta::PropertyImpl* property = nullptr) noexcept
      : AbstractPrimitiveCollection(owner, property) {}

  std::size_t size() const noexcept { return m_values.size(); }
  bool empty() const noexcept override { return m_values.empty(); }
  void reserve(std::size_t count) { m_values.reserve(count); }
  std::vector<T> const& values() const noexcept { return m_values; }
  typename std::vector<T>::const_reference operator[](std::size_t index) const { return m_values[index]; }
  Iterator begin() const noexcept { return m_values.begin(); }
  Iterator end() const noexcept { return m_values.end(); }
  void makeUnique() noexcept { m_unique = true; }

  void push_back(T const& value) { insert(m_values.end(), value); }
  /// Inserts before the position; in a unique sequence the value's present position is the result.
  Iterator insert(Iterator position, T const& value);
  /// Removes and gives the position behind.
  Iterator erase(Iterator position);
  /// Puts the value into a slot; a unique sequence that holds it already stays as it is.
  void replaceAt(std::size_t index, T value);
  /// Becomes a copy of the values: one change. Linear.
  void assign(std::vector<T> values);
  void clear() override { assign({}); }
  void copyValues(AbstractPrimitiveCollection const* other) override {
    assign(other == nullptr ? std::vector<T>() : static_cast<PrimitiveSequence const*>(other)->m_values);
  }

  PrimitiveKind getKind() const noexcept override { return PrimitiveKind::SEQUENCE; }
  void genericAdd(Value const& value) override { push_back(value.getValue<T>()); }
  void genericRemove(Value const& value) override {
    auto const found = std::find(m_values.begin(), m_values.end(), value.getValue<T>());
    if (found != m_values.end()) erase(found);
  }
  std::vector<Value> getAllValues() const override;
  bool equals(AbstractPrimitiveCollection const& other) const override {
    return m_values == static_cast<PrimitiveSequence const&>(other).m_values;
  }

  std::size_t rawSize() const override { return m_values.size(); }
  std::size_t oldSize() const override {
    auto const* const kept = static_cast<Journal const*>(journal());
    return kept == nullptr ? m_values.size() : kept->oldSize();
  }
  std::unique_ptr<AbstractOwnedCollection> oldContents() const override;
  std::unique_ptr<AbstractOwnedCollection> detachedCopy() const override;

 protected:
  std::unique_ptr<CollectionJournal> makeJournal() override { return std::make_unique<Journal>(m_values); }
  std::unique_ptr<GenericPrimitiveCollectionInterface> makeGenericInterface() override {
    return std::make_unique<SequenceInterface>(*this);
  }

 private:
  using Journal = detail::SequenceJournal<T>;
  Iterator at(std::size_t index) const { return m_values.begin() + static_cast<std::ptrdiff_t>(index); }
  Journal* recordingJournal() { return static_cast<Journal*>(modifying()); }

  std::vector<T> m_values;
  bool m_unique = false;
};

template <class T>
class PrimitiveSequence<T>::SequenceInterface final : public detail::PrimitiveView<GenericPrimitiveSequenceInterface> {
 public:
  explicit SequenceInterface(PrimitiveSequence& sequence) noexcept : PrimitiveView(sequence), m_sequence(&sequence) {}
  Value genericAt(std::uint32_t index) const override {
    return Value::makeUnchecked<T>(m_sequence->template elementMeta<T>(), m_sequence->m_values[index]);
  }
  std::uint32_t genericIndexOf(Value const& value) const override {
    auto const found = std::find(m_sequence->begin(), m_sequence->end(), value.getValue<T>());
    return found == m_sequence->end() ? ABSENT : static_cast<std::uint32_t>(found - m_sequence->begin());
  }
  void genericReplace(Value const& value, std::uint32_t index) override {
    m_sequence->replaceAt(index, value.getValue<T>());
  }
  void genericInsert(Value const& value, std::uint32_t index) override {
    m_sequence->insert(m_sequence->at(index), value.getValue<T>());
  }
  void genericRemoveAt(std::uint32_t index) override { m_sequence->erase(m_sequence->at(index)); }

 private:
  PrimitiveSequence* m_sequence;
};

template <class T>
typename PrimitiveSequence<T>::Iterator PrimitiveSequence<T>::insert(Iterator position, T const& value) {
  if (m_unique) {
    auto const found = std::find(m_values.begin(), m_values.end(), value);
    if (found != m_values.end()) return found;
  }
  auto const index = static_cast<std::size_t>(position - m_values.begin());
  Operation operation(*this);
  Journal* const journal = recordingJournal();
  if (journal != nullptr) journal->reserve();
  failurePoint("primitive-insert");
  m_values.insert(position, value);
  if (journal != nullptr) journal->inserted(index);
  operation.commit();
  return at(index);
}

template <class T>
typename PrimitiveSequence<T>::Iterator PrimitiveSequence<T>::erase(Iterator position) {
  auto const index = static_cast<std::size_t>(position - m_values.begin());
  Operation operation(*this);
  Journal* const journal = recordingJournal();
  if (journal != nullptr) journal->reserve();
  T taken = std::move(m_values[index]);
  m_values.erase(position);
  if (journal != nullptr) journal->erased(index, std::move(taken));
  operation.commit();
  return at(index);
}

template <class T>
void PrimitiveSequence<T>::assign(std::vector<T> values) {
  if (values.empty() && m_values.empty()) return;
  Operation operation(*this);
  Journal* const journal = recordingJournal();
  if (journal != nullptr) journal->reserveReset();
  values.swap(m_values);
  if (journal != nullptr) journal->reset(std::move(values));
  operation.commit();
}

template <class T>
void PrimitiveSequence<T>::replaceAt(std::size_t index, T value) {
  if (m_unique && std::find(m_values.begin(), m_values.end(), value) != m_values.end()) return;
  Operation operation(*this);
  Journal* const journal = recordingJournal();
  if (journal != nullptr) {
    journal->reserve();
    journal->replaced(index, m_values[index]);
  }
  m_values[index] = std::move(value);
  operation.commit();
}

template <class T>
std::vector<Value> PrimitiveSequence<T>::getAllValues() const {
  std::vector<Value> all;
  all.reserve(m_values.size());
  ValueMeta const meta = elementMeta<T>();
  for (std::size_t i = 0; i < m_values.size(); ++i) all.push_back(Value::makeUnchecked<T>(meta, m_values[i]));
  return all;
}

template <class T>
std::unique_ptr<AbstractOwnedCollection> PrimitiveSequence<T>::oldContents() const {
  auto copy = std::make_unique<PrimitiveSequence>(CollectionPrivateTag(), nullptr, property());
  auto const* const kept = static_cast<Journal const*>(journal());
  copy->m_values = kept == nullptr ? m_values : kept->oldContents();
  return copy;
}

template <class T>
std::unique_ptr<AbstractOwnedCollection> PrimitiveSequence<T>::detachedCopy() const {
  auto copy = std::make_unique<PrimitiveSequence>(CollectionPrivateTag(), nullptr, property());
  copy->m_values = m_values;
  return copy;
}

extern template class TESSEL_EXPORT PrimitiveSequence<bool>;
extern template class TESSEL_EXPORT PrimitiveSequence<double>;
extern template class TESSEL_EXPORT PrimitiveSequence<long>;
extern template class TESSEL_EXPORT PrimitiveSequence<unsigned int>;
extern template class TESSEL_EXPORT PrimitiveSequence<std::u16string>;

}  // namespace plinth
