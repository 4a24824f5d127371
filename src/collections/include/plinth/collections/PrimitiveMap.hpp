// A map of plain values by a key that the value itself bears, in key order.
// Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include <functional>
#include <map>

#include "plinth/collections/CollisionResolution.hpp"
#include "plinth/collections/PrimitiveAssociativeContainer.hpp"
#include "plinth/diagnostics/TakenKey.hpp"

namespace plinth {

/// C is a map of K to T.
template <class K, class T, class C>
class PrimitiveMapBase : public PrimitiveAssociativeContainer<T, C> {
 public:
  using KeyExtractor = std::function<K(T const&)>;
  /// The untyped view.
  class Associative;

  /// The value of that key, or null; valid until the map changes. Logarithmic, here and below.
  T const* find(K const& key) const {
    auto const at = this->values().find(key);
    return at == this->end() ? nullptr : &at->second;
  }
  bool contains(K const& key) const { return find(key) != nullptr; }
  /// Puts the value in under its key; an equal value that is there is left. Whether it was put in. Raises
  /// UniquenessConstraint when another value bears the key, or does as `resolution` says, and std::bad_function_call
  /// for a map without key extractor.
  bool insert(T const& value, CollisionResolution resolution = CollisionResolution::RAISE);
  /// Whether there was a value of that key.
  bool erase(K const& key) { return this->take(this->values().find(key)); }

  PrimitiveKind getKind() const noexcept override { return PrimitiveKind::MAP; }
  void genericAdd(Value const& value) override { insert(value.getValue<T>()); }
  void genericRemove(Value const& value) override {
    T const wanted = value.getValue<T>();
    auto const at = this->values().find(m_keyExtractor(wanted));
    if (at != this->end() && at->second == wanted) this->take(at);
  }

 protected:
  PrimitiveMapBase(KeyExtractor keyExtractor, ModelElementImpl* owner, meta::PropertyImpl* property)
      : PrimitiveAssociativeContainer<T, C>(owner, property), m_keyExtractor(std::move(keyExtractor)) {}
  KeyExtractor const& keyExtractor() const noexcept { return m_keyExtractor; }
  std::unique_ptr<GenericPrimitiveCollectionInterface> makeGenericInterface() override {
    return std::make_unique<Associative>(*this);
  }

 private:
  KeyExtractor m_keyExtractor;
};

template <class K, class T>
class PrimitiveMap final : public PrimitiveMapBase<K, T, std::map<K, T>> {
  using Base = PrimitiveMapBase<K, T, std::map<K, T>>;

 public:
  PrimitiveMap(CollectionPrivateTag, typename Base::KeyExtractor keyExtractor, ModelElementImpl* owner = nullptr,
               meta::PropertyImpl* property = nullptr)
      : Base(std::move(keyExtractor), owner, property) {}

 protected:
  std::unique_ptr<PrimitiveCollection<T, std::map<K, T>>> makeDetached() const override {
    return std::make_unique<PrimitiveMap>(CollectionPrivateTag(), this->keyExtractor(), nullptr, this->property());
  }
};

template <class K, class T, class C>
class PrimitiveMapBase<K, T, C>::Associative final
    : public detail::PrimitiveView<GenericPrimitiveAssociativeInterface> {
 public:
  explicit Associative(PrimitiveMapBase& map) noexcept : PrimitiveView(map), m_map(&map) {}
  Value genericGet(Value const& key) const override {
    T const* const found = m_map->find(key.getValue<K>());
    ValueMeta const meta = m_map->template elementMeta<T>();
    return found == nullptr ? Value(meta) : Value::makeUnchecked<T>(meta, *found);
  }
  std::vector<Value> genericKeys() const override {
    std::vector<Value> keys;
    keys.reserve(m_map->size());
    ValueMeta const meta(MetaTypeOf<K>::type(), meta::SINGLE);
    for (auto const& entry : *m_map) keys.push_back(Value::makeUnchecked<K>(meta, entry.first));
    return keys;
  }
  meta::Type getQualifierType() const override { return meta::Type(MetaTypeOf<K>::type()); }

 private:
  PrimitiveMapBase* m_map;
};

template <class K, class T, class C>
bool PrimitiveMapBase<K, T, C>::insert(T const& value, CollisionResolution resolution) {
  K const key = m_keyExtractor(value);
  auto const at = this->container().find(key);
  if (at == this->container().end()) return this->put({key, value});
  if (at->second == value || resolution == CollisionResolution::KEEP) return false;
  if (resolution == CollisionResolution::RAISE) reportTakenKey(key, this->owner(), this->property());
  T replacement = value;
  AbstractOwnedCollection::Operation operation(*this);
  auto* const journal = this->recordingJournal();
  if (journal != nullptr) journal->nodes().reserve();
  std::swap(at->second, replacement);
  if (journal != nullptr) journal->nodes().replaced(at->first, std::move(replacement));
  operation.commit();
  return true;
}

}  // namespace plinth
