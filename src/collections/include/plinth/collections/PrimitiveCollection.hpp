// What all collections of plain values have in common: one container, and the undo of it.
// Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include <type_traits>
#include <typeinfo>
#include <vector>

#include "plinth/AbstractPrimitiveCollection.hpp"
#include "plinth/collections/NodeJournal.hpp"
#include "plinth/collections/SequenceJournal.hpp"

namespace plinth {
namespace detail {

template <class C>
struct JournalOf {
  using type = NodeJournal<C>;
};
template <class T>
struct JournalOf<std::vector<T>> {
  using type = SequenceJournal<T>;
};

}  // namespace detail

/// Values of type T in a container C: a std::vector, a std::set, or a std::map whose mapped type is T. Iterators and
/// references stay good as the container's do, until the collection changes.
template <class T, class C>
class PrimitiveCollection : public AbstractPrimitiveCollection {
 public:
  using Element = T;
  using value_type = typename C::value_type;
  using const_iterator = typename C::const_iterator;
  using const_reverse_iterator = typename C::const_reverse_iterator;

  std::size_t size() const noexcept { return m_values.size(); }
  bool empty() const noexcept override { return m_values.empty(); }
  C const& values() const noexcept { return m_values; }
  const_iterator begin() const noexcept { return m_values.begin(); }
  const_iterator end() const noexcept { return m_values.end(); }
  const_reverse_iterator rbegin() const noexcept { return m_values.rbegin(); }
  const_reverse_iterator rend() const noexcept { return m_values.rend(); }

  void clear() override { become(C()); }
  void copyValues(AbstractPrimitiveCollection const* other) override {
    become(other == nullptr ? C() : static_cast<PrimitiveCollection const*>(other)->m_values);
  }
  std::vector<Value> getAllValues() const override;
  void const* valuesAs(std::type_info const& container) const noexcept final {
    return container == typeid(C) ? &m_values : nullptr;
  }
  bool equals(AbstractPrimitiveCollection const& other) const override {
    return m_values == static_cast<PrimitiveCollection const&>(other).m_values;
  }

  std::size_t rawSize() const override { return m_values.size(); }
  std::size_t oldSize() const override {
    auto const* const kept = static_cast<Journal const*>(journal());
    return kept == nullptr ? m_values.size() : kept->oldSize();
  }
  std::unique_ptr<AbstractOwnedCollection> oldContents() const override {
    auto const* const kept = static_cast<Journal const*>(journal());
    return detachedWith(kept == nullptr ? m_values : kept->oldContents());
  }
  std::unique_ptr<AbstractOwnedCollection> copyContents() const override { return detachedWith(m_values); }

 protected:
  using Journal = typename detail::JournalOf<C>::type;
  using AbstractPrimitiveCollection::AbstractPrimitiveCollection;

  virtual std::unique_ptr<PrimitiveCollection> makeDetached() const = 0;
  std::unique_ptr<CollectionJournal> makeJournal() final { return std::make_unique<Journal>(m_values); }
  Journal* recordingJournal() { return static_cast<Journal*>(modifying()); }
  C& container() noexcept { return m_values; }
  /// Takes these contents for its own: one change, unless there are and were none.
  void become(C values);

 private:
  static T const& valueOf(T const& entry) { return entry; }
  template <class Entry>
  static T const& valueOf(Entry const& entry) {
    return entry.second;
  }
  std::unique_ptr<AbstractOwnedCollection> detachedWith(C values) const {
    auto copy = makeDetached();
    copy->m_values = std::move(values);
    return copy;
  }

  C m_values;
};

template <class T, class C>
void PrimitiveCollection<T, C>::become(C values) {
  if (values.empty() && m_values.empty()) return;
  Operation operation(*this);
  Journal* const journal = recordingJournal();
  if (journal != nullptr) journal->reserveReset();
  values.swap(m_values);
  if (journal != nullptr) journal->reset(std::move(values));
  operation.commit();
}

template <class T, class C>
std::vector<Value> PrimitiveCollection<T, C>::getAllValues() const {
  std::vector<Value> all;
  all.reserve(m_values.size());
  ValueMeta const meta = elementMeta<T>();
  for (auto&& entry : m_values) all.push_back(Value::makeUnchecked<T>(meta, valueOf(entry)));
  return all;
}

}  // namespace plinth
