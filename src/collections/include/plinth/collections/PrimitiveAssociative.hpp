// Sets of plain values, and maps of them by a key that the value itself bears.
// Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include <functional>
#include <map>
#include <set>

#include "plinth/FailurePoint.hpp"
#include "plinth/Messages.hpp"
#include "plinth/PrimitiveCollection.hpp"
#include "plinth/collections/NodeJournal.hpp"
#include "plinth/collections/ReferenceMap.hpp"

namespace plinth {

/// What sets and maps of values share; C is a std::set or a std::map.
template <class T, class C>
class PrimitiveAssociative : public AbstractPrimitiveCollection {
 public:
  using Element = T;
  using value_type = typename C::value_type;
  using const_iterator = typename C::const_iterator;

  std::size_t size() const noexcept { return m_values.size(); }
  bool empty() const noexcept override { return m_values.empty(); }
  C const& raw() const noexcept { return m_values; }
  typename C::const_iterator begin() const noexcept { return m_values.begin(); }
  typename C::const_iterator end() const noexcept { return m_values.end(); }

  void clear() override { become(C()); }
  void copyValues(AbstractPrimitiveCollection const* other) override {
    become(other == nullptr ? C() : static_cast<PrimitiveAssociative const*>(other)->m_values);
  }
  bool equals(AbstractPrimitiveCollection const& other) const override {
    return m_values == static_cast<PrimitiveAssociative const&>(other).m_values;
  }
  std::size_t rawSize() const override { return m_values.size(); }
  std::size_t oldSize() const override {
    auto const* const kept = static_cast<Journal const*>(journal());
    return kept == nullptr ? m_values.size() : kept->nodes().oldSize(m_values.size());
  }
  std::unique_ptr<AbstractOwnedCollection> oldContents() const override {
    auto copy = makeDetached();
    auto const* const kept = static_cast<Journal const*>(journal());
    copy->m_values = kept == nullptr ? m_values : kept->nodes().oldContents(m_values);
    return copy;
  }
  std::unique_ptr<AbstractOwnedCollection> detachedCopy() const override {
    auto copy = makeDetached();
    copy->m_values = m_values;
    return copy;
  }

 protected:
  using Journal = detail::NodeJournal<C>;
  using AbstractPrimitiveCollection::AbstractPrimitiveCollection;

  virtual std::unique_ptr<PrimitiveAssociative> makeDetached() const = 0;
  std::unique_ptr<CollectionJournal> makeJournal() override { return std::make_unique<Journal>(m_values); }
  Journal* recordingJournal() { return static_cast<Journal*>(modifying()); }

  /// Puts one entry in; it is known not to be there.
  void put(typename C::value_type entry) {
    Operation operation(*this);
    Journal* const journal = recordingJournal();
    if (journal != nullptr) journal->nodes().reserve();
    failurePoint("primitive-insert");
    auto const at = m_values.insert(std::move(entry)).first;
    if (journal != nullptr) journal->nodes().inserted(keyAt(at));
    operation.commit();
  }
  void take(typename C::const_iterator at) {
    Operation operation(*this);
    Journal* const journal = recordingJournal();
    if (journal != nullptr) journal->nodes().reserve();
    auto node = m_values.extract(at);
    if (journal != nullptr) journal->nodes().erased(std::move(node));
    operation.commit();
  }
  C& container() noexcept { return m_values; }

 private:
  static typename C::key_type const& keyAt(typename C::const_iterator at) {
    if constexpr (detail::NodeSteps<C>::IS_MAP) {
      return at->first;
    } else {
      return *at;
    }
  }
  void become(C values) {
    if (values.empty() && m_values.empty()) return;
    Operation operation(*this);
    Journal* const journal = recordingJournal();
    if (journal != nullptr) journal->nodes().reserveReset();
    values.swap(m_values);
    if (journal != nullptr) journal->nodes().reset(std::move(values));
    operation.commit();
  }

  C m_values;
};

/// Values in their own order; an equal one is dropped.
template <class T>
class PrimitiveSet final : public PrimitiveAssociative<T, std::set<T>> {
  using Base = PrimitiveAssociative<T, std::set<T>>;

 public:
  explicit PrimitiveSet(CollectionPrivateTag, ModelElementImpl* owner = nullptr,
                        meta::PropertyImpl* property = nullptr) noexcept
      : Base(owner, property) {}

  void insert(T const& value) {
    if (this->raw().count(value) == 0) this->put(value);
  }
  void erase(T const& value) {
    auto const at = this->raw().find(value);
    if (at != this->raw().end()) this->take(at);
  }
  PrimitiveKind getKind() const noexcept override { return PrimitiveKind::SET; }
  void genericAdd(Value const& value) override { insert(value.getValue<T>()); }
  void genericRemove(Value const& value) override { erase(value.getValue<T>()); }
  std::vector<Value> getAllValues() const override {
    std::vector<Value> all;
    for (T const& value : this->raw()) all.push_back(Value::makeUnchecked<T>(this->template elementMeta<T>(), value));
    return all;
  }

 protected:
  std::unique_ptr<Base> makeDetached() const override {
    return std::make_unique<PrimitiveSet>(CollectionPrivateTag(), nullptr, this->property());
  }
  std::unique_ptr<GenericPrimitiveCollectionInterface> makeGenericInterface() override {
    return std::make_unique<detail::PrimitiveView<GenericPrimitiveCollectionInterface>>(*this);
  }
};

/// Values by key, in key order.
template <class K, class T>
class PrimitiveMap final : public PrimitiveAssociative<T, std::map<K, T>> {
  using Base = PrimitiveAssociative<T, std::map<K, T>>;

 public:
  using KeyExtractor = std::function<K(T const&)>;

  /// The untyped view.
  class Associative;

  PrimitiveMap(CollectionPrivateTag, KeyExtractor keyExtractor, ModelElementImpl* owner = nullptr,
               meta::PropertyImpl* property = nullptr)
      : Base(owner, property), m_keyExtractor(std::move(keyExtractor)) {}

  /// Puts the value in under its key; an equal value that is there is left. Raises UniquenessConstraint when another
  /// value bears the key, or as `resolution` says. Logarithmic.
  void insert(T const& value, CollisionResolution resolution = CollisionResolution::RAISE);
  void erase(K const& key) {
    auto const at = this->raw().find(key);
    if (at != this->raw().end()) this->take(at);
  }
  /// The value of that key, or null; valid until the map changes.
  T const* find(K const& key) const {
    auto const at = this->raw().find(key);
    return at == this->raw().end() ? nullptr : &at->second;
  }
  PrimitiveKind getKind() const noexcept override { return PrimitiveKind::MAP; }
  void genericAdd(Value const& value) override { insert(value.getValue<T>()); }
  void genericRemove(Value const& value) override {
    T const wanted = value.getValue<T>();
    auto const at = this->raw().find(m_keyExtractor(wanted));
    if (at != this->raw().end() && at->second == wanted) this->take(at);
  }
  std::vector<Value> getAllValues() const override {
    std::vector<Value> all;
    for (auto const& entry : this->raw())
      all.push_back(Value::makeUnchecked<T>(this->template elementMeta<T>(), entry.second));
    return all;
  }

 protected:
  std::unique_ptr<Base> makeDetached() const override {
    return std::make_unique<PrimitiveMap>(CollectionPrivateTag(), m_keyExtractor, nullptr, this->property());
  }
  std::unique_ptr<GenericPrimitiveCollectionInterface> makeGenericInterface() override {
    return std::make_unique<Associative>(*this);
  }

 private:
  KeyExtractor m_keyExtractor;
};

template <class K, class T>
class PrimitiveMap<K, T>::Associative final : public detail::PrimitiveView<GenericPrimitiveAssociativeInterface> {
 public:
  explicit Associative(PrimitiveMap& map) noexcept : PrimitiveView(map), m_map(&map) {}
  Value genericGet(Value const& key) const override {
    T const* const found = m_map->find(key.getValue<K>());
    ValueMeta const meta = m_map->template elementMeta<T>();
    return found == nullptr ? Value(meta) : Value::makeUnchecked<T>(meta, *found);
  }
  std::vector<Value> genericKeys() const override {
    std::vector<Value> keys;
    ValueMeta const meta(MetaTypeOf<K>::type(), meta::SINGLE);
    for (auto const& entry : m_map->raw()) keys.push_back(Value::makeUnchecked<K>(meta, entry.first));
    return keys;
  }
  meta::Type getQualifierType() const override { return meta::Type(MetaTypeOf<K>::type()); }

 private:
  PrimitiveMap* m_map;
};

template <class K, class T>
void PrimitiveMap<K, T>::insert(T const& value, CollisionResolution resolution) {
  K const key = m_keyExtractor(value);
  auto const at = this->container().find(key);
  if (at == this->container().end()) {
    this->put({key, value});
    return;
  }
  if (at->second == value || resolution == CollisionResolution::KEEP) return;
  if (resolution == CollisionResolution::RAISE) reportException(messages::UniquenessConstraint());
  T replacement = value;
  typename Base::Operation operation(*this);
  auto* const journal = this->recordingJournal();
  if (journal != nullptr) {
    journal->nodes().reserve();
    journal->nodes().replaced(at->first, at->second);
  }
  at->second = std::move(replacement);
  operation.commit();
}

}  // namespace plinth
