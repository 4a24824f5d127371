// The steps of sets and maps of plain values: one node put in, or one taken out.
// Ownership and thread rule: see AbstractOwnedCollection.hpp.
#pragma once

#include "plinth/FailurePoint.hpp"
#include "plinth/collections/PrimitiveCollection.hpp"

namespace plinth {

/// What changes it is one step: a transaction of its own where none is open. It raises CannotModifyDestroyedElement,
/// CannotModifyFrozenModel, std::bad_alloc, and then has changed nothing.
template <class T, class C>
class PrimitiveAssociativeContainer : public PrimitiveCollection<T, C> {
 protected:
  using PrimitiveCollection<T, C>::PrimitiveCollection;
  using typename PrimitiveCollection<T, C>::Journal;
  using Operation = AbstractOwnedCollection::Operation;

  /// Puts an entry in; it is known not to be there. Gives true.
  bool put(typename C::value_type entry) {
    Operation operation(*this);
    Journal* const journal = this->recordingJournal();
    if (journal != nullptr) journal->nodes().reserve();
    failurePoint("primitive-insert");
    auto const at = this->container().insert(std::move(entry)).first;
    if (journal != nullptr) journal->nodes().inserted(keyAt(at));
    operation.commit();
    return true;
  }
  /// Takes the entry out, none at the end; whether there was one.
  bool take(typename C::const_iterator at) {
    if (at == this->end()) return false;
    Operation operation(*this);
    Journal* const journal = this->recordingJournal();
    if (journal != nullptr) journal->nodes().reserve();
    auto node = this->container().extract(at);
    if (journal != nullptr) journal->nodes().erased(std::move(node));
    operation.commit();
    return true;
  }

 private:
  static typename C::key_type const& keyAt(typename C::const_iterator at) {
    if constexpr (detail::NodeSteps<C>::IS_MAP) {
      return at->first;
    } else {
      return *at;
    }
  }
};

}  // namespace plinth
