// How elements cross to the host: one, a sequence of them as an array, or a collection as an object of its own.
// Thread rule: the host's thread.
#pragma once

#include <vector>

#include "corvid/Invocation.hpp"
#include "corvid/factory/ValueShape.hpp"
#include "kestrel/Array.hpp"
#include "plinth/bridge/ElementBinding.hpp"

namespace plinth::bridge::detail {

/// An object array of that many elements, `elementAt` giving each; settled to their nearest common class. None gives an
/// empty array of the class `declared`.
template <class ElementAt>
kestrel::OwnedArray announceRow(std::size_t count, corvid::Identifier declared, ElementAt elementAt) {
  if (count == 0) return kestrel::createObjects(declared, kestrel::EMPTY);
  static corvid::Identifier const unsettled = corvid::internal::makeInterned(kestrel::HETEROGENEOUS);
  static corvid::Identifier const root = hostName(*ModelElement::metaClass().impl());
  auto array = kestrel::createObjects(unsettled, kestrel::row(count));
  for (std::size_t i = 0; i < count; ++i) {
    auto const announced = announceElement(elementAt(i), root);
    if (!kestrel::isEmpty(*announced)) kestrel::setObject(*array, i, kestrel::object(*announced));
  }
  corvid::settleClass(*array);
  return array;
}

}  // namespace plinth::bridge::detail

namespace corvid::factory {

template <class E>
struct ValueShape<E, std::enable_if_t<std::is_base_of_v<plinth::ModelElement, E>>> {
  static constexpr Multiplicity multiplicity = Multiplicity::Single;
  static Identifier dataType() { return SelfTraits<E>::className(); }
  static kestrel::OwnedArray toHost(E const& element) { return plinth::bridge::announceElement(element, dataType()); }
  static E fromHost(kestrel_array const& value) { return impl::selfOf<E>(value); }
};

/// A sequence is an array, read and written as a whole.
template <class E>
struct ValueShape<std::vector<E>, std::enable_if_t<std::is_base_of_v<plinth::ModelElement, E>>> {
  static constexpr Multiplicity multiplicity = Multiplicity::Many;
  static Identifier dataType() { return SelfTraits<E>::className(); }
  static kestrel::OwnedArray toHost(std::vector<E> const& elements) {
    return plinth::bridge::detail::announceRow(elements.size(), dataType(),
                                               [&](std::size_t i) -> E const& { return elements[i]; });
  }
  static std::vector<E> fromHost(kestrel_array const& value) {
    std::size_t const count = kestrel::numberOfElements(value);
    std::vector<E> elements;
    elements.reserve(count);
    for (std::size_t i = 0; i < count; ++i) elements.push_back(impl::selfOf<E>(value, i));
    return elements;
  }
};

/// A set or map is an object that scripts walk and change by its methods.
template <>
struct ValueShape<plinth::ReferenceCollection const*> {
  static constexpr Multiplicity multiplicity = Multiplicity::Single;
  static Identifier dataType() { return internal::makeInterned("plinth.Set"); }
  static kestrel::OwnedArray toHost(plinth::ReferenceCollection const* collection) {
    return plinth::bridge::announceCollection(collection);
  }
};

}  // namespace corvid::factory
