// An ordered collection of plain values. Values repeat, whatever the property's metamodel says, unless the collection
// was made unique. Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include <algorithm>
#include <iterator>
#include <unordered_set>

#include "plinth/FailurePoint.hpp"
#include "plinth/collections/PrimitiveCollection.hpp"

namespace plinth {
namespace internal {

/// Values change through their sequence alone, so that the mutable form reads only, as the const one does.
template <class T, bool IS_CONST>
using SequenceIteratorPrimitive = typename std::vector<T>::const_iterator;

}  // namespace internal

/// What changes the sequence is one step: a transaction of its own where none is open. It raises
/// CannotModifyDestroyedElement, CannotModifyFrozenModel, std::bad_alloc, and then has changed nothing.
template <class T>
class PrimitiveSequence final : public PrimitiveCollection<T, std::vector<T>> {
  using Base = PrimitiveCollection<T, std::vector<T>>;

 public:
  using Iterator = internal::SequenceIteratorPrimitive<T, false>;
  /// The position that stands for none.
  static constexpr std::size_t ABSENT = ~std::size_t{0};
  /// The untyped view.
  class SequenceInterface;

  explicit PrimitiveSequence(CollectionPrivateTag, ModelElementImpl* owner = nullptr,
                             meta::PropertyImpl* property = nullptr) noexcept
      : Base(owner, property) {}

  typename std::vector<T>::const_reference operator[](std::size_t index) const { return this->values()[index]; }
  /// Linear, here and below.
  bool contains(T const& value) const { return find(value) != this->end(); }
  /// The first position of the value, or ABSENT.
  std::size_t indexOf(T const& value) const {
    Iterator const found = find(value);
    return found == this->end() ? ABSENT : offsetOf(found);
  }
  /// Removes the first value that equals it; whether there was one.
  bool remove(T const& value) {
    Iterator const found = find(value);
    if (found == this->end()) return false;
    erase(found);
    return true;
  }
  void reserve(std::size_t count) { this->container().reserve(count); }
  /// From now on a value that is there already is not added again. Doesn't look at what is there.
  void makeUnique() noexcept { m_unique = true; }

  /// Amortized O(1); in a unique sequence linear, here and below.
  void push_back(T value) { insert(this->end(), std::move(value)); }
  /// Inserts before the position and gives the value's position: in a unique sequence the one that it has already.
  /// Linear in what lies behind.
  Iterator insert(Iterator position, T value);
  /// Inserts the values from `first` to `last` in their order, and gives the position of the first; a unique sequence
  /// takes those that it doesn't hold yet. The range may be of this very sequence. Linear.
  template <class InputIterator>
  Iterator insert(Iterator position, InputIterator first, InputIterator last) {
    return insertAll(position, std::vector<T>(first, last));
  }
  /// Removes and gives the position behind. Linear in what lies behind.
  Iterator erase(Iterator position) { return erase(position, std::next(position)); }
  /// Removes the values from `first` to `last` and gives the position behind. Linear.
  Iterator erase(Iterator first, Iterator last);
  /// Puts the value into a slot; a unique sequence that holds it already stays as it is.
  void replaceAt(std::size_t index, T value);
  /// Becomes these values; a unique sequence takes the first of equal ones. Linear.
  void assign(std::vector<T> values) {
    this->become(m_unique ? withoutRepetitions(std::move(values), {}) : std::move(values));
  }
  void copyValues(AbstractPrimitiveCollection const* other) override {
    assign(other == nullptr ? std::vector<T>() : static_cast<PrimitiveSequence const*>(other)->values());
  }

  PrimitiveKind getKind() const noexcept override { return PrimitiveKind::SEQUENCE; }
  void genericAdd(Value const& value) override { push_back(value.getValue<T>()); }
  void genericRemove(Value const& value) override { remove(value.getValue<T>()); }

 protected:
  std::unique_ptr<Base> makeDetached() const override {
    return std::make_unique<PrimitiveSequence>(CollectionPrivateTag(), nullptr, this->property());
  }
  std::unique_ptr<GenericPrimitiveCollectionInterface> makeGenericInterface() override {
    return std::make_unique<SequenceInterface>(*this);
  }

 private:
  using typename Base::Journal;
  using Operation = AbstractOwnedCollection::Operation;
  Iterator at(std::size_t index) const { return this->begin() + static_cast<std::ptrdiff_t>(index); }
  std::size_t offsetOf(Iterator position) const { return static_cast<std::size_t>(position - this->begin()); }
  Iterator find(T const& value) const { return std::find(this->begin(), this->end(), value); }
  Iterator insertAll(Iterator position, std::vector<T> values);
  static std::vector<T> withoutRepetitions(std::vector<T> values, std::vector<T> const& present);

  bool m_unique = false;
};

template <class T>
class PrimitiveSequence<T>::SequenceInterface final : public detail::PrimitiveView<GenericPrimitiveSequenceInterface> {
 public:
  explicit SequenceInterface(PrimitiveSequence& sequence) noexcept : PrimitiveView(sequence), m_sequence(&sequence) {}
  Value genericAt(std::uint32_t index) const override {
    return Value::makeUnchecked<T>(m_sequence->template elementMeta<T>(), (*m_sequence)[index]);
  }
  std::uint32_t genericIndexOf(Value const& value) const override {
    return static_cast<std::uint32_t>(m_sequence->indexOf(value.getValue<T>()));  // ABSENT is all ones in both widths
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
auto PrimitiveSequence<T>::insert(Iterator position, T value) -> Iterator {
  if (m_unique) {
    Iterator const found = find(value);
    if (found != this->end()) return found;
  }
  std::size_t const index = offsetOf(position);
  Operation operation(*this);
  Journal* const journal = this->recordingJournal();
  if (journal != nullptr) journal->reserveInsertion();
  failurePoint("primitive-insert");
  if (position == this->end()) {
    this->container().push_back(std::move(value));
  } else {
    this->container().insert(position, std::move(value));
  }
  if (journal != nullptr) journal->inserted(index);
  operation.commit();
  return at(index);
}

template <class T>
auto PrimitiveSequence<T>::insertAll(Iterator position, std::vector<T> values) -> Iterator {
  if (m_unique) values = withoutRepetitions(std::move(values), this->values());
  if (values.empty()) return position;
  std::size_t const index = offsetOf(position);
  Operation operation(*this);
  Journal* const journal = this->recordingJournal();
  if (journal != nullptr) journal->reserveInsertion();
  failurePoint("primitive-insert");
  detail::makeRoomFor(this->container(), values.size());  // so that what follows can't fail half-way
  this->container().insert(at(index), std::make_move_iterator(values.begin()), std::make_move_iterator(values.end()));
  if (journal != nullptr) journal->inserted(index, values.size());
  operation.commit();
  return at(index);
}

template <class T>
std::vector<T> PrimitiveSequence<T>::withoutRepetitions(std::vector<T> values, std::vector<T> const& present) {
  std::unordered_set<T> seen(present.begin(), present.end());
  auto const isRepetition = [&seen](T const& value) { return !seen.insert(value).second; };
  values.erase(std::remove_if(values.begin(), values.end(), isRepetition), values.end());
  return values;
}

template <class T>
auto PrimitiveSequence<T>::erase(Iterator first, Iterator last) -> Iterator {
  if (first == last) return first;
  std::size_t const index = offsetOf(first);
  std::size_t const end = offsetOf(last);
  Operation operation(*this);
  Journal* const journal = this->recordingJournal();
  if (journal == nullptr) {
    this->container().erase(first, last);
  } else {
    journal->reserve(end - index);
    auto const begin = this->container().begin();
    auto const from = begin + static_cast<std::ptrdiff_t>(index), to = begin + static_cast<std::ptrdiff_t>(end);
    std::vector<T> taken(std::make_move_iterator(from), std::make_move_iterator(to));
    this->container().erase(first, last);
    journal->erased(index, std::move(taken));
  }
  operation.commit();
  return at(index);
}

template <class T>
void PrimitiveSequence<T>::replaceAt(std::size_t index, T value) {
  if (m_unique && contains(value)) return;
  Operation operation(*this);
  Journal* const journal = this->recordingJournal();
  if (journal != nullptr) journal->reserve();
  T former = std::move(this->container()[index]);
  this->container()[index] = std::move(value);
  if (journal != nullptr) journal->replaced(index, std::move(former));
  operation.commit();
}

extern template class TESSEL_EXPORT PrimitiveCollection<bool, std::vector<bool>>;
extern template class TESSEL_EXPORT PrimitiveCollection<double, std::vector<double>>;
extern template class TESSEL_EXPORT PrimitiveCollection<long, std::vector<long>>;
extern template class TESSEL_EXPORT PrimitiveCollection<unsigned int, std::vector<unsigned int>>;
extern template class TESSEL_EXPORT PrimitiveCollection<std::u16string, std::vector<std::u16string>>;
extern template class TESSEL_EXPORT PrimitiveSequence<bool>;
extern template class TESSEL_EXPORT PrimitiveSequence<double>;
extern template class TESSEL_EXPORT PrimitiveSequence<long>;
extern template class TESSEL_EXPORT PrimitiveSequence<unsigned int>;
extern template class TESSEL_EXPORT PrimitiveSequence<std::u16string>;

}  // namespace plinth
